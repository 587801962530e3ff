// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Collectors.h"

#include "ProcessFigures.h"
#include "Utf8.h"

#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

#include <atomic>

using LocalServices::Authority;
using LocalServices::Certificate;
using LocalServices::Connection;
using LocalServices::GaCollector;
using LocalServices::HttpServer;
using LocalServices::Proxy;
using LocalServices::RawServer;

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

QStringList headerNames(const HttpServer::Request &request)
{
    QStringList names;
    for (const QPair<QByteArray, QByteArray> &header : request.headers)
        names << QString::fromLatin1(header.first);
    return names;
}

} // namespace
Q_DECLARE_METATYPE(Mode)

class TestGoogleAnalytics : public QObject
{
    Q_OBJECT

private:
    static void addModes()
    {
        QTest::addColumn<Mode>("mode");
        QTest::newRow("StartRequestSync") << Mode::Sync;
        QTest::newRow("StartRequestAsync") << Mode::Async;
    }

    // In either mode; a synchronous one that failed looks like a refused connection.
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
        const QList<GaCollector::Event> events = m_collectors->ga().events();
        return events.size() == 1 ? events.first() : GaCollector::Event();
    }

    std::unique_ptr<Collectors> m_collectors;

private Q_SLOTS:
    void init() { m_collectors = std::make_unique<Collectors>(); }
    void cleanup() { m_collectors.reset(); }

    void eventReachesTheCollector_data() { addModes(); }
    void eventReachesTheCollector()
    {
        QFETCH(Mode, mode);
        QCOMPARE(send(mode), resultOf(mode == Mode::Sync ? "true" : ""));
        QCOMPARE(m_collectors->ga().events().size(), 1);
        QCOMPARE(received().problems, QStringList());
    }

    void bodyIsIndentedToTheByte_data() { addModes(); }
    void bodyIsIndentedToTheByte()
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

    void textsOfTheBodyAreEscapedAsJson_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("empty") << QStringLiteral("") << QByteArray("\"\"");
        QTest::newRow("null") << QString() << QByteArray("\"\"");
        QTest::newRow("quotes") << utf8("say \"hi\"") << QByteArray("\"say \\\"hi\\\"\"");
        QTest::newRow("line feed") << utf8("a\nb") << QByteArray("\"a\\nb\"");
        QTest::newRow("backslash") << utf8("a\\b") << QByteArray("\"a\\\\b\"");
        QTest::newRow("control") << utf8("a\x01") << QByteArray("\"a\\u0001\"");
        QTest::newRow("letters") << utf8("Größe 文件") << QByteArray("\"Größe 文件\"");
        QTest::newRow("beyond the BMP") << utf8("😀") << QByteArray("\"😀\"");
        QTest::newRow("ampersand and percent") << utf8("a&b=%1%20") << QByteArray("\"a&b=%1%20\"");
        QTest::newRow("long") << QString(100000, QLatin1Char('x')) << '"' + QByteArray(100000, 'x') + '"';
    }
    void textsOfTheBodyAreEscapedAsJson()
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

    void identifiersGoIntoTheQueryAsTheyAre_data()
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
        row("escaped letter", "%41", "%26", "measurement_id=A&api_secret=%26");
        row("stray percent", "100%", "%zz", "measurement_id=100%25&api_secret=%25zz");
        row("blank", "a b", "c d", "measurement_id=a%20b&api_secret=c%20d");
        row("plus", "a+b", "c+d", "measurement_id=a+b&api_secret=c+d");
        row("other letters", "é", "文", "measurement_id=%C3%A9&api_secret=%E6%96%87");
        row("question mark", "a?b", "c?d", "measurement_id=a?b&api_secret=c?d");
        row("number sign ends the query", "a", "b#c", "measurement_id=a&api_secret=b");
        // The secret takes the place of the lowest marker that is left.
        row("marker of the secret", "%3", "S", "measurement_id=S&api_secret=S");
        row("lower marker", "x%1y", "S", "measurement_id=xSy&api_secret=%253");
        row("marker in the secret", "M", "%1", "measurement_id=M&api_secret=%251");
    }
    void identifiersGoIntoTheQueryAsTheyAre()
    {
        QFETCH(QString, measurementId);
        QFETCH(QString, apiSecret);
        QFETCH(QByteArray, query);
        for (const Mode mode : {Mode::Sync, Mode::Async}) {
            send(mode, {utf8("C"), measurementId, apiSecret, utf8("N"), utf8("A"), utf8("L")});
            QVERIFY(!m_collectors->ga().events().isEmpty());
            QCOMPARE(m_collectors->ga().events().last().request.target, "/mp/collect?" + query);
        }
        QCOMPARE(m_collectors->ga().events().size(), 2);
    }

    void eventWithNothingInItIsSent_data() { addModes(); }
    void eventWithNothingInItIsSent()
    {
        QFETCH(Mode, mode);
        const QString empty = QStringLiteral("");
        QCOMPARE(send(mode, {empty, empty, empty, empty, empty, empty}),
                 resultOf(mode == Mode::Sync ? "true" : ""));
        QCOMPARE(received().request.target, QByteArray("/mp/collect?measurement_id=&api_secret="));
        QCOMPARE(received().problems, QStringList({utf8("measurement_id"), utf8("api_secret"),
                                                   utf8("client_id"), utf8("user_id"), utf8("name")}));
    }

    void hostIsAskedUnderTls_data() { addModes(); }
    void hostIsAskedUnderTls()
    {
        QFETCH(Mode, mode);
        send(mode);
        QCOMPARE(m_collectors->requestLines(),
                 QStringList {utf8("CONNECT www.google-analytics.com:443 HTTP/1.1")});
        QCOMPARE(received().request.header("Host"), QByteArray("www.google-analytics.com"));
    }

    void headersAreThoseOfAPlainPost_data() { addModes(); }
    void headersAreThoseOfAPlainPost()
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
        QTRY_VERIFY(reply->isFinished());
        QCOMPARE(headerNames(request), headerNames(m_collectors->ga().events().last().request));
    }

    void peerThatProvesNothingGetsNoEvent_data()
    {
        QTest::addColumn<QByteArray>("certificate");
        for (const char *certificate : {"other authority", "other name", "self-signed", "expired"})
            QTest::newRow(certificate) << QByteArray(certificate);
    }
    void peerThatProvesNothingGetsNoEvent()
    {
        QFETCH(QByteArray, certificate);
        const Authority other;
        Proxy proxy([&](const QString &host) -> Certificate {
            if (certificate == "other authority")
                return other.issue(host);
            if (certificate == "other name")
                return m_collectors->authority().issue(QStringLiteral("google-analytics.com.example"));
            if (certificate == "self-signed")
                return Authority::selfSigned(host);
            return m_collectors->authority().issue(host, QDateTime::currentDateTimeUtc().addSecs(-3600));
        });
        proxy.routeAll(m_collectors->ga().url());
        Collectors::use(proxy);
        QCOMPARE(send(Mode::Sync), resultOf(""));
        QCOMPARE(send(Mode::Async), resultOf(""));
        QCOMPARE(proxy.requestLines().size(), 2);
        QVERIFY(m_collectors->ga().events().isEmpty());
    }

    void defaultSslConfigurationDecides_data() { addModes(); }
    void defaultSslConfigurationDecides()
    {
        QFETCH(Mode, mode);
        const Authority other;
        Proxy proxy(other);
        proxy.routeAll(m_collectors->ga().url());
        Collectors::use(proxy);
        QSslConfiguration trusting = QSslConfiguration::defaultConfiguration();
        trusting.setPeerVerifyMode(QSslSocket::VerifyNone);
        QSslConfiguration::setDefaultConfiguration(trusting);
        QCOMPARE(send(mode), resultOf(mode == Mode::Sync ? "true" : ""));
        QCOMPARE(m_collectors->ga().events().size(), 1);
    }

    void outcomeOfAnAnswer_data()
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
        QTest::newRow("cut") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf") << false
                             << QByteArray("half");
        QTest::newRow("nothing") << QByteArray() << false << QByteArray();
        QTest::newRow("no HTTP") << QByteArray("hello\r\n\r\n") << false << QByteArray();
    }
    void outcomeOfAnAnswer()
    {
        QFETCH(QByteArray, answer);
        QFETCH(bool, isTrue);
        QFETCH(QByteArray, data);
        const RawAnswer server(answer);
        m_collectors->routeTo(server.url());
        CGoogleAnalytics analytics;
        QCOMPARE(sendSync(analytics), isTrue);
        QCOMPARE(send(Mode::Async), resultOf(data));
    }

    void nobodyThereIsAFailure_data()
    {
        QTest::addColumn<bool>("isProxyThere");
        QTest::newRow("no service") << true;
        QTest::newRow("no network") << false;
    }
    void nobodyThereIsAFailure()
    {
        QFETCH(bool, isProxyThere);
        if (isProxyThere) {
            m_collectors->routeTo(deadUrl());
        } else {
            QNetworkProxy::setApplicationProxy(QNetworkProxy(
                QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), quint16(deadUrl().port())));
        }
        CGoogleAnalytics analytics;
        QVERIFY(!sendSync(analytics));
        QCOMPARE(send(Mode::Async), resultOf(""));
    }

    void nothingIsTriedTwice()
    {
        const RawAnswer server(rawAnswer("503 Away", page));
        m_collectors->routeTo(server.url());
        send(Mode::Sync);
        send(Mode::Async);
        QTest::qWait(50);
        QCOMPARE(server.requests().size(), 2);
    }

    void stoppedRequestIsCancelled()
    {
        const SilentServer server;
        m_collectors->routeTo(server.url());
        WatchedEvent watched;
        watched.start();
        QTRY_COMPARE(server.requests().size(), 1);
        QElapsedTimer clock;
        clock.start();
        QVERIFY(watched.stopAll());
        QVERIFY(clock.elapsed() < 5000);
        QTRY_COMPARE(m_collectors->openConnections(), 0);
        QCOMPARE(watched.outcomes(), QList<Outcome> {cancelled});
    }

    void stopBeforeTheRequestListensIsLost()
    {
        // The machine may hold this thread up until the other one listens, but not each time.
        QList<Outcome> outcomes;
        for (int attempt = 0; attempt < 20 && outcomes != QList<Outcome> {resultOf("")}; ++attempt) {
            WatchedEvent watched;
            watched.start();
            Q_EMIT watched.analytics().SignalStopRequest();
            QVERIFY(watched.waitForAll());
            outcomes = watched.outcomes();
        }
        QCOMPARE(outcomes, QList<Outcome> {resultOf("")});
    }

    void stopWithNoRequestRunningDoesNothing()
    {
        WatchedEvent watched;
        Q_EMIT watched.analytics().SignalStopRequest();
        watched.start();
        QVERIFY(watched.waitForAll());
        Q_EMIT watched.analytics().SignalStopRequest();
        QTest::qWait(20);
        QCOMPARE(watched.outcomes(), QList<Outcome> {resultOf("")});
    }

    void synchronousRequestCanNotBeStopped()
    {
        const RawServer slow([](Connection &client) {
            if (client.sleep(500))
                client.write(rawAnswer("200 OK", page));
        });
        m_collectors->routeTo(slow.url());
        CGoogleAnalytics analytics;
        int stops = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [&] {
            ++stops;
            Q_EMIT analytics.SignalStopRequest();
        });
        timer.start(20);
        QVERIFY(sendSync(analytics));
        QVERIFY(stops > 1); // which also shows that the caller's events are delivered meanwhile
    }

    void quittingEndsTheWaitAsIfAllWereWell()
    {
        const SilentServer silent;
        m_collectors->routeTo(silent.url());
        bool returned = false;
        QTimer::singleShot(0, this, [&returned] {
            CGoogleAnalytics analytics;
            returned = sendSync(analytics);
        });
        QTimer::singleShot(100, QCoreApplication::instance(), &QCoreApplication::quit);
        QElapsedTimer clock;
        clock.start();
        QCoreApplication::exec();
        QVERIFY(clock.elapsed() < 9000); // not by the time limit
        QVERIFY(returned);
    }

    void synchronousRequestEmitsNothing()
    {
        WatchedEvent watched;
        QVERIFY(sendSync(watched.analytics()));
        m_collectors->routeTo(deadUrl());
        QVERIFY(!sendSync(watched.analytics()));
        QTest::qWait(10);
        QVERIFY(watched.outcomes().isEmpty());
    }

    void backgroundRequestReturnsAtOnceInAThreadOfItsOwn()
    {
        const SilentServer server;
        m_collectors->routeTo(server.url());
        std::atomic<QThread *> emitter {nullptr};
        WatchedEvent watched;
        connect(&watched.analytics(), &CGoogleAnalytics::SignalRequestCancel,
                [&] { emitter = QThread::currentThread(); });
        watched.start();
        QVERIFY(watched.outcomes().isEmpty());
        QVERIFY(watched.stopAll());
        QVERIFY(emitter.load() != nullptr);
        QVERIFY(emitter.load() != QThread::currentThread());
    }

    void argumentsAreCopied()
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
        const QList<GaCollector::Event> events = m_collectors->ga().events();
        for (const GaCollector::Event &event : events) {
            QCOMPARE(event.problems, QStringList());
            QCOMPARE(event.request.target, QByteArray("/mp/collect?measurement_id=G-1&api_secret=secret"));
            clients << event.body.value(QStringLiteral("client_id")).toString();
        }
        clients.removeDuplicates();
        QCOMPARE(clients.size(), 20);
    }

    void oneStopReachesAllRequestsOfTheObject()
    {
        const SilentServer server;
        m_collectors->routeTo(server.url());
        WatchedEvent watched;
        for (int i = 0; i < 3; ++i)
            watched.start();
        QTRY_COMPARE(server.requests().size(), 3);
        QVERIFY(watched.stopAll());
        QCOMPARE(watched.outcomes(), QList<Outcome>({cancelled, cancelled, cancelled}));
    }

    void threadIsGoneAfterTheOutcome()
    {
        send(Mode::Async); // Qt starts threads of its own at the first request
        QTRY_COMPARE(m_collectors->openConnections(), 0);
        const int before = ProcessFigures::threadCount();
        for (int i = 0; i < 10; ++i)
            QCOMPARE(send(Mode::Async), resultOf(""));
        QTRY_VERIFY(ProcessFigures::threadCount() <= before);
    }

    void destructionDropsConnectionsFirst()
    {
        int calls = 0;
        auto analytics = std::make_unique<CGoogleAnalytics>();
        connect(analytics.get(), &QObject::destroyed, this, [&] { ++calls; });
        analytics.reset();
        QCOMPARE(calls, 0);
    }

    void parentOwnsTheObject()
    {
        QObject parent;
        CGoogleAnalytics child(&parent);
        QCOMPARE(child.parent(), &parent);
        QCOMPARE(CGoogleAnalytics(nullptr).parent(), nullptr);
    }

    void signalsStandInTheirOrder()
    {
        QCOMPARE(ownMethods(CGoogleAnalytics::staticMetaObject),
                 QStringList({utf8("signal SignalRequestTimeout()"), utf8("signal SignalRequestCancel()"),
                              utf8("signal SignalStopRequest()"),
                              utf8("signal SignalRequestResult(QByteArray)")}));
    }

    void endpointIsTheOneField()
    {
        QCOMPARE(sizeof(CGoogleAnalytics), sizeof(QObject) + sizeof(QString));
        const CGoogleAnalytics analytics;
        QCOMPARE(textFieldsOf(analytics)[0], utf8("https://www.google-analytics.com/mp/collect"));
    }
};

QTEST_GUILESS_MAIN(TestGoogleAnalytics)

#include "tst_google_analytics.moc"
