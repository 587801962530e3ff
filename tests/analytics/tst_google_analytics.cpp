// SPDX-License-Identifier: LGPL-2.1-or-later

#include "AnalyticsTest.h"

#include "ProcessFigures.h"
#include "Utf8.h"
#include "Waiting.h"

#include <QMetaMethod>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslConfiguration>

using LocalServices::Certificate;
using LocalServices::Proxy;
using namespace std::chrono_literals;

namespace {

enum class Mode { Sync, Async };

const QByteArray page = "<h1>a page</h1>";

Outcome resultOf(const QByteArray &data)
{
    return result(Form::PostAsync, data, -1);
}

QByteArray rawAnswer(const QByteArray &status, const QByteArray &body, const QByteArray &headers = {})
{
    return "HTTP/1.1 " + status + "\r\n" + headers + "Content-Length: " + QByteArray::number(body.size())
           + "\r\nConnection: close\r\n\r\n" + body;
}

} // namespace
Q_DECLARE_METATYPE(Mode)

class TestGoogleAnalytics : public AnalyticsTest
{
    Q_OBJECT

private:
    static void addModes()
    {
        QTest::addColumn<Mode>("mode");
        QTest::newRow("StartRequestSync") << Mode::Sync;
        QTest::newRow("StartRequestAsync") << Mode::Async;
    }

    // Sends an event in either mode. A failed synchronous call has the outcome of a refused connection.
    static Outcome send(Mode mode, const Event &event = Event())
    {
        if (mode == Mode::Sync) {
            CGoogleAnalytics analytics;
            return sendSync(analytics, event) ? resultOf("true") : resultOf("");
        }
        WatchedEvent watched;
        watched.start(event);
        watched.waitForAll();
        return watched.outcomes().value(0);
    }

    GaCollector::Event received()
    {
        const QList<GaCollector::Event> events = network().collector().events();
        return events.size() == 1 ? events.first() : GaCollector::Event();
    }

private Q_SLOTS:
    void sendsValidEvent_data() { addModes(); }
    void sendsValidEvent()
    {
        QFETCH(Mode, mode);
        QCOMPARE(send(mode), resultOf(mode == Mode::Sync ? "true" : ""));
        QCOMPARE(network().collector().events().size(), 1);
        QCOMPARE(received().problems, QStringList());
    }

    void sendsIndentedBody_data() { addModes(); }
    void sendsIndentedBody()
    {
        QFETCH(Mode, mode);
        send(mode, {utf8("C"), utf8("M"), utf8("S"), utf8("N"), utf8("A"), utf8("L")});
        QCOMPARE(received().request.body, QByteArray("{\n"
                                                     "    \"client_id\": \"C\",\n"
                                                     "    \"events\": [\n"
                                                     "        {\n"
                                                     "            \"name\": \"N\",\n"
                                                     "            \"params\": {\n"
                                                     "                \"event_category\": \"A\",\n"
                                                     "                \"event_label\": \"L\"\n"
                                                     "            }\n"
                                                     "        }\n"
                                                     "    ],\n"
                                                     "    \"user_id\": \"C\"\n"
                                                     "}\n"));
    }

    void escapesStringsAsJson_data() { addEscapedStrings(); }
    void escapesStringsAsJson()
    {
        QFETCH(QString, value);
        QFETCH(QByteArray, json);
        send(Mode::Sync, {value, utf8("M"), utf8("S"), value, value, value});
        const QByteArray body = received().request.body;
        QVERIFY(body.contains("\"client_id\": " + json + ",\n"));
        QVERIFY(body.contains("\"name\": " + json + ",\n"));
        QVERIFY(body.contains("\"event_category\": " + json + ",\n"));
        QVERIFY(body.contains("\"event_label\": " + json + "\n"));
        QVERIFY(body.endsWith("\"user_id\": " + json + "\n}\n"));
    }

    void sendsIdentifiersInQuery_data()
    {
        QTest::addColumn<QString>("measurementId");
        QTest::addColumn<QString>("apiSecret");
        QTest::addColumn<QByteArray>("query");
        const auto row = [](const char *name, const char *id, const char *secret, const char *query) {
            QTest::newRow(name) << utf8(id) << utf8(secret) << QByteArray(query);
        };
        row("plain", "G-ABC123", "Sec_ret-1", "measurement_id=G-ABC123&api_secret=Sec_ret-1");
        row("empty", "", "", "measurement_id=&api_secret=");
        row("ampersand", "a&b=c", "d&e", "measurement_id=a&b=c&api_secret=d&e");
        row("escaped character", "%41", "%26", "measurement_id=A&api_secret=%26");
        row("single percent sign", "100%", "%zz", "measurement_id=100%25&api_secret=%25zz");
        row("space", "a b", "c d", "measurement_id=a%20b&api_secret=c%20d");
        row("plus", "a+b", "c+d", "measurement_id=a+b&api_secret=c+d");
        row("other characters", "é", "文", "measurement_id=%C3%A9&api_secret=%E6%96%87");
        row("question mark", "a?b", "c?d", "measurement_id=a?b&api_secret=c?d");
        row("number sign ends the query", "a", "b#c", "measurement_id=a&api_secret=b");
        // The secret replaces the lowest remaining marker.
        row("marker of the secret in the identifier", "%3", "S", "measurement_id=S&api_secret=S");
        row("lower marker", "x%1y", "S", "measurement_id=xSy&api_secret=%253");
        row("marker in the secret", "M", "%1", "measurement_id=M&api_secret=%251");
    }
    void sendsIdentifiersInQuery()
    {
        QFETCH(QString, measurementId);
        QFETCH(QString, apiSecret);
        QFETCH(QByteArray, query);
        for (const Mode mode : {Mode::Sync, Mode::Async}) {
            send(mode, {utf8("C"), measurementId, apiSecret, utf8("N"), utf8("A"), utf8("L")});
            QVERIFY(!network().collector().events().isEmpty());
            QCOMPARE(network().collector().events().last().request.target, "/mp/collect?" + query);
        }
        QCOMPARE(network().collector().events().size(), 2);
    }

    void sendsEventOfEmptyStrings_data() { addModes(); }
    void sendsEventOfEmptyStrings()
    {
        QFETCH(Mode, mode);
        const QString empty = QStringLiteral("");
        QCOMPARE(send(mode, {empty, empty, empty, empty, empty, empty}),
                 resultOf(mode == Mode::Sync ? "true" : ""));
        QCOMPARE(received().request.target, QByteArray("/mp/collect?measurement_id=&api_secret="));
        QCOMPARE(received().problems, QStringList({utf8("measurement_id"), utf8("api_secret"),
                                                   utf8("client_id"), utf8("user_id"), utf8("name")}));
    }

    void sendsOverTls_data() { addModes(); }
    void sendsOverTls()
    {
        QFETCH(Mode, mode);
        send(mode);
        QCOMPARE(network().requestLines(),
                 QStringList {utf8("CONNECT www.google-analytics.com:443 HTTP/1.1")});
        QCOMPARE(received().request.header("Host"), QByteArray("www.google-analytics.com"));
    }

    void sendsHeadersOfPlainPost_data() { addModes(); }
    void sendsHeadersOfPlainPost()
    {
        QFETCH(Mode, mode);
        send(mode);
        const HttpServer::Request request = received().request;
        QCOMPARE(request.method, QByteArray("POST"));
        QCOMPARE(request.header("Content-Type"), QByteArray("application/json"));
        QCOMPARE(request.header("User-Agent"), QByteArray("Mozilla/5.0"));
        QVERIFY(request.header("Cookie").isNull());

        QNetworkAccessManager manager;
        QNetworkRequest plain(QUrl(QStringLiteral("https://www.google-analytics.com/mp/collect")));
        plain.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
        const std::unique_ptr<QNetworkReply> reply(manager.post(plain, request.body));
        QTRY_VERIFY_WITH_TIMEOUT(reply->isFinished(), longestWaitMs);
        QCOMPARE(request.headers, network().collector().events().last().request.headers);
    }

    void rejectsInvalidCertificate_data()
    {
        QTest::addColumn<QByteArray>("certificate");
        for (const char *certificate : {"other authority", "other name", "self-signed", "expired"})
            QTest::newRow(certificate) << QByteArray(certificate);
    }
    void rejectsInvalidCertificate()
    {
        QFETCH(QByteArray, certificate);
        const Authority other;
        Proxy proxy([&](const QString &host) -> Certificate {
            if (certificate == "other authority")
                return other.issue(host);
            if (certificate == "other name")
                return network().authority().issue(QStringLiteral("google-analytics.com.example"));
            if (certificate == "self-signed")
                return Authority::selfSigned(host);
            return network().authority().issue(host, QDateTime::currentDateTimeUtc().addSecs(-3600));
        });
        proxy.routeAll(network().collector().url());
        useProxy(proxy.port());
        QCOMPARE(send(Mode::Sync), resultOf(""));
        QCOMPARE(send(Mode::Async), resultOf(""));
        QCOMPARE(proxy.requestLines().size(), 2);
        QVERIFY(network().collector().events().isEmpty());
    }

    void usesDefaultSslConfiguration_data() { addModes(); }
    void usesDefaultSslConfiguration()
    {
        QFETCH(Mode, mode);
        const Authority other;
        Proxy proxy(other);
        proxy.routeAll(network().collector().url());
        useProxy(proxy.port());
        QSslConfiguration trusting = QSslConfiguration::defaultConfiguration();
        trusting.setPeerVerifyMode(QSslSocket::VerifyNone);
        QSslConfiguration::setDefaultConfiguration(trusting);
        QCOMPARE(send(mode), resultOf(mode == Mode::Sync ? "true" : ""));
        QCOMPARE(network().collector().events().size(), 1);
    }

    void reportsAnswer_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<bool>("isTrue");
        QTest::addColumn<QByteArray>("data");
        QTest::newRow("200") << rawAnswer("200 OK", page) << true << page;
        QTest::newRow("201") << rawAnswer("201 Created", page) << true << page;
        QTest::newRow("204") << QByteArray("HTTP/1.1 204 No Content\r\n\r\n") << true << QByteArray();
        QTest::newRow("302") << rawAnswer("302 Found", page, "Location: /other\r\n") << true << page;
        QTest::newRow("400") << rawAnswer("400 Bad", page) << false << page;
        QTest::newRow("403") << rawAnswer("403 Forbidden", page) << false << page;
        QTest::newRow("404") << rawAnswer("404 Not Found", page) << false << page;
        QTest::newRow("500") << rawAnswer("500 Error", page) << false << page;
        QTest::newRow("503") << rawAnswer("503 Away", page) << false << page;
        QTest::newRow("truncated") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf")
                                   << false << QByteArray("half");
        QTest::newRow("no answer") << QByteArray() << false << QByteArray();
        QTest::newRow("not HTTP") << QByteArray("hello\r\n\r\n") << false << QByteArray();
    }
    void reportsAnswer()
    {
        QFETCH(QByteArray, answer);
        QFETCH(bool, isTrue);
        QFETCH(QByteArray, data);
        const RawAnswer server(answer);
        routeEvents(server.url());
        CGoogleAnalytics analytics;
        QCOMPARE(sendSync(analytics), isTrue);
        QCOMPARE(send(Mode::Async), resultOf(data));
    }

    void failsIfServerIsDown_data()
    {
        QTest::addColumn<bool>("hasProxy");
        QTest::newRow("no server") << true;
        QTest::newRow("no network") << false;
    }
    void failsIfServerIsDown()
    {
        QFETCH(bool, hasProxy);
        const LocalServices::ReservedPort closedPort;
        if (hasProxy)
            routeEvents(closedPort.url());
        else
            useProxy(closedPort.number());
        CGoogleAnalytics analytics;
        QVERIFY(!sendSync(analytics));
        QCOMPARE(send(Mode::Async), resultOf(""));
    }

    void doesNotRepeatRequest()
    {
        const RawAnswer server(rawAnswer("503 Away", page));
        routeEvents(server.url());
        send(Mode::Sync);
        send(Mode::Async);
        QVERIFY(staysTrueFor(50ms, [&] { return server.requests().size() == 2; }));
    }

    void copiesArguments()
    {
        WatchedEvent watched;
        for (int i = 0; i < 20; ++i) {
            Event event;
            event.clientId = QString::number(i);
            watched.start(event);
            for (QString *part : {&event.clientId, &event.measurementId, &event.apiSecret, &event.name,
                                  &event.category, &event.label})
                part->fill(QLatin1Char('x'), 5000);
        }
        QVERIFY(watched.waitForAll());
        QStringList clients;
        const QList<GaCollector::Event> events = network().collector().events();
        for (const GaCollector::Event &event : events) {
            QCOMPARE(event.problems, QStringList());
            QCOMPARE(event.request.target, QByteArray("/mp/collect?measurement_id=G-1&api_secret=secret"));
            clients << event.body.value(QStringLiteral("client_id")).toString();
        }
        clients.removeDuplicates();
        QCOMPARE(clients.size(), 20);
    }

    void emitsResultInWorkerThread()
    {
        WatchedEvent watched;
        watched.start();
        QVERIFY(watched.waitForAll());
        QCOMPARE(watched.outcomes(), QList<Outcome> {resultOf("")});
        QVERIFY(watched.areEmittedInWorkers());
    }

    void endsThreadAfterOutcome()
    {
        send(Mode::Async); // Qt starts its own threads at the first request
        QTRY_COMPARE_WITH_TIMEOUT(network().openConnections(), 0, longestWaitMs);
        const int before = ProcessFigures::threadCount();
        for (int i = 0; i < 10; ++i)
            QCOMPARE(send(Mode::Async), resultOf(""));
        QTRY_VERIFY_WITH_TIMEOUT(ProcessFigures::threadCount() <= before, longestWaitMs);
    }

    void disconnectsBeforeDestroyed()
    {
        int calls = 0;
        auto analytics = std::make_unique<CGoogleAnalytics>();
        connect(analytics.get(), &QObject::destroyed, this, [&] { ++calls; });
        analytics.reset();
        QCOMPARE(calls, 0);
    }

    void keepsParent()
    {
        QObject parent;
        CGoogleAnalytics child(&parent);
        QCOMPARE(child.parent(), &parent);
        QCOMPARE(CGoogleAnalytics(nullptr).parent(), nullptr);
    }

    void keepsSignalsInOrder()
    {
        QCOMPARE(ownMethods(CGoogleAnalytics::staticMetaObject),
                 QStringList({utf8("signal SignalRequestTimeout()"), utf8("signal SignalRequestCancel()"),
                              utf8("signal SignalStopRequest()"),
                              utf8("signal SignalRequestResult(QByteArray)")}));
    }

    // Applications can read them from the meta-object.
    void keepsParameterNames()
    {
        const QMetaObject &meta = CGoogleAnalytics::staticMetaObject;
        QList<QList<QByteArray>> names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            names << meta.method(i).parameterNames();
        QCOMPARE(names, QList<QList<QByteArray>>({{}, {}, {}, {"data"}}));
    }

    void hasEndpointAsOnlyField()
    {
        QCOMPARE(sizeof(CGoogleAnalytics), sizeof(QObject) + sizeof(QString));
        const CGoogleAnalytics analytics;
        QCOMPARE(stringFieldsOf(analytics)[0], utf8("https://www.google-analytics.com/mp/collect"));
    }
};

QTEST_GUILESS_MAIN(TestGoogleAnalytics)

#include "tst_google_analytics.moc"
