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

constexpr int quietZone = 4; // modules

int widthInModules(const QByteArray &text)
{
    QRcode *const symbol = QRcode_encodeString(text.constData(), 2, QR_ECLEVEL_Q, QR_MODE_8, 1);
    const int width = symbol->width;
    QRcode_free(symbol);
    return width;
}

// Small letters, which no denser mode of the code takes.
QByteArray letters(int count)
{
    QByteArray text(count, 'x');
    for (int i = 0; i < count; ++i)
        text[i] = char('a' + (i * 7 + i / 13) % 26);
    return text;
}

// With the noise of a camera, the same in each run: by itself a scanner tells nearly black from black.
void photograph(const QString &path, int noise)
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

// What a scanner reads in the image; empty for nothing.
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
    void scannerReadsTheWindow_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("side");
        QTest::newRow("one letter") << QByteArray("a") << "400";
        QTest::newRow("address") << QByteArray("https://example.org/app?id=17&lang=zh_CN#top") << "400";
        QTest::newRow("address in a small window") << QByteArray("https://example.org/") << "130";
        QTest::newRow("Chinese") << QByteArray("扫描二维码下载应用") << "333";
        QTest::newRow("500 bytes") << letters(500) << "600";
        QTest::newRow("1663 bytes") << letters(1663) << "1000";
    }
    void scannerReadsTheWindow()
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
        photograph(path, 10);
        QCOMPARE(scan(path), text);
    }

    // What the recipe is for.
    void symbolAsItComesIsNotReadOnADarkWindow()
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
        photograph(path, 20);
        QCOMPARE(scan(path), QByteArray());
    }

    // Every size of symbol there is, by the shortest text of it that is tried.
    void fourModulesOfWhiteStandAroundEverySizeOfSymbol()
    {
        QSet<int> widths;
        for (int length = 1; length <= 1663; length += 12) {
            const QByteArray text = letters(length);
            const int width = widthInModules(text);
            if (widths.contains(width))
                continue;
            widths.insert(width);
            const int pixels = 3;
            const QImage card = qrCard(QString::fromLatin1(text), (width + 2 * quietZone) * pixels + 2);
            QCOMPARE(card.width(), (width + 2 * quietZone) * pixels);
            QCOMPARE(card.height(), card.width());
            const int side = card.width();
            const int margin = quietZone * pixels;
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

    void textWithoutRoomIsShownAsText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("side");
        QTest::newRow("two pixels a module") << "a"
                                             << "114";
        QTest::newRow("no window") << "a"
                                   << "0";
        QTest::newRow("too long for any code") << QString::fromLatin1(letters(1664)) << "2000";
        QTest::newRow("empty") << ""
                               << "400";
    }
    void textWithoutRoomIsShownAsText()
    {
        QFETCH(QString, text);
        QFETCH(QString, side);
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("window.png"));
        const RecipeRun run({QStringLiteral(RECIPE), text, path, side});
        QCOMPARE(run.lines,
                 QStringList {QStringLiteral("no code of this text has room here: show the text instead")});
        QCOMPARE(run.exitCode, 1);
        QVERIFY(!QFile::exists(path));
    }
};

QTEST_GUILESS_MAIN(TestQrCodeOnADarkWindow)

#include "tst_qr_code_on_a_dark_window.moc"
