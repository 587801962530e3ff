// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/CSystemUtils.h>

#include "QrCard.h"
#include "RecipeRun.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <qrencode.h>

namespace {

constexpr int quietZoneInModules = 4;

int widthInModules(const QByteArray &text)
{
    QRcode *const symbol = QRcode_encodeString(text.constData(), 2, QR_ECLEVEL_Q, QR_MODE_8, 1);
    const int width = symbol->width;
    QRcode_free(symbol);
    return width;
}

// Returns lower-case characters, which only the 8-bit mode can encode.
QByteArray lowerCase(int count)
{
    QByteArray text(count, 'x');
    for (int i = 0; i < count; ++i)
        text[i] = char('a' + (i * 7 + i / 13) % 26);
    return text;
}

// Adds the noise of a camera, the same in each run. Without noise a scanner distinguishes nearly black from
// black.
void addNoise(const QString &path, int noise)
{
    QImage image(path);
    QRandomGenerator random(1);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const int grey = qGray(image.pixel(x, y)) + int(random.bounded(2 * noise + 1)) - noise;
            const int bounded = qBound(0, grey, 255);
            image.setPixel(x, y, qRgb(bounded, bounded, bounded));
        }
    }
    image.save(path);
}

// Returns what a scanner reads in the image, or nothing.
QByteArray scan(const QString &path)
{
    QProcess scanner;
    scanner.start(QStringLiteral("zbarimg"), {QStringLiteral("--quiet"), QStringLiteral("--raw"),
                                              QStringLiteral("--oneshot"), QStringLiteral("-Sbinary"), path});
    return scanner.waitForFinished() ? scanner.readAllStandardOutput() : QByteArray("no scanner");
}

bool isWhite(const QImage &image, const QRect &area)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixelColor(x, y) != Qt::white)
                return false;
        }
    }
    return true;
}

} // namespace

class TestQrCodeOnADarkWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void drawsReadableCode_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("side");
        QTest::newRow("one character") << QByteArray("a") << "400";
        QTest::newRow("address") << QByteArray("https://example.org/app?id=17&lang=zh_CN#top") << "400";
        QTest::newRow("address in a small window") << QByteArray("https://example.org/") << "130";
        QTest::newRow("Chinese") << QByteArray("扫描二维码下载应用") << "333";
        QTest::newRow("500 bytes") << lowerCase(500) << "600";
        QTest::newRow("1663 bytes") << lowerCase(1663) << "1000";
    }
    void drawsReadableCode()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, side);
        if (QStandardPaths::findExecutable(QStringLiteral("zbarimg")).isEmpty())
            QSKIP("zbar-tools are not installed");
        qputenv("LC_ALL", "C.UTF-8");
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("window.png"));
        const RecipeRun run({QStringLiteral(RECIPE), QString::fromUtf8(text), path, side});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(QImage(path).width(), side.toInt());
        QVERIFY(QImage(path).pixelColor(4, 4).lightness() < 64);
        addNoise(path, 10);
        QCOMPARE(scan(path), text);
    }

    // The hazard that the recipe avoids.
    void isUnreadableWithoutMargin()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("zbarimg")).isEmpty())
            QSKIP("zbar-tools are not installed");
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("window.png"));
        QImage window(400, 400, QImage::Format_RGB32);
        window.fill(QColor(0x1e, 0x1e, 0x1e));
        const QImage symbol =
            ZyBase::CSystemUtils::GenerateQRCode(QStringLiteral("https://example.org/"), QSize(300, 300));
        QPainter(&window).drawImage(50, 50, symbol);
        QVERIFY(window.save(path));
        addNoise(path, 20);
        QCOMPARE(scan(path), QByteArray());
    }

    // For each of the 39 symbol sizes with error correction Q.
    void drawsMarginOfFourModules()
    {
        QSet<int> widths;
        for (int length = 1; length <= 1663; length += 12) {
            const QByteArray text = lowerCase(length);
            const int width = widthInModules(text);
            if (widths.contains(width))
                continue;
            widths.insert(width);
            const int pixels = 3;
            const QImage card =
                qrCard(QString::fromLatin1(text), (width + 2 * quietZoneInModules) * pixels + 2);
            QCOMPARE(card.width(), (width + 2 * quietZoneInModules) * pixels);
            QCOMPARE(card.height(), card.width());
            const int side = card.width();
            const int margin = quietZoneInModules * pixels;
            QVERIFY(isWhite(card, {0, 0, side, margin}));
            QVERIFY(isWhite(card, {0, side - margin, side, margin}));
            QVERIFY(isWhite(card, {0, 0, margin, side}));
            QVERIFY(isWhite(card, {side - margin, 0, margin, side}));
            QCOMPARE(card.copy(margin, margin, side - 2 * margin, side - 2 * margin),
                     ZyBase::CSystemUtils::GenerateQRCode(QString::fromLatin1(text),
                                                          {width * pixels, width * pixels})
                         .convertToFormat(QImage::Format_RGB32));
        }
        QCOMPARE(widths.size(), 39);
    }

    void reportsStringThatDoesNotFit_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("side");
        QTest::newRow("two pixels a module") << "a"
                                             << "114";
        QTest::newRow("window of size 0") << "a"
                                          << "0";
        QTest::newRow("too long for any code") << QString::fromLatin1(lowerCase(1664)) << "2000";
        QTest::newRow("empty string") << ""
                                      << "400";
    }
    void reportsStringThatDoesNotFit()
    {
        QFETCH(QString, text);
        QFETCH(QString, side);
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("window.png"));
        const RecipeRun run({QStringLiteral(RECIPE), text, path, side});
        QCOMPARE(run.lines, QStringList {QStringLiteral("the code does not fit: show the string instead")});
        QCOMPARE(run.exitCode, 1);
        QVERIFY(!QFile::exists(path));
    }
};

QTEST_GUILESS_MAIN(TestQrCodeOnADarkWindow)

#include "tst_qr_code_on_a_dark_window.moc"
