// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/CSystemUtils.h>

#include "MessageCapture.h"

#include <QTest>

#include <qrencode.h>

#include <dlfcn.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

using ZyBase::CSystemUtils;

namespace {

struct EncoderCall
{
    QByteArray text;
    int version;
    int level;
    int hint;
    int caseSensitive;
};

QList<EncoderCall> calls;
int freeCalls = 0;
int errorOfTheEncoder = 0; // 0 for none: it works
std::atomic<void *> lastRecord {nullptr};
std::atomic<int> recordsDeleted {0};

} // namespace

// These stand before libqrencode's own functions and before the C++ runtime's operator, as this program's
// come first: they record what the library calls, and work.
#define STANDS_BEFORE_THE_LIBRARYS extern "C" __attribute__((visibility("default")))

STANDS_BEFORE_THE_LIBRARYS QRcode *QRcode_encodeString(const char *string, int version, QRecLevel level,
                                                       QRencodeMode hint, int caseSensitive)
{
    calls.append({QByteArray(string), version, level, hint, caseSensitive});
    if (errorOfTheEncoder != 0) {
        errno = errorOfTheEncoder;
        return nullptr;
    }
    static const auto original =
        reinterpret_cast<decltype(&QRcode_encodeString)>(dlsym(RTLD_NEXT, "QRcode_encodeString"));
    QRcode *const record = original(string, version, level, hint, caseSensitive);
    lastRecord = record;
    return record;
}

STANDS_BEFORE_THE_LIBRARYS void QRcode_free(QRcode *)
{
    ++freeCalls;
}

void operator delete(void *memory) noexcept
{
    if (memory && memory == lastRecord.load()) {
        lastRecord = nullptr;
        ++recordsDeleted;
    }
    std::free(memory);
}

void operator delete(void *memory, size_t) noexcept
{
    std::free(memory);
}

// How the encoder is called, and what becomes of what it gives.
class TestQrCodeCalls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        calls.clear();
        freeCalls = 0;
        errorOfTheEncoder = 0;
        lastRecord = nullptr;
        recordsDeleted = 0;
    }

    void encoderGetsTheUtf8BytesAndFixedSettings_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("ASCII") << "hello";
        QTest::newRow("Chinese and beyond") << "扫码下载 Größe 😀";
        QTest::newRow("line ends and quotes") << "a\nb\r\n\"c\" ";
        QTest::newRow("digits") << "0123456789";
    }
    void encoderGetsTheUtf8BytesAndFixedSettings()
    {
        QFETCH(QString, text);
        QVERIFY(!CSystemUtils::GenerateQRCode(text, QSize(100, 100)).isNull());
        QCOMPARE(calls.size(), 1);
        QCOMPARE(calls.first().text, text.toUtf8());
        QCOMPARE(calls.first().version, 2);
        QCOMPARE(calls.first().level, 2);
        QCOMPARE(calls.first().hint, 2);
        QCOMPARE(calls.first().caseSensitive, 1);
    }

    void emptyTextDoesNotReachTheEncoder()
    {
        CSystemUtils::GenerateQRCode(QString(), QSize(100, 100));
        CSystemUtils::GenerateQRCode(QStringLiteral(""), QSize(100, 100));
        QCOMPARE(calls.size(), 0);
    }

    void encoderIsCalledForAnySize()
    {
        CSystemUtils::GenerateQRCode(QStringLiteral("a"), QSize(0, 0));
        QCOMPARE(calls.size(), 1);
        QCOMPARE(recordsDeleted.load(), 1);
    }

    void recordIsReleasedByThePlainOperatorAlone()
    {
        for (int i = 1; i <= 5; ++i) {
            QVERIFY(!CSystemUtils::GenerateQRCode(QStringLiteral("a"), QSize(i * 10, i * 10)).isNull());
            QCOMPARE(recordsDeleted.load(), i);
        }
        QCOMPARE(freeCalls, 0);
    }

    void failureIsTheBareNumberOfTheError_data()
    {
        QTest::addColumn<int>("error");
        QTest::newRow("ERANGE") << ERANGE;
        QTest::newRow("EINVAL") << EINVAL;
        QTest::newRow("ENOMEM") << ENOMEM;
    }
    void failureIsTheBareNumberOfTheError()
    {
        QFETCH(int, error);
        errorOfTheEncoder = error;
        const MessageCapture capture;
        QVERIFY(CSystemUtils::GenerateQRCode(QStringLiteral("a"), QSize(100, 100)).isNull());
        const auto messages = capture.messages();
        QCOMPARE(messages.size(), 1);
        QCOMPARE(messages.first().text, QString::number(error));
        QCOMPARE(messages.first().type, QtInfoMsg);
        QCOMPARE(messages.first().category, QStringLiteral("default"));
        QVERIFY(messages.first().file.isNull());
        QVERIFY(messages.first().function.isNull());
        QCOMPARE(messages.first().line, 0);
        QCOMPARE(recordsDeleted.load(), 0);
    }
};

QTEST_GUILESS_MAIN(TestQrCodeCalls)

#include "tst_qr_code_calls.moc"
