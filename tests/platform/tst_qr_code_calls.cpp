// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/CSystemUtils.h>

#include "MessageCapture.h"

#include <QTest>

#include <qrencode.h>

#include <dlfcn.h>

#include <algorithm>
#include <array>
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
bool hasStaticModules = false;
int encoderError = 0; // 0: the encoder works
std::array<unsigned char, 25 * 25> staticModules {}; // of the smallest symbol
std::atomic<void *> lastRecord {nullptr};
std::atomic<int> recordsDeleted {0};

} // namespace

// Called instead of libqrencode's functions and the C++ runtime's operator, because symbols of the program
// come first. They record the calls and work.
#define REPLACES_THE_LIBRARYS extern "C" __attribute__((visibility("default")))

REPLACES_THE_LIBRARYS QRcode *QRcode_encodeString(const char *string, int version, QRecLevel level,
                                                  QRencodeMode hint, int caseSensitive)
{
    calls.append({QByteArray(string), version, level, hint, caseSensitive});
    if (encoderError != 0) {
        errno = encoderError;
        return nullptr;
    }
    static const auto original =
        reinterpret_cast<decltype(&QRcode_encodeString)>(dlsym(RTLD_NEXT, "QRcode_encodeString"));
    QRcode *const record = original(string, version, level, hint, caseSensitive);
    lastRecord = record;
    if (hasStaticModules) {
        std::copy_n(record->data, staticModules.size(), staticModules.begin());
        std::free(record->data);
        record->data = staticModules.data();
    }
    return record;
}

REPLACES_THE_LIBRARYS void QRcode_free(QRcode *)
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

// How the encoder is called, and how its result is released.
class TestQrCodeCalls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        calls.clear();
        freeCalls = 0;
        hasStaticModules = false;
        encoderError = 0;
        lastRecord = nullptr;
        recordsDeleted = 0;
    }

    void passesUtf8BytesAndFixedSettings_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("ASCII") << "hello";
        QTest::newRow("Chinese, umlauts and an emoji") << "扫码下载 Größe 😀";
        QTest::newRow("line ends and quotes") << "a\nb\r\n\"c\" ";
        QTest::newRow("digits") << "0123456789";
    }
    void passesUtf8BytesAndFixedSettings()
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

    void doesNotCallEncoderForEmptyString()
    {
        CSystemUtils::GenerateQRCode(QString(), QSize(100, 100));
        CSystemUtils::GenerateQRCode(QStringLiteral(""), QSize(100, 100));
        QCOMPARE(calls.size(), 0);
    }

    void callsEncoderForAnySize()
    {
        CSystemUtils::GenerateQRCode(QStringLiteral("a"), QSize(0, 0));
        QCOMPARE(calls.size(), 1);
        QCOMPARE(recordsDeleted.load(), 1);
    }

    void releasesOnlyRecordByPlainOperator()
    {
        for (int i = 1; i <= 5; ++i) {
            QVERIFY(!CSystemUtils::GenerateQRCode(QStringLiteral("a"), QSize(i * 10, i * 10)).isNull());
            QCOMPARE(recordsDeleted.load(), i);
        }
        QCOMPARE(freeCalls, 0);
    }

    void keepsModulesAllocated()
    {
        // Releasing memory that was not allocated aborts the program.
        hasStaticModules = true;
        QVERIFY(!CSystemUtils::GenerateQRCode(QStringLiteral("a"), QSize(100, 100)).isNull());
        QCOMPARE(recordsDeleted.load(), 1);
        QCOMPARE(freeCalls, 0);
    }

    void logsOnlyErrnoOfFailure_data()
    {
        QTest::addColumn<int>("error");
        QTest::newRow("ERANGE") << ERANGE;
        QTest::newRow("EINVAL") << EINVAL;
        QTest::newRow("ENOMEM") << ENOMEM;
    }
    void logsOnlyErrnoOfFailure()
    {
        QFETCH(int, error);
        encoderError = error;
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
