// SPDX-License-Identifier: LGPL-2.1-or-later

#include "services.h"

#include "Report.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QPainter>
#include <QProcess>
#include <QStandardPaths>

using ZyBase::CSystemUtils;

namespace {

constexpr int modules = 25; // a side of the symbol of a short text
constexpr int pixels = 8; // a module of the saved image
constexpr int margin = 4; // modules: a symbol comes without, and scanners want it

QImage onWhiteGround(const QImage &symbol, int border)
{
    QImage page(symbol.width() + 2 * border, symbol.height() + 2 * border, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter(&page).drawImage(border, border, symbol);
    return page;
}

bool isWhite(const QImage &image, int x, int y)
{
    return y >= image.height() || image.pixelColor(x, y) == Qt::white;
}

// Two rows of modules a line; what is white is bright on a dark terminal.
QStringList drawInBlocks(const QImage &image)
{
    const QString blocks = QString::fromUtf8(" ▄▀█");
    QStringList lines;
    for (int y = 0; y < image.height(); y += 2) {
        QString line;
        for (int x = 0; x < image.width(); ++x)
            line += blocks.at((isWhite(image, x, y) ? 2 : 0) + (isWhite(image, x, y + 1) ? 1 : 0));
        lines << line;
    }
    return lines;
}

// What a scanner reads from the image; null where none is installed.
QString scan(const QString &path)
{
    if (QStandardPaths::findExecutable(QStringLiteral("zbarimg")).isEmpty())
        return QString();
    QProcess scanner;
    scanner.start(QStringLiteral("zbarimg"), {QStringLiteral("--quiet"), QStringLiteral("--raw"), path});
    scanner.waitForFinished();
    return QString::fromUtf8(scanner.readAllStandardOutput().trimmed());
}

} // namespace

void showQrCode(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("QR code"), QStringLiteral("ZyBase/platform/CSystemUtils.h"));

    const QString text = QStringLiteral("https://example.org/");
    const QImage symbol = CSystemUtils::GenerateQRCode(text, QSize(modules, modules) * pixels);
    const QString path = directory.filePath(QStringLiteral("code.png"));
    const bool saved = onWhiteGround(symbol, margin * pixels).save(path);
    report.line(text, path);
    report.promise(QStringLiteral("the image can be saved and is of the size that was asked for"),
                   saved && symbol.size() == QSize(modules, modules) * pixels);

    const QString scanned = scan(path);
    report.line(QStringLiteral("read by zbarimg"),
                scanned.isNull() ? QStringLiteral("zbarimg is not installed") : scanned);
    report.promise(QStringLiteral("what a scanner reads is the text"), scanned.isNull() || scanned == text);

    const QImage small = CSystemUtils::GenerateQRCode(text, QSize(modules, modules));
    report.excerpt(drawInBlocks(onWhiteGround(small, margin / 2)));
    report.promise(QStringLiteral("each pixel of the smallest image is a module of the large one"),
                   small == symbol.scaled(small.size()));
}
