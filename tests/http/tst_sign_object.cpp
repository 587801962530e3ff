// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/http/CHttpPostRequest.h>
#include <ZyBase/platform/CSystemUtils.h>

#include "OutputCapture.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTest>

#include <atomic>
#include <thread>

using ZyBase::CHttpPostRequest;
using ZyBase::CSystemUtils;

namespace {

// The digest by Qt alone, of UTF-8 bytes.
QString digest(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
}

QJsonObject parsed(const char *text)
{
    return QJsonDocument::fromJson(text).object();
}

} // namespace

class TestSignObject : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<OutputCapture> m_output;

private Q_SLOTS:
    void init() { m_output = std::make_unique<OutputCapture>(); }
    void cleanup() { QCOMPARE(OutputCapture::take(m_output), QString()); }

    void returnsDigestOfString_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("null") << QString() << QStringLiteral("d41d8cd98f00b204e9800998ecf8427e");
        QTest::newRow("empty") << QStringLiteral("") << QStringLiteral("d41d8cd98f00b204e9800998ecf8427e");
        QTest::newRow("ASCII") << QStringLiteral("abc") << QStringLiteral("900150983cd24fb0d6963f7d28e17f72");
        QTest::newRow("the digest begins with zeros")
            << QStringLiteral("jk8ssl") << QStringLiteral("0000000018e6137ac2caab16074784a6");
        QTest::newRow("UTF-8") << QStringLiteral("Größe 文件 😀") << digest("Größe 文件 😀");
        QTest::newRow("NUL inside") << QString(3, QChar()) << digest(QByteArray(3, '\0'));
    }
    void returnsDigestOfString()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(CSystemUtils::GetStringMd5(text), expected);
    }

    void returnsDigestOfSortedMembers_data()
    {
        QTest::addColumn<QJsonObject>("object");
        QTest::addColumn<QString>("secret");
        QTest::addColumn<QByteArray>("text");
        const QString S = QStringLiteral("S");
        QTest::newRow("text, number and other")
            << parsed("{\"b\":\"x\",\"a\":1.9,\"c\":true}") << S << QByteArray("a=1&b=x&c=S");
        QTest::newRow("empty object") << QJsonObject() << S << QByteArray("S");
        QTest::newRow("empty object and secret") << QJsonObject() << QStringLiteral("") << QByteArray("");
        QTest::newRow("empty secret") << parsed("{\"a\":\"x\"}") << QStringLiteral("") << QByteArray("a=x");
        QTest::newRow("null secret") << parsed("{\"a\":\"x\"}") << QString() << QByteArray("a=x");
        QTest::newRow("upper case before lower")
            << parsed("{\"a\":\"1\",\"Z\":\"2\",\"B\":\"3\",\"_\":\"4\"}") << S
            << QByteArray("B=3&Z=2&_=4&a=1S");
        QTest::newRow("a prefix comes first")
            << parsed("{\"ab\":\"1\",\"a\":\"2\",\"a1\":\"3\"}") << S << QByteArray("a=2&a1=3&ab=1S");
        // In UTF-16 the surrogates of U+1F600 come before U+FF01, in UTF-8 after it.
        QTest::newRow("keys by UTF-16 code units")
            << parsed("{\"！\":\"1\",\"😀\":\"2\",\"é\":\"3\"}") << S << QByteArray("é=3&😀=2&！=1S");
        QTest::newRow("empty key") << parsed("{\"a\":\"1\",\"\":\"2\"}") << S << QByteArray("=2&a=1S");
        QTest::newRow("key with separators") << parsed("{\"a=b&c\":\"1\"}") << S << QByteArray("a=b&c=1S");
        QTest::newRow("key and text with place markers")
            << parsed("{\"%1\":\"%2\",\"%2\":5}") << QStringLiteral("%1") << QByteArray("%1=%2&%2=5%1");
        QTest::newRow("text with separators") << parsed("{\"a\":\"1&b=2\"}") << S << QByteArray("a=1&b=2S");
        QTest::newRow("text without changes")
            << parsed("{\"a\":\" x%20+\\n\\\"\"}") << S << QByteArray("a= x%20+\n\"S");
        QTest::newRow("empty text") << parsed("{\"a\":\"\",\"b\":\"\"}") << S << QByteArray("a=&b=S");
        QTest::newRow("UTF-8") << parsed("{\"名\":\"Größe 文件 😀\"}") << QStringLiteral("ключ")
                               << QByteArray("名=Größe 文件 😀ключ");
        QTest::newRow("text that looks like a number")
            << parsed("{\"a\":\"1.9\"}") << S << QByteArray("a=1.9S");
    }
    void returnsDigestOfSortedMembers()
    {
        QFETCH(QJsonObject, object);
        QFETCH(QString, secret);
        QFETCH(QByteArray, text);
        QCOMPARE(CHttpPostRequest::SignObject(object, secret), digest(text));
    }

    void convertsNumberTo32BitInteger_data()
    {
        QTest::addColumn<double>("number");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("zero") << 0.0 << QByteArray("0");
        QTest::newRow("minus zero") << -0.0 << QByteArray("0");
        QTest::newRow("whole") << 7.0 << QByteArray("7");
        QTest::newRow("cut") << 7.99 << QByteArray("7");
        QTest::newRow("towards zero") << 3.9 << QByteArray("3");
        QTest::newRow("towards zero from below") << -3.9 << QByteArray("-3");
        QTest::newRow("between -1 and 0") << -0.5 << QByteArray("0");
        QTest::newRow("no grouping") << 1234567.0 << QByteArray("1234567");
        QTest::newRow("largest") << 2147483647.0 << QByteArray("2147483647");
        QTest::newRow("largest and a bit") << 2147483647.5 << QByteArray("2147483647");
        QTest::newRow("beyond") << 2147483648.0 << QByteArray("2147483647");
        QTest::newRow("smallest") << -2147483648.0 << QByteArray("-2147483648");
        QTest::newRow("below") << -2147483649.0 << QByteArray("-2147483648");
        QTest::newRow("milliseconds") << 1795000000000.0 << QByteArray("2147483647");
        QTest::newRow("huge") << 1e300 << QByteArray("2147483647");
        QTest::newRow("hugely negative") << -1e300 << QByteArray("-2147483648");
        QTest::newRow("tiny") << 1e-300 << QByteArray("0");
    }
    void convertsNumberTo32BitInteger()
    {
        QFETCH(double, number);
        QFETCH(QByteArray, text);
        const QJsonObject object {{QStringLiteral("n"), number}};
        QCOMPARE(CHttpPostRequest::SignObject(object, QStringLiteral("S")), digest("n=" + text + 'S'));
    }

    void treatsOtherTypesAsEmpty_data()
    {
        QTest::addColumn<QJsonValue>("value");
        QTest::newRow("true") << QJsonValue(true);
        QTest::newRow("false") << QJsonValue(false);
        QTest::newRow("null") << QJsonValue();
        QTest::newRow("array") << QJsonValue(QJsonArray {1, QStringLiteral("x")});
        QTest::newRow("object") << QJsonValue(parsed("{\"a\":1}"));
    }
    void treatsOtherTypesAsEmpty()
    {
        QFETCH(QJsonValue, value);
        const QJsonObject object {{QStringLiteral("a"), value}, {QStringLiteral("b"), QStringLiteral("x")}};
        QCOMPARE(CHttpPostRequest::SignObject(object, QStringLiteral("S")), digest("a=&b=xS"));
    }

    void ignoresOrderOfMembers()
    {
        QCOMPARE(CHttpPostRequest::SignObject(parsed("{\"a\":1,\"B\":2,\"c\":3}"), QStringLiteral("S")),
                 CHttpPostRequest::SignObject(parsed("{\"c\":3,\"B\":2,\"a\":1}"), QStringLiteral("S")));
    }

    void keepsObject()
    {
        const QJsonObject object = parsed("{\"b\":1.5,\"a\":null}");
        const QJsonObject copy = object;
        CHttpPostRequest::SignObject(object, QStringLiteral("S"));
        QCOMPARE(object, copy);
    }

    void returns32LowerCaseDigits()
    {
        static const QRegularExpression form(QStringLiteral("^[0-9a-f]{32}$"));
        QJsonObject object;
        for (int i = 0; i < 200; ++i) {
            object.insert(QStringLiteral("key%1").arg(i),
                          i % 3 ? QJsonValue(i) : QJsonValue(QJsonValue::Null));
            const QString signature = CHttpPostRequest::SignObject(object, QString::number(i));
            QVERIFY2(form.match(signature).hasMatch(), qPrintable(signature));
        }
    }

    void supportsConcurrentCalls()
    {
        const QJsonObject object = parsed("{\"b\":\"x\",\"a\":1.9,\"c\":true}");
        const QString expected = digest("a=1&b=x&c=S");
        std::atomic<int> right {0};
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 8; ++thread) {
            threads.emplace_back([&] {
                for (int i = 0; i < 500; ++i)
                    right += CHttpPostRequest::SignObject(object, QStringLiteral("S")) == expected ? 1 : 0;
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(right.load(), 8 * 500);
    }
};

QTEST_GUILESS_MAIN(TestSignObject)

#include "tst_sign_object.moc"
