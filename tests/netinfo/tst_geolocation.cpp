// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/netinfo/CNetworkUtils.h>
#include <ZyBase/netinfo/Services.h>

#include "Location.h"
#include "NetInfoTest.h"

#include <QTest>
#include <QTimer>

#include <thread>
#include <vector>

using ZyBase::CNetworkUtils;

namespace {

const char *const service = ZyBase::pszGeolocationHost;
const char *const pageService = ZyBase::pszGeolocationPageHost;

const QByteArray berlin =
    "{\"status\":\"success\",\"country\":\"Germany\",\"countryCode\":\"DE\",\"region\":\"BE\","
    "\"regionName\":\"Land Berlin\",\"city\":\"Berlin\",\"zip\":\"10115\",\"lat\":52.5,\"lon\":13.25,"
    "\"timezone\":\"Europe/Berlin\",\"query\":\"192.0.2.1\"}";
const QByteArray refusal = "{\"status\":\"fail\",\"country\":\"Germany\",\"lat\":52.5}";
const QByteArray page = "<table>\n<td>City:</td>\n<td>Paris</td>\n<td>Country:</td>\n<td>France</td>\n"
                        "<td>State:</td>\n<td>Ile-de-France</td>\n<td>Latitude:</td>\n<td>48.5</td>\n"
                        "<td>Longitude:</td>\n<td>2.25</td>\n</table>\n";

Location inBerlin()
{
    return {QStringLiteral("Germany"), QStringLiteral("Berlin, Land Berlin, Germany"), 52.5, 13.25};
}

Location inParis()
{
    return {QStringLiteral("France"), QStringLiteral("Paris, Ile-de-France, France"), 48.5, 2.25};
}

QString postLine()
{
    return QStringLiteral("POST http://%1/json HTTP/1.1").arg(QLatin1String(service));
}

QString pageLine()
{
    return QStringLiteral("CONNECT %1:443 HTTP/1.1").arg(QLatin1String(pageService));
}

} // namespace

// GetIPInfoAPI(), and which of the two sources GetIPInfo() queries.
class TestGeolocation : public NetInfoTest
{
    Q_OBJECT

private:
    static void addUnusableLocations()
    {
        addUnusableAnswers(berlin);
        QTest::newRow("another status") << refusal;
        QTest::newRow("no status") << QByteArray("{\"country\":\"Germany\"}");
        QTest::newRow("status in another case") << QByteArray(berlin).replace("success", "Success");
        QTest::newRow("status with a space") << QByteArray(berlin).replace("success", "success ");
        QTest::newRow("key of the status in another case") << QByteArray(berlin).replace("status", "Status");
        QTest::newRow("status is not a string") << QByteArray(berlin).replace("\"success\"", "true");
    }

private Q_SLOTS:
    void postsEmptyObjectOverHttp()
    {
        answer(service, berlin);
        Location location;
        QVERIFY(location.fill(GetIPInfoAPI));
        QCOMPARE(location, inBerlin());
        QCOMPARE(network().requestLines(), QStringList {postLine()});
        QVERIFY(network().requests(service).first().startsWith("POST /json HTTP/1.1\r\n"));
        QVERIFY(network().requests(service).first().endsWith("\r\n\r\n{}"));
    }

    void leavesPlacesOfMissingKeysEmpty_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<Location>("expected");
        const QString germany = QStringLiteral("Germany");
        QTest::newRow("status only") << QByteArray("{\"status\":\"success\"}")
                                     << Location {QString(), QStringLiteral(", , "), 0, 0};
        QTest::newRow("no city") << QByteArray(berlin).replace("\"city\"", "\"town\"")
                                 << Location {germany, QStringLiteral(", Land Berlin, Germany"), 52.5, 13.25};
        QTest::newRow("no region name")
            << QByteArray(berlin).replace("regionName", "other")
            << Location {germany, QStringLiteral("Berlin, , Germany"), 52.5, 13.25};
        QTest::newRow("no country") << QByteArray(berlin).replace("\"country\"", "\"land\"")
                                    << Location {QString(), QStringLiteral("Berlin, Land Berlin, "), 52.5,
                                                 13.25};
        QTest::newRow("no latitude") << QByteArray(berlin).replace("lat", "Lat")
                                     << Location {germany, inBerlin().text, 0, 13.25};
        QTest::newRow("no longitude")
            << QByteArray(berlin).replace("lon", "Lon") << Location {germany, inBerlin().text, 52.5, 0};
        QTest::newRow("coordinates are strings")
            << QByteArray(berlin).replace("52.5", "\"52.5\"").replace("13.25", "\"13.25\"")
            << Location {germany, inBerlin().text, 0, 0};
        QTest::newRow("names are not strings")
            << QByteArray("{\"status\":\"success\",\"country\":1,\"city\":null,\"regionName\":[]}")
            << Location {QString(), QStringLiteral(", , "), 0, 0};
        QTest::newRow("negative and whole")
            << QByteArray("{\"status\":\"success\",\"lat\":-33,\"lon\":-0.125}")
            << Location {QString(), QStringLiteral(", , "), -33, -0.125};
        QTest::newRow("other characters") << QByteArray(
            "{\"status\":\"success\",\"country\":\"\\u4e2d国\",\"city\":\"a&amp;b\",\"regionName\":\"<b>\"}")
                                          << Location {QStringLiteral("中国"),
                                                       QStringLiteral("a&amp;b, <b>, 中国"), 0, 0};
        // Each value is inserted separately: a marker in an earlier value is replaced by a later one.
        QTest::newRow("city contains a place marker")
            << QByteArray("{\"status\":\"success\",\"country\":\"C\",\"city\":\"%1\",\"regionName\":\"R\"}")
            << Location {QStringLiteral("C"), QStringLiteral("R, C, %3"), 0, 0};
        QTest::newRow("region contains a place marker")
            << QByteArray("{\"status\":\"success\",\"country\":\"C\",\"city\":\"A\",\"regionName\":\"%9%3\"}")
            << Location {QStringLiteral("C"), QStringLiteral("A, %9C, C"), 0, 0};
    }
    void leavesPlacesOfMissingKeysEmpty()
    {
        QFETCH(QByteArray, body);
        answer(service, body);
        Location location;
        QVERIFY(location.fill(GetIPInfoAPI));
        QTEST(location, "expected");
    }

    void keepsArgumentsAfterUnusableAnswer_data() { addUnusableLocations(); }
    void keepsArgumentsAfterUnusableAnswer()
    {
        QFETCH(QByteArray, body);
        answer(service, body);
        Location location;
        QVERIFY(!location.fill(GetIPInfoAPI));
        QCOMPARE(location, Location());
    }

    void keepsArgumentsIfServiceIsDown()
    {
        Location location;
        QVERIFY(!location.fill(GetIPInfoAPI));
        QCOMPARE(location, Location());
        QCOMPARE(network().requestLines(), QStringList {postLine()});
    }

    void ignoresHttpStatus()
    {
        network().route(service, [](Connection &client) {
            client.write("HTTP/1.1 503 Busy\r\nContent-Length: " + QByteArray::number(berlin.size())
                         + "\r\n\r\n" + berlin);
        });
        Location location;
        QVERIFY(location.fill(GetIPInfoAPI));
        QCOMPARE(location, inBerlin());
    }

    void skipsPageAfterSuccess()
    {
        answer(service, berlin);
        answer(pageService, page);
        Location location;
        QVERIFY(location.fill(CNetworkUtils::GetIPInfo));
        QCOMPARE(location, inBerlin());
        QCOMPARE(network().requestLines(), QStringList {postLine()});
    }

    void readsPageAfterUnusableAnswer_data() { addUnusableLocations(); }
    void readsPageAfterUnusableAnswer()
    {
        QFETCH(QByteArray, body);
        answer(service, body);
        answer(pageService, page);
        Location location;
        QVERIFY(location.fill(CNetworkUtils::GetIPInfo));
        QCOMPARE(location, inParis());
        QCOMPARE(network().requestLines(), QStringList({postLine(), pageLine()}));
    }

    void skipsPageAfterSuccessWithoutValues()
    {
        answer(service, "{\"status\":\"success\"}");
        answer(pageService, page);
        Location location;
        QVERIFY(location.fill(CNetworkUtils::GetIPInfo));
        QCOMPARE(location, (Location {QString(), QStringLiteral(", , "), 0, 0}));
    }

    void queriesBothSourcesOnceInOrder()
    {
        Location location;
        QVERIFY(!location.fill(CNetworkUtils::GetIPInfo));
        QCOMPARE(location, Location());
        QCOMPARE(network().requestLines(), QStringList({postLine(), pageLine()}));
    }

    void setsCountryOfIncompletePage()
    {
        answer(pageService, "<td>Country:</td>\n<td>France</td>\n");
        Location location;
        QVERIFY(!location.fill(CNetworkUtils::GetIPInfo));
        Location expected;
        expected.country = QStringLiteral("France");
        QCOMPARE(location, expected);
    }

    void doesNotCacheLocations()
    {
        answer(service, berlin);
        Location first;
        QVERIFY(first.fill(CNetworkUtils::GetIPInfo));
        answer(service, refusal);
        Location second;
        QVERIFY(!second.fill(CNetworkUtils::GetIPInfo));
        QCOMPARE(second, Location());
    }

    void deliversEventsDuringRequest()
    {
        std::atomic<bool> isDelivered {false};
        network().route(service, [&isDelivered](Connection &client) {
            while (!isDelivered && client.sleep(1)) {}
            RawServer::answerWith(berlin)(client);
        });
        Location inner;
        QTimer::singleShot(0, this, [&] {
            isDelivered = true;
            inner.fill(GetIPInfoAPI); // a nested call
        });
        Location outer;
        QVERIFY(outer.fill(GetIPInfoAPI));
        QCOMPARE(outer, inBerlin());
        QCOMPARE(inner, inBerlin());
    }

    void supportsConcurrentCalls()
    {
        answer(service, refusal);
        answer(pageService, page);
        std::vector<Location> locations(8);
        std::vector<std::thread> threads;
        for (Location &location : locations)
            threads.emplace_back([&location] { location.fill(CNetworkUtils::GetIPInfo); });
        for (std::thread &thread : threads)
            thread.join();
        for (const Location &location : locations)
            QCOMPARE(location, inParis());
    }
};

QTEST_GUILESS_MAIN(TestGeolocation)

#include "tst_geolocation.moc"
