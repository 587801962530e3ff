// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/netinfo/CNetworkUtils.h>
#include <ZyBase/netinfo/Services.h>

#include "NetInfoTest.h"

#include <QTest>

using ZyBase::CNetworkUtils;

namespace {

const char *const addressHost = ZyBase::pszAddressHost;
const char *const countryHost = ZyBase::pszCountryHost;

const QByteArray germanAddress = "{\"country_code\":\"DE\",\"ip\":\"192.0.2.1\"}";

} // namespace

// GetIP() and GetIPCountryCode().
class TestPublicAddress : public NetInfoTest
{
    Q_OBJECT

private Q_SLOTS:
    void requestsAddressAsJson()
    {
        answer(addressHost, "{\"ip\":\"192.0.2.1\"}");
        QCOMPARE(GetIP(), QStringLiteral("192.0.2.1"));
        QCOMPARE(network().requestLines(),
                 QStringList {QStringLiteral("CONNECT %1:443 HTTP/1.1").arg(QLatin1String(addressHost))});
        QVERIFY(network().requests(addressHost).first().startsWith("GET /?format=json HTTP/1.1\r\n"));
    }

    void returnsAddressOfAnswer_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("expected");
        QTest::newRow("IPv6") << QByteArray("{\"ip\":\"2001:db8::1\"}") << "2001:db8::1";
        QTest::newRow("any string") << QByteArray("{\"ip\":\" x<b> \"}") << " x<b> ";
        QTest::newRow("empty string") << QByteArray("{\"ip\":\"\"}") << "";
        QTest::newRow("among other keys") << QByteArray("{\"a\":1,\"ip\":\"192.0.2.1\"}\n") << "192.0.2.1";
        QTest::newRow("no address") << QByteArray("{\"a\":1}") << QString();
        QTest::newRow("in another case") << QByteArray("{\"IP\":\"192.0.2.1\"}") << QString();
        QTest::newRow("not a string") << QByteArray("{\"ip\":1}") << QString();
    }
    void returnsAddressOfAnswer()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, expected);
        answer(addressHost, body);
        const QString address = GetIP();
        QCOMPARE(address, expected);
        QCOMPARE(address.isNull(), expected.isNull());
    }

    void returnsEmptyAddressForUnusableAnswer_data() { addUnusableAnswers(germanAddress); }
    void returnsEmptyAddressForUnusableAnswer()
    {
        QFETCH(QByteArray, body);
        answer(addressHost, body);
        QVERIFY(GetIP().isEmpty());
        QVERIFY(!GetIP().isNull());
    }

    void returnsEmptyAddressIfServiceIsDown()
    {
        QVERIFY(GetIP().isEmpty());
        QVERIFY(!GetIP().isNull());
        network().route(addressHost, [](Connection &client) { client.reset(); });
        QVERIFY(GetIP().isEmpty());
        QVERIFY(!GetIP().isNull());
    }

    void ignoresHttpStatus()
    {
        network().route(addressHost, [](Connection &client) {
            client.write("HTTP/1.1 500 Oops\r\nContent-Length: 18\r\n\r\n{\"ip\":\"192.0.2.1\"}");
        });
        QCOMPARE(GetIP(), QStringLiteral("192.0.2.1"));
    }

    void sendsRequestOnEveryCall()
    {
        answer(addressHost, "{\"ip\":\"192.0.2.1\"}");
        QCOMPARE(GetIP(), QStringLiteral("192.0.2.1"));
        answer(addressHost, "{\"ip\":\"192.0.2.2\"}");
        QCOMPARE(GetIP(), QStringLiteral("192.0.2.2"));
        QCOMPARE(network().requestLines().size(), 2);
    }

    void requestsCountryAtItsPath()
    {
        answer(countryHost, germanAddress);
        QString code;
        QString address;
        QVERIFY(CNetworkUtils::GetIPCountryCode(code, address));
        QCOMPARE(code, QStringLiteral("DE"));
        QCOMPARE(address, QStringLiteral("192.0.2.1"));
        QCOMPARE(network().requestLines(),
                 QStringList {QStringLiteral("CONNECT %1:443 HTTP/1.1").arg(QLatin1String(countryHost))});
        QVERIFY(network().requests(countryHost).first().startsWith("GET /all.json HTTP/1.1\r\n"));
    }

    void setsNullStringForMissingKey_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("address");
        QTest::newRow("both") << QByteArray("{\"a\":1}") << QString() << QString();
        QTest::newRow("code") << QByteArray("{\"ip\":\"192.0.2.1\"}") << QString() << "192.0.2.1";
        QTest::newRow("address") << QByteArray("{\"country_code\":\"DE\"}") << "DE" << QString();
        QTest::newRow("empty is not null") << QByteArray("{\"country_code\":\"\",\"ip\":\"\"}") << ""
                                           << "";
        QTest::newRow("not strings") << QByteArray("{\"country_code\":1,\"ip\":null}") << QString()
                                     << QString();
    }
    void setsNullStringForMissingKey()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, code);
        QFETCH(QString, address);
        answer(countryHost, body);
        QString returnedCode = QStringLiteral("before");
        QString returnedAddress = QStringLiteral("before");
        QVERIFY(CNetworkUtils::GetIPCountryCode(returnedCode, returnedAddress));
        QCOMPARE(returnedCode, code);
        QCOMPARE(returnedCode.isNull(), code.isNull());
        QCOMPARE(returnedAddress, address);
        QCOMPARE(returnedAddress.isNull(), address.isNull());
    }

    void keepsArgumentsAfterUnusableAnswer_data() { addUnusableAnswers(germanAddress); }
    void keepsArgumentsAfterUnusableAnswer()
    {
        QFETCH(QByteArray, body);
        answer(countryHost, body);
        QString code = QStringLiteral("before");
        QString address = QStringLiteral("also before");
        QVERIFY(!CNetworkUtils::GetIPCountryCode(code, address));
        QCOMPARE(code, QStringLiteral("before"));
        QCOMPARE(address, QStringLiteral("also before"));
    }

    void keepsArgumentsIfServiceIsDown()
    {
        QString code = QStringLiteral("before");
        QString address = QStringLiteral("also before");
        QVERIFY(!CNetworkUtils::GetIPCountryCode(code, address));
        QCOMPARE(code, QStringLiteral("before"));
        QCOMPARE(address, QStringLiteral("also before"));
    }
};

QTEST_GUILESS_MAIN(TestPublicAddress)

#include "tst_public_address.moc"
