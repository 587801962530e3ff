// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/netinfo/CNetworkUtils.h>
#include <ZyBase/netinfo/Services.h>

#include "Location.h"
#include "NetInfoTest.h"

#include <QTest>

namespace {

const char *const service = ZyBase::pszGeolocationPageHost;

const QByteArray city = "<td>City:</td>\n<td>Paris</td>\n";
const QByteArray country = "<td>Country:</td>\n<td>France</td>\n";
const QByteArray state = "<td>State:</td>\n<td>Ile-de-France</td>\n";
const QByteArray latitude = "<td>Latitude:</td>\n<td>48.5</td>\n";
const QByteArray longitude = "<td>Longitude:</td>\n<td>2.25</td>\n";
const QByteArray all = city + country + state + latitude + longitude;

const QString france = QStringLiteral("France");
const QString paris = QStringLiteral("Paris, Ile-de-France, France");

Location inParis()
{
    return {france, paris, 48.5, 2.25};
}

Location countryOnly(const QString &name = france)
{
    Location location;
    location.country = name;
    return location;
}

} // namespace

// GetIPInfoMy(), the second source.
class TestGeolocationPage : public NetInfoTest
{
    Q_OBJECT

private Q_SLOTS:
    void fetchesFrontPage()
    {
        answer(service, all);
        Location location;
        QVERIFY(location.fill(GetIPInfoMy));
        QCOMPARE(location, inParis());
        QCOMPARE(network().requestLines(),
                 QStringList {QStringLiteral("CONNECT %1:443 HTTP/1.1").arg(QLatin1String(service))});
        QVERIFY(network().requests(service).first().startsWith("GET / HTTP/1.1\r\n"));
    }

    void acceptsPageWithFiveHits_data()
    {
        QTest::addColumn<QByteArray>("page");
        QTest::addColumn<Location>("expected");
        QTest::newRow("in another order") << longitude + country + latitude + state + city << inParis();
        QTest::newRow("other lines between") << "<html>\n\n" + city + "\n<tr>\n" + country + "x\n" + state
                                                    + latitude + "</tr>\n" + longitude + "</html>"
                                             << inParis();
        QTest::newRow("no line end at the end") << all.chopped(1) << inParis();
        QTest::newRow("CRLF line ends") << QByteArray(all).replace("\n", "\r\n") << inParis();
        QTest::newRow("other content on the marker lines")
            << QByteArray(all).replace("<td>City:</td>", "  <tr><td>City:</td><td class=x>") << inParis();
        QTest::newRow("other content on the value lines")
            << QByteArray(all).replace("<td>Paris</td>", "  <td class=\"x\">Paris</td><td>x</td>")
            << inParis();
        QTest::newRow("entities are kept")
            << QByteArray(all).replace("Paris", "&Eacute;vry &amp; co")
            << Location {france, QStringLiteral("&Eacute;vry &amp; co, Ile-de-France, France"), 48.5, 2.25};
        QTest::newRow("UTF-8") << QByteArray(all).replace(
            "Ile", "Île") << Location {france, QStringLiteral("Paris, Île-de-France, France"), 48.5, 2.25};
        QTest::newRow("spaces are kept in strings, not in numbers")
            << QByteArray(all).replace("Paris", " Paris ").replace("48.5", " 48.5 ")
            << Location {france, QStringLiteral(" Paris , Ile-de-France, France"), 48.5, 2.25};
        QTest::newRow("value without end tag, CRLF line end")
            << QByteArray(all).replace("<td>Paris</td>", "Paris\r")
            << Location {france, QStringLiteral("Paris\r, Ile-de-France, France"), 48.5, 2.25};
        QTest::newRow("coordinates are not numbers")
            << QByteArray(all).replace("48.5", "48.5 N").replace("2.25", "")
            << Location {france, paris, 0, 0};
        QTest::newRow("negative number and exponent")
            << QByteArray(all).replace("48.5", "-33.5").replace("2.25", "1e2")
            << Location {france, paris, -33.5, 100};
        QTest::newRow("decimal comma")
            << QByteArray(all).replace("48.5", "48,5") << Location {france, paris, 0, 2.25};
        QTest::newRow("city twice: the last one is used")
            << all + "<td>City:</td>\n<td>Lyon</td>\n"
            << Location {france, QStringLiteral("Lyon, Ile-de-France, France"), 48.5, 2.25};
        QTest::newRow("country twice: the last one is used")
            << all + "<td>Country:</td>\n<td>Spain</td>\n"
            << Location {QStringLiteral("Spain"), QStringLiteral("Paris, Ile-de-France, Spain"), 48.5, 2.25};
        QTest::newRow("one twice, no city")
            << country + country + state + latitude + longitude
            << Location {france, QStringLiteral(", Ile-de-France, France"), 48.5, 2.25};
        QTest::newRow("one twice, no state")
            << city + city + country + latitude + longitude
            << Location {france, QStringLiteral("Paris, , France"), 48.5, 2.25};
        QTest::newRow("one twice, no country")
            << city + city + state + latitude + longitude
            << Location {QStringLiteral("country before"),
                         QStringLiteral("Paris, Ile-de-France, country before"), 48.5, 2.25};
        QTest::newRow("one twice, no latitude")
            << city + city + country + state + longitude << Location {france, paris, 0, 2.25};
        QTest::newRow("one twice, no longitude")
            << city + city + country + state + latitude << Location {france, paris, 48.5, 0};
        QTest::newRow("one five times")
            << city + city + city + city + city
            << Location {QStringLiteral("country before"), QStringLiteral("Paris, , country before"), 0, 0};
        // Every line is searched for all markers, also the lines of the values.
        QTest::newRow("all on one line") << QByteArray(
            "<td>City:</td><td>Country:</td><td>State:</td><td>Latitude:</td><td>Longitude:</td>\n7\n")
                                         << Location {QStringLiteral("7"), QStringLiteral("7, 7, 7"), 7, 7};
        QTest::newRow("marker instead of a value")
            << "<td>City:</td>\n" + country + state + latitude + longitude
            << Location {france, QStringLiteral("Country:, Ile-de-France, France"), 48.5, 2.25};
        QTest::newRow("further marker on the last line is ignored") << all + "<td>City:</td>" << inParis();
        QTest::newRow("NUL byte after a value")
            << QByteArray(all).replace("Paris</td>", QByteArray("Paris\0x</td>", 12)) << inParis();
        QTest::newRow("city contains a place marker")
            << QByteArray(all).replace("Paris", "%1")
            << Location {france, QStringLiteral("Ile-de-France, France, %3"), 48.5, 2.25};
    }
    void acceptsPageWithFiveHits()
    {
        QFETCH(QByteArray, page);
        answer(service, page);
        Location location;
        QVERIFY(location.fill(GetIPInfoMy));
        QTEST(location, "expected");
    }

    void rejectsPageWithFewerHits_data()
    {
        QTest::addColumn<QByteArray>("page");
        QTest::addColumn<Location>("expected");
        QTest::newRow("empty page") << QByteArray() << Location();
        QTest::newRow("no markers") << QByteArray("<html>\n<p>busy</p>\n</html>\n") << Location();
        QTest::newRow("no longitude") << city + country + state + latitude << countryOnly();
        QTest::newRow("no country") << city + state + latitude + longitude << Location();
        QTest::newRow("country only") << country << countryOnly();
        QTest::newRow("country without a value")
            << QByteArray("<td>Country:</td>\n\n") << countryOnly(QString());
        QTest::newRow("truncated") << all.left(all.indexOf("Longitude")) << countryOnly();
        QTest::newRow("fifth marker on the last line")
            << city + country + state + latitude + "<td>Longitude:</td>" << countryOnly();
        QTest::newRow("country on the last line")
            << city + state + latitude + longitude + "<td>Country:</td>" << Location();
        QTest::newRow("marker in another case")
            << QByteArray(all).replace("<td>City:", "<td>city:") << countryOnly();
        QTest::newRow("tag of a marker in capitals")
            << QByteArray(all).replace("<td>City:</td>", "<TD>City:</TD>") << countryOnly();
        QTest::newRow("space in a marker") << QByteArray(all).replace("City:", "City: ") << countryOnly();
        QTest::newRow("no colon") << QByteArray(all).replace("City:", "City") << countryOnly();
        QTest::newRow("marker after a NUL byte")
            << QByteArray(all).replace("<td>City:", QByteArray("\0<td>City:", 10)) << countryOnly();
        QTest::newRow("CR line ends") << QByteArray(all).replace('\n', '\r') << Location();
    }
    void rejectsPageWithFewerHits()
    {
        QFETCH(QByteArray, page);
        answer(service, page);
        Location location;
        QVERIFY(!location.fill(GetIPInfoMy));
        QTEST(location, "expected");
    }

    void returnsNullOnlyForMissingMarker()
    {
        // Only the country shows this: the other values become parts of one string.
        answer(service, QByteArray(all).replace("<td>France</td>", "<td>"));
        Location location;
        QVERIFY(location.fill(GetIPInfoMy));
        QVERIFY(location.country.isEmpty());
        QVERIFY(!location.country.isNull());
    }

    void keepsArgumentsIfServiceIsDown()
    {
        Location location;
        QVERIFY(!location.fill(GetIPInfoMy));
        QCOMPARE(location, Location());
        network().route(service, [](Connection &client) { client.reset(); });
        QVERIFY(!location.fill(GetIPInfoMy));
        QCOMPARE(location, Location());
    }

    void readsTruncatedPage()
    {
        network().route(service, [](Connection &client) {
            client.write("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n" + all);
        });
        Location location;
        QVERIFY(location.fill(GetIPInfoMy));
        QCOMPARE(location, inParis());
    }

    void readsLargePageCompletely()
    {
        constexpr int size = (ZYBASE_SANITIZED ? 1 : 10) * 1024 * 1024;
        QByteArray page;
        page.reserve(size + all.size());
        while (page.size() < size)
            page += "<tr><td>x</td></tr>\n";
        answer(service, page + all);
        Location location;
        QVERIFY(location.fill(GetIPInfoMy));
        QCOMPARE(location, inParis());
    }

    void readsPageOfEmptyLinesCompletely()
    {
        answer(service, QByteArray(500000, '\n') + all);
        Location location;
        QVERIFY(location.fill(GetIPInfoMy));
        QCOMPARE(location, inParis());
    }
};

QTEST_GUILESS_MAIN(TestGeolocationPage)

#include "tst_geolocation_page.moc"
