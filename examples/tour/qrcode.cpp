// SPDX-License-Identifier: 0BSD

#include "services.h"

#include "Report.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QPainter>
#include <QProcess>
#include <QStandardPaths>

#include <algorithm>
#include <cstdlib>

using ZyBase::CSystemUtils;

namespace {

constexpr int sideInModules = 25; // of the symbol for a short string
constexpr int moduleInPixels = 8;
constexpr int marginInModules = 4; // scanners need it; the symbol has none
constexpr int finderInModules = 7; // the squares in three corners of every symbol

QImage onWhite(const QImage &symbol, int margin)
{
    QImage page(symbol.width() + 2 * margin, symbol.height() + 2 * margin, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter(&page).drawImage(margin, margin, symbol);
    return page;
}

// A dark square of 3 x 3 modules in a dark frame of 7 x 7 modules.
bool hasFinder(const QImage &symbol, QPoint corner)
{
    for (int y = 0; y < finderInModules; ++y) {
        for (int x = 0; x < finderInModules; ++x) {
            const int distance = std::max(std::abs(x - 3), std::abs(y - 3));
            const QColor expected = distance == 2 ? Qt::white : Qt::black;
            if (symbol.pixelColor(corner + QPoint(x, y)) != expected)
                return false;
        }
    }
    return true;
}

bool hasFinders(const QImage &symbol)
{
    const int far = sideInModules - finderInModules;
    return symbol.size() == QSize(sideInModules, sideInModules) && hasFinder(symbol, {0, 0})
           && hasFinder(symbol, {far, 0}) && hasFinder(symbol, {0, far});
}

QString scan(const QString &path)
{
    QProcess scanner;
    scanner.start(QStringLiteral("zbarimg"), {QStringLiteral("--quiet"), QStringLiteral("--raw"), path});
    scanner.waitForFinished();
    return QString::fromUtf8(scanner.readAllStandardOutput().trimmed());
}

void showScan(Report &report, const QString &path, const QString &encoded)
{
    const QString promise = QStringLiteral("A scanner reads the encoded string");
    if (QStandardPaths::findExecutable(QStringLiteral("zbarimg")).isEmpty())
        return report.skip(promise, QStringLiteral("zbarimg is not installed"));
    const QString scanned = scan(path);
    report.line(QStringLiteral("zbarimg reads"), scanned);
    report.promise(promise, scanned == encoded);
}

} // namespace

void showQrCode(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("QR code"), QStringLiteral("ZyBase/platform/CSystemUtils.h"));

    const QString text = QStringLiteral("https://example.org/");
    const QSize smallSize(sideInModules, sideInModules);
    const QImage large = CSystemUtils::GenerateQRCode(text, smallSize * moduleInPixels);
    const QImage small = CSystemUtils::GenerateQRCode(text, smallSize);
    const QString path = directory.filePath(QStringLiteral("code.png"));
    report.line(text, directory.relativeFilePath(path));
    report.promise(QStringLiteral("The image has the requested size and can be saved"),
                   large.size() == smallSize * moduleInPixels
                       && onWhite(large, marginInModules * moduleInPixels).save(path));
    report.image(onWhite(small, marginInModules / 2));
    report.promise(QStringLiteral("Three corners have the squares that scanners search for"),
                   hasFinders(small));
    report.promise(QStringLiteral("The large image shows the same modules as the small one"),
                   small == large.scaled(small.size()));
    showScan(report, path, text);
}
