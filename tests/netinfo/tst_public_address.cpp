// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/netinfo/CNetworkUtils.h>
#include <ZyBase/netinfo/Services.h>

#include "World.h"

#include <QTest>

using LocalServices::Connection;
using ZyBase::CNetworkUtils;

namespace {

const char *const addressHost = ZyBase::pszAddressHost;
const char *const countryHost = ZyBase::pszCountryHost;

void addUselessAnswers()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no JSON") << QByteArray("<html>busy</html>");
    QTest::newRow("cut") << QByteArray("{\"ip\":\"192.0.2.1\",\"country_code\":\"DE");
    QTest::newRow("behind the end") << QByteArray("{\"ip\":\"192.0.2.1\"} x");
    QTest::newRow("empty object") << QByteArray("{}");
    QTest::newRow("array") << QByteArray("[{\"ip\":\"192.0.2.1\",\"country_code\":\"DE\"}]");
    QTest::newRow("text") << QByteArray("\"192.0.2.1\"");
    QTest::newRow("NUL byte") << QByteArray("{\"ip\":\"192.0.2.1\"\0}", 19);
}

} // namespace

// The public address, and the country's code with it.
class TestPublicAddress : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<World> m_world;

private Q_SLOTS:
    void init() { m_world = std::make_unique<World>(); }
    void cleanup() { m_world.reset(); }

    void addressIsAskedForBehindTheHost()
    {
        m_world->answer(addressHost, "{\"ip\":\"192.0.2.1\"}");
        QCOMPARE(GetIP(), QStringLiteral("192.0.2.1"));
        QCOMPARE(m_world->asked(),
                 QStringList {QStringLiteral("CONNECT %1:443 HTTP/1.1").arg(QLatin1String(addressHost))});
        QVERIFY(m_world->requests(addressHost).first().startsWith("GET /?format=json HTTP/1.1\r\n"));
    }

    void addressIsThatOfTheAnswer_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("expected");
        QTest::newRow("IPv6") << QByteArray("{\"ip\":\"2001:db8::1\"}") << "2001:db8::1";
        QTest::newRow("any text") << QByteArray("{\"ip\":\" x<b> \"}") << " x<b> ";
        QTest::newRow("empty text") << QByteArray("{\"ip\":\"\"}") << "";
        QTest::newRow("beside others") << QByteArray("{\"a\":1,\"ip\":\"192.0.2.1\"}\n") << "192.0.2.1";
        QTest::newRow("no address") << QByteArray("{\"a\":1}") << QString();
        QTest::newRow("in another case") << QByteArray("{\"IP\":\"192.0.2.1\"}") << QString();
        QTest::newRow("no text") << QByteArray("{\"ip\":1}") << QString();
    }
    void addressIsThatOfTheAnswer()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, expected);
        m_world->answer(addressHost, body);
        const QString address = GetIP();
        QCOMPARE(address, expected);
        QCOMPARE(address.isNull(), expected.isNull());
    }

    void addressIsEmptyAndNotNullForAUselessAnswer_data() { addUselessAnswers(); }
    void addressIsEmptyAndNotNullForAUselessAnswer()
    {
        QFETCH(QByteArray, body);
        m_world->answer(addressHost, body);
        QVERIFY(GetIP().isEmpty());
        QVERIFY(!GetIP().isNull());
    }

    void addressIsEmptyAndNotNullWithoutTheService()
    {
        QVERIFY(GetIP().isEmpty());
        QVERIFY(!GetIP().isNull());
        m_world->answer(addressHost, [](Connection &client) { client.reset(); });
        QVERIFY(GetIP().isEmpty());
        QVERIFY(!GetIP().isNull());
    }

    void statusOfTheAnswerDoesNotCount()
    {
        m_world->answer(addressHost, [](Connection &client) {
            client.write("HTTP/1.1 500 Oops\r\nContent-Length: 18\r\n\r\n{\"ip\":\"192.0.2.1\"}");
        });
        QCOMPARE(GetIP(), QStringLiteral("192.0.2.1"));
    }

    void everyCallAsksAnew()
    {
        m_world->answer(addressHost, "{\"ip\":\"192.0.2.1\"}");
        QCOMPARE(GetIP(), QStringLiteral("192.0.2.1"));
        m_world->answer(addressHost, "{\"ip\":\"192.0.2.2\"}");
        QCOMPARE(GetIP(), QStringLiteral("192.0.2.2"));
        QCOMPARE(m_world->asked().size(), 2);
    }

    void countryIsAskedForAtItsPath()
    {
        m_world->answer(countryHost, "{\"country_code\":\"DE\",\"ip\":\"192.0.2.1\"}");
        QString code;
        QString address;
        QVERIFY(CNetworkUtils::GetIPCountryCode(code, address));
        QCOMPARE(code, QStringLiteral("DE"));
        QCOMPARE(address, QStringLiteral("192.0.2.1"));
        QCOMPARE(m_world->asked(),
                 QStringList {QStringLiteral("CONNECT %1:443 HTTP/1.1").arg(QLatin1String(countryHost))});
        QVERIFY(m_world->requests(countryHost).first().startsWith("GET /all.json HTTP/1.1\r\n"));
    }

    void keyThatIsLackingMakesItsTextNull_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("address");
        QTest::newRow("both") << QByteArray("{\"a\":1}") << QString() << QString();
        QTest::newRow("code") << QByteArray("{\"ip\":\"192.0.2.1\"}") << QString() << "192.0.2.1";
        QTest::newRow("address") << QByteArray("{\"country_code\":\"DE\"}") << "DE" << QString();
        QTest::newRow("empty is not null") << QByteArray("{\"country_code\":\"\",\"ip\":\"\"}") << ""
                                           << "";
        QTest::newRow("no texts") << QByteArray("{\"country_code\":1,\"ip\":null}") << QString() << QString();
    }
    void keyThatIsLackingMakesItsTextNull()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, code);
        QFETCH(QString, address);
        m_world->answer(countryHost, body);
        QString givenCode = QStringLiteral("before");
        QString givenAddress = QStringLiteral("before");
        QVERIFY(CNetworkUtils::GetIPCountryCode(givenCode, givenAddress));
        QCOMPARE(givenCode, code);
        QCOMPARE(givenCode.isNull(), code.isNull());
        QCOMPARE(givenAddress, address);
        QCOMPARE(givenAddress.isNull(), address.isNull());
    }

    void uselessAnswerLeavesBothTextsAlone_data() { addUselessAnswers(); }
    void uselessAnswerLeavesBothTextsAlone()
    {
        QFETCH(QByteArray, body);
        m_world->answer(countryHost, body);
        QString code = QStringLiteral("before");
        QString address = QStringLiteral("also before");
        QVERIFY(!CNetworkUtils::GetIPCountryCode(code, address));
        QCOMPARE(code, QStringLiteral("before"));
        QCOMPARE(address, QStringLiteral("also before"));
    }

    void serviceThatIsDownLeavesBothTextsAlone()
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
