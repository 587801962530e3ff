// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/netinfo/CNetworkUtils.h>
#include <ZyBase/netinfo/Services.h>

#include "Location.h"
#include "MessageCapture.h"
#include "World.h"

#include <QTest>
#include <QTimer>

#include <thread>
#include <vector>

using LocalServices::Connection;
using LocalServices::RawServer;
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

void addUselessAnswers()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no JSON") << QByteArray("<html>busy</html>");
    QTest::newRow("cut") << berlin.chopped(1);
    QTest::newRow("behind the end") << berlin + 'x';
    QTest::newRow("NUL byte") << berlin + '\0';
    QTest::newRow("empty object") << QByteArray("{}");
    QTest::newRow("array") << '[' + berlin + ']';
    QTest::newRow("text") << QByteArray("\"success\"");
    QTest::newRow("another status") << refusal;
    QTest::newRow("no status") << QByteArray("{\"country\":\"Germany\"}");
    QTest::newRow("status in capitals") << QByteArray(berlin).replace("success", "Success");
    QTest::newRow("status with a blank") << QByteArray(berlin).replace("success", "success ");
    QTest::newRow("key of the status in another case") << QByteArray(berlin).replace("status", "Status");
    QTest::newRow("status is no text") << QByteArray(berlin).replace("\"success\"", "true");
}

} // namespace

// The JSON source, and which of the two sources is asked.
class TestGeolocation : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<World> m_world;

private Q_SLOTS:
    void init() { m_world = std::make_unique<World>(); }
    void cleanup() { m_world.reset(); }

    void emptyObjectIsPostedInPlainHttp()
    {
        m_world->answer(service, berlin);
        Location location;
        QVERIFY(location.fill(GetIPInfoAPI));
        QCOMPARE(location, inBerlin());
        QCOMPARE(m_world->asked(), QStringList {postLine()});
        QVERIFY(m_world->requests(service).first().startsWith("POST /json HTTP/1.1\r\n"));
        QVERIFY(m_world->requests(service).first().endsWith("\r\n\r\n{}"));
    }

    void keysThatAreLackingAreEmptyPlaces_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<Location>("expected");
        const QString germany = QStringLiteral("Germany");
        QTest::newRow("status only") << QByteArray("{\"status\":\"success\"}")
                                     << Location {QString(), QStringLiteral(", , "), 0, 0};
        QTest::newRow("no city") << QByteArray(berlin).replace("\"city\"", "\"town\"")
                                 << Location {germany, QStringLiteral(", Land Berlin, Germany"), 52.5, 13.25};
        QTest::newRow("region is no name of it")
            << QByteArray(berlin).replace("regionName", "other")
            << Location {germany, QStringLiteral("Berlin, , Germany"), 52.5, 13.25};
        QTest::newRow("no country") << QByteArray(berlin).replace("\"country\"", "\"land\"")
                                    << Location {QString(), QStringLiteral("Berlin, Land Berlin, "), 52.5,
                                                 13.25};
        QTest::newRow("no latitude") << QByteArray(berlin).replace("lat", "Lat")
                                     << Location {germany, inBerlin().text, 0, 13.25};
        QTest::newRow("no longitude")
            << QByteArray(berlin).replace("lon", "Lon") << Location {germany, inBerlin().text, 52.5, 0};
        QTest::newRow("coordinates are texts")
            << QByteArray(berlin).replace("52.5", "\"52.5\"").replace("13.25", "\"13.25\"")
            << Location {germany, inBerlin().text, 0, 0};
        QTest::newRow("names are no texts")
            << QByteArray("{\"status\":\"success\",\"country\":1,\"city\":null,\"regionName\":[]}")
            << Location {QString(), QStringLiteral(", , "), 0, 0};
        QTest::newRow("negative and whole")
            << QByteArray("{\"status\":\"success\",\"lat\":-33,\"lon\":-0.125}")
            << Location {QString(), QStringLiteral(", , "), -33, -0.125};
        QTest::newRow("letters as they are") << QByteArray(
            "{\"status\":\"success\",\"country\":\"\\u4e2d国\",\"city\":\"a&amp;b\",\"regionName\":\"<b>\"}")
                                             << Location {QStringLiteral("中国"),
                                                          QStringLiteral("a&amp;b, <b>, 中国"), 0, 0};
        // Each is filled in by itself, so what looks like a place in an earlier one is filled by a later.
        QTest::newRow("city that looks like a place")
            << QByteArray("{\"status\":\"success\",\"country\":\"C\",\"city\":\"%1\",\"regionName\":\"R\"}")
            << Location {QStringLiteral("C"), QStringLiteral("R, C, %3"), 0, 0};
        QTest::newRow("region that looks like a place")
            << QByteArray("{\"status\":\"success\",\"country\":\"C\",\"city\":\"A\",\"regionName\":\"%9%3\"}")
            << Location {QStringLiteral("C"), QStringLiteral("A, %9C, C"), 0, 0};
    }
    void keysThatAreLackingAreEmptyPlaces()
    {
        QFETCH(QByteArray, body);
        m_world->answer(service, body);
        const MessageCapture messages;
        Location location;
        QVERIFY(location.fill(GetIPInfoAPI));
        QTEST(location, "expected");
        QCOMPARE(messages.messages().size(), 0);
    }

    void uselessAnswerLeavesTheArgumentsAlone_data() { addUselessAnswers(); }
    void uselessAnswerLeavesTheArgumentsAlone()
    {
        QFETCH(QByteArray, body);
        m_world->answer(service, body);
        Location location;
        QVERIFY(!location.fill(GetIPInfoAPI));
        QCOMPARE(location, Location());
    }

    void serviceThatIsDownLeavesTheArgumentsAlone()
    {
        Location location;
        QVERIFY(!location.fill(GetIPInfoAPI));
        QCOMPARE(location, Location());
        QCOMPARE(m_world->asked(), QStringList {postLine()});
    }

    void httpStatusOfTheAnswerDoesNotCount()
    {
        m_world->answer(service, [](Connection &client) {
            client.write("HTTP/1.1 503 Busy\r\nContent-Length: " + QByteArray::number(berlin.size())
                         + "\r\n\r\n" + berlin);
        });
        Location location;
        QVERIFY(location.fill(GetIPInfoAPI));
        QCOMPARE(location, inBerlin());
    }

    void pageIsNotAskedForWhereTheServiceDelivers()
    {
        m_world->answer(service, berlin);
        m_world->answer(pageService, page);
        Location location;
        QVERIFY(location.fill(CNetworkUtils::GetIPInfo));
        QCOMPARE(location, inBerlin());
        QCOMPARE(m_world->asked(), QStringList {postLine()});
    }

    void pageIsAskedForWhereTheServiceFails_data() { addUselessAnswers(); }
    void pageIsAskedForWhereTheServiceFails()
    {
        QFETCH(QByteArray, body);
        m_world->answer(service, body);
        m_world->answer(pageService, page);
        Location location;
        QVERIFY(location.fill(CNetworkUtils::GetIPInfo));
        QCOMPARE(location, inParis());
        QCOMPARE(m_world->asked(), QStringList({postLine(), pageLine()}));
    }

    void successWithNothingElseIsNotMendedByThePage()
    {
        m_world->answer(service, "{\"status\":\"success\"}");
        m_world->answer(pageService, page);
        Location location;
        QVERIFY(location.fill(CNetworkUtils::GetIPInfo));
        QCOMPARE(location, (Location {QString(), QStringLiteral(", , "), 0, 0}));
    }

    void bothSourcesAreAskedOnceAndInTheirOrder()
    {
        Location location;
        QVERIFY(!location.fill(CNetworkUtils::GetIPInfo));
        QCOMPARE(location, Location());
        QCOMPARE(m_world->asked(), QStringList({postLine(), pageLine()}));
    }

    void countryOfAPageThatFailsRemains()
    {
        m_world->answer(pageService, "<td>Country:</td>\n<td>France</td>\n");
        Location location;
        QVERIFY(!location.fill(CNetworkUtils::GetIPInfo));
        Location expected;
        expected.country = QStringLiteral("France");
        QCOMPARE(location, expected);
    }

    void nothingIsRemembered()
    {
        m_world->answer(service, berlin);
        Location first;
        QVERIFY(first.fill(CNetworkUtils::GetIPInfo));
        m_world->answer(service, refusal);
        Location second;
        QVERIFY(!second.fill(CNetworkUtils::GetIPInfo));
        QCOMPARE(second, Location());
    }

    void eventsAreDeliveredMeanwhile()
    {
        std::atomic<bool> isDelivered {false};
        m_world->answer(service, [&isDelivered](Connection &client) {
            while (!isDelivered && client.sleep(1)) {}
            RawServer::answerWith(berlin)(client);
        });
        Location inner;
        QTimer::singleShot(0, this, [&] {
            isDelivered = true;
            inner.fill(GetIPInfoAPI); // re-entry
        });
        Location outer;
        QVERIFY(outer.fill(GetIPInfoAPI));
        QCOMPARE(outer, inBerlin());
        QCOMPARE(inner, inBerlin());
    }

    void threadsMayAskAtTheSameTime()
    {
        m_world->answer(service, refusal);
        m_world->answer(pageService, page);
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
