// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/CSystemUtils.h>

#include "MessageCapture.h"
#include "OutputCapture.h"

#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <qrencode.h>

#include <cerrno>
#include <limits>
#include <thread>
#include <vector>

using ZyBase::CSystemUtils;

namespace {

constexpr QRgb black = 0xff000000;
constexpr QRgb white = 0xffffffff;
constexpr int longestText = 1663; // bytes that a symbol of this error correction holds

// The symbol as libqrencode encodes it.
class Symbol
{
public:
    explicit Symbol(const QByteArray &text)
        : m_record(QRcode_encodeString(text.constData(), 2, QR_ECLEVEL_Q, QR_MODE_8, 1))
    {
    }
    ~Symbol() { QRcode_free(m_record); }

    int width() const { return m_record->width; }
    bool isBlack(int x, int y) const { return (m_record->data[y * width() + x] & 1) != 0; }

private:
    Q_DISABLE_COPY(Symbol)
    QRcode *m_record;
};

// Draws each black module by itself on white, without antialiasing.
QImage paintedModuleByModule(const Symbol &symbol, int side)
{
    QImage image(side, side, QImage::Format_ARGB32);
    QPainter painter(&image);
    painter.setBrush(Qt::white);
    painter.setPen(Qt::NoPen);
    painter.drawRect(0, 0, side, side);
    painter.setBrush(Qt::black);
    const double scale = double(side) / symbol.width();
    for (int y = 0; y < symbol.width(); ++y) {
        for (int x = 0; x < symbol.width(); ++x) {
            const QRectF module(scale * x, scale * y, scale, scale);
            if (symbol.isBlack(x, y))
                painter.drawRects(&module, 1);
        }
    }
    return image;
}

QImage generate(const QByteArray &text, int side)
{
    return CSystemUtils::GenerateQRCode(QString::fromUtf8(text), QSize(side, side));
}

// Returns lower-case characters, which only the 8-bit mode can encode.
QByteArray lowerCase(int count)
{
    QByteArray text(count, 'x');
    for (int i = 0; i < count; ++i)
        text[i] = char('a' + (i * 7 + i / 13) % 26);
    return text;
}

// As an application shows it: on a white background.
QImage withMargin(const QImage &symbol, int margin)
{
    QImage page(symbol.width() + 2 * margin, symbol.height() + 2 * margin, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter(&page).drawImage(margin, margin, symbol);
    return page;
}

void addSymbols()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("25 modules") << QByteArray("a");
    QTest::newRow("25 modules, rows unlike columns at two pixels") << QByteArray(33, 'c');
    QTest::newRow("49 modules") << lowerCase(100);
    QTest::newRow("81 modules") << lowerCase(300);
    QTest::newRow("141 modules") << lowerCase(1000);
    QTest::newRow("177 modules") << lowerCase(longestText);
}

} // namespace

class TestQrCode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void matchesPaintedModulesForSidesUpTo400_data() { addSymbols(); }
    void matchesPaintedModulesForSidesUpTo400()
    {
        QFETCH(QByteArray, text);
        const Symbol symbol(text);
        for (int side = 1; side <= 400; ++side)
            QVERIFY2(generate(text, side) == paintedModuleByModule(symbol, side),
                     QByteArray::number(side).constData());
    }

    void matchesPaintedModulesForLargeSides_data() { addSymbols(); }
    void matchesPaintedModulesForLargeSides()
    {
        QFETCH(QByteArray, text);
        const Symbol symbol(text);
        for (const int side : {511, 512, 1023, 1024, 1025, 2047, 4096})
            QVERIFY2(generate(text, side) == paintedModuleByModule(symbol, side),
                     QByteArray::number(side).constData());
    }

    void showsEachModuleAtWholeMultiples_data() { addSymbols(); }
    void showsEachModuleAtWholeMultiples()
    {
        QFETCH(QByteArray, text);
        const Symbol symbol(text);
        for (const int pixels : {1, 2, 5}) {
            const QImage image = generate(text, symbol.width() * pixels);
            QCOMPARE(image.size(), QSize(symbol.width(), symbol.width()) * pixels);
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const QRgb expected = symbol.isBlack(x / pixels, y / pixels) ? black : white;
                    QCOMPARE(image.pixel(x, y), expected);
                }
            }
        }
    }

    void returnsOnlyBlackAndOpaqueWhite_data()
    {
        QTest::addColumn<int>("side");
        for (const int side : {1, 2, 3, 24, 25, 26, 100, 256, 333})
            QTest::addRow("%d", side) << side;
    }
    void returnsOnlyBlackAndOpaqueWhite()
    {
        QFETCH(int, side);
        const QImage image = generate("https://example.org/", side);
        QCOMPARE(image.format(), QImage::Format_ARGB32);
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x)
                QVERIFY(image.pixel(x, y) == black || image.pixel(x, y) == white);
        }
    }

    void paintsCornerBlackIfEachModuleHasAPixel()
    {
        for (int side = 25; side < 60; ++side)
            QCOMPARE(generate("https://example.org/", side).pixel(0, 0), black);
    }

    void fillsImageToItsEdges()
    {
        const QImage image = generate("a", 257);
        const int last = image.width() - 1;
        QCOMPARE(image.pixel(0, 0), black);
        QCOMPARE(image.pixel(last, 0), black);
        QCOMPARE(image.pixel(0, last), black);
    }

    void usesSmallerSide_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("side");
        QTest::newRow("wide") << QSize(300, 200) << 200;
        QTest::newRow("tall") << QSize(150, 4000) << 150;
        QTest::newRow("square") << QSize(64, 64) << 64;
        QTest::newRow("one pixel") << QSize(1, 77) << 1;
    }
    void usesSmallerSide()
    {
        QFETCH(QSize, size);
        QFETCH(int, side);
        const QImage image = CSystemUtils::GenerateQRCode(QStringLiteral("a"), size);
        QCOMPARE(image.size(), QSize(side, side));
        QCOMPARE(image, generate("a", side));
    }

    void returnsNullImageForInvalidSize_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("zero") << QSize(0, 0);
        QTest::newRow("default") << QSize();
        QTest::newRow("no width") << QSize(0, 100);
        QTest::newRow("no height") << QSize(100, 0);
        QTest::newRow("negative") << QSize(-5, -7);
        QTest::newRow("negative height") << QSize(100, -1);
        QTest::newRow("smallest") << QSize(std::numeric_limits<int>::min(), 100);
        QTest::newRow("larger than an image can be")
            << QSize(std::numeric_limits<int>::max(), std::numeric_limits<int>::max());
    }
    void returnsNullImageForInvalidSize()
    {
        QFETCH(QSize, size);
        OutputCapture output;
        QVERIFY(CSystemUtils::GenerateQRCode(QStringLiteral("a"), size).isNull());
        QCOMPARE(output.lines(), QStringList());
    }

    void returnsNullImageForEmptyString_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("null") << QString();
        QTest::newRow("empty") << "";
    }
    void returnsNullImageForEmptyString()
    {
        QFETCH(QString, text);
        OutputCapture output;
        QVERIFY(CSystemUtils::GenerateQRCode(text, QSize(100, 100)).isNull());
        QCOMPARE(output.lines(), QStringList());
    }

    void logsErrnoForStringThatCannotBeEncoded_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("error");
        QTest::newRow("a byte too long") << QString::fromLatin1(lowerCase(longestText + 1)) << ERANGE;
        QTest::newRow("much too long") << QString::fromLatin1(lowerCase(100000)) << ERANGE;
        QTest::newRow("too long in UTF-8") << QString(longestText / 3 + 1, QChar(0x6587)) << ERANGE;
        QTest::newRow("starts with a NUL character") << QString(QChar(0)) + QLatin1Char('a') << EINVAL;
    }
    void logsErrnoForStringThatCannotBeEncoded()
    {
        QFETCH(QString, text);
        QFETCH(int, error);
        for (const int side : {100, 0}) {
            const MessageCapture capture;
            QVERIFY(CSystemUtils::GenerateQRCode(text, QSize(side, side)).isNull());
            const auto messages = capture.messages();
            QCOMPARE(messages.size(), 1);
            QCOMPARE(messages.first().text, QString::number(error));
            QCOMPARE(messages.first().type, QtInfoMsg);
        }
    }

    void logsNothingOnSuccess()
    {
        OutputCapture output;
        for (const int side : {1, 2, 3, 100})
            QVERIFY(!generate("a", side).isNull());
        QCOMPARE(output.lines(), QStringList());
    }

    void returnsSameImageForSameArguments()
    {
        const QImage first = generate("again", 200);
        QCOMPARE(generate("again", 200), first);
        QVERIFY(generate("Again", 200) != first);
    }

    void keepsCase() { QVERIFY(generate("ABC", 100) != generate("abc", 100)); }

    void worksInConcurrentThreads()
    {
        const QImage expected = generate("thread", 300);
        std::vector<QImage> images(4);
        std::vector<std::thread> threads;
        threads.reserve(images.size());
        for (QImage &image : images)
            threads.emplace_back([&image] {
                for (int i = 0; i < 20; ++i)
                    image = generate("thread", 300);
            });
        for (std::thread &thread : threads)
            thread.join();
        for (const QImage &image : images)
            QCOMPARE(image, expected);
    }

    void encodesWhatScannerReads_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("pixels"); // a module
        QTest::newRow("one character") << QByteArray("a") << 4;
        QTest::newRow("digits") << QByteArray("20261120073757") << 4;
        QTest::newRow("upper case") << QByteArray("HELLO WORLD $%*+-./:") << 4;
        QTest::newRow("mixed case") << QByteArray("Hello, World; 100% {\"a\": 'b'}") << 4;
        QTest::newRow("address") << QByteArray("https://example.org/app?id=17&lang=zh_CN#top") << 4;
        QTest::newRow("Chinese") << QByteArray("扫描二维码下载应用") << 4;
        QTest::newRow("umlauts and emoji") << QByteArray("Größe 😀") << 4;
        QTest::newRow("several lines") << QByteArray("BEGIN:VCARD\r\nN:a;b\r\nEND:VCARD") << 4;
        QTest::newRow("100 bytes") << lowerCase(100) << 4;
        QTest::newRow("1000 bytes") << lowerCase(1000) << 4;
        QTest::newRow("longest string of bytes") << lowerCase(longestText) << 5;
        QTest::newRow("longest string of digits") << QByteArray(3993, '7') << 5;
        QTest::newRow("uneven modules") << QByteArray("uneven") << 0;
    }
    void encodesWhatScannerReads()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, pixels);
        const QString scanner = QStringLiteral("zbarimg");
        if (QStandardPaths::findExecutable(scanner).isEmpty())
            QSKIP("zbar-tools are not installed");
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("code.png"));
        const int side = pixels > 0 ? pixels * Symbol(text).width() : 133;
        QVERIFY(withMargin(generate(text, side), 32).save(path));

        QProcess process;
        process.start(scanner, {QStringLiteral("--quiet"), QStringLiteral("--raw"),
                                QStringLiteral("--oneshot"), QStringLiteral("-Sbinary"), path});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.readAllStandardOutput(), text);
    }
};

QTEST_GUILESS_MAIN(TestQrCode)

#include "tst_qr_code.moc"
