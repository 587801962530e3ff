// SPDX-License-Identifier: LGPL-2.1-or-later

#include <PageServer.h>

#include "Requests.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <vector>

using namespace std::chrono_literals;

namespace {

// Longer than the time limit of the test: every wait must end for another reason.
constexpr auto timeout = 1h;

Arrival record(const QString &name)
{
    Arrival result;
    result.kind = Arrival::record();
    result.name = name;
    result.time = QStringLiteral("2026-11-20T17:05:09.123Z");
    result.signature = QStringLiteral("good");
    return result;
}

Arrival badEvent()
{
    Arrival result = record(QStringLiteral("event"));
    result.kind = Arrival::event();
    result.signature.clear();
    result.problems << QStringLiteral("bad");
    return result;
}

QString nameIn(const FeedReader::Event &event)
{
    return QJsonDocument::fromJson(event.data).object().value(QStringLiteral("name")).toString();
}

QString number(int number)
{
    return QString::number(number);
}

} // namespace

// The feed, and the server of the page.
class TestArrivalFeed : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_store = std::make_unique<ArrivalStore>(m_directory->filePath(QStringLiteral("arrivals.sqlite")));
        m_feed = std::make_unique<ArrivalFeed>(*m_store);
    }
    void cleanup()
    {
        m_server.reset();
        m_feed.reset();
        m_store.reset();
    }

    void returnsStoredArrivalsAtOnce()
    {
        m_feed->add(record(QStringLiteral("a")));
        m_feed->add(record(QStringLiteral("b")));
        QCOMPARE(m_feed->waitFor({0}, timeout).size(), 2);
        QCOMPARE(m_feed->waitFor({1}, timeout).value(0).name, QStringLiteral("b"));
        QCOMPARE(m_feed->lastId(), 2);
    }

    void returnsWhenArrivalComes()
    {
        std::atomic<int> size {-1};
        std::thread reader([&] { size = m_feed->waitFor({0}, timeout).size(); });
        m_feed->add(record(QStringLiteral("a")));
        reader.join();
        QCOMPARE(size.load(), 1);
    }

    // In some rounds the arrival comes between the reader's query and its wait.
    void returnsArrivalThatComesBeforeWait()
    {
        constexpr qint64 rounds = 300;
        std::atomic<qint64> seen {0};
        std::thread reader([&] {
            while (seen < rounds)
                seen = m_feed->waitFor({seen}, timeout).last().id;
        });
        for (qint64 i = 1; i <= rounds; ++i) {
            m_feed->add(record(QStringLiteral("a")));
            while (seen < i)
                std::this_thread::yield();
        }
        reader.join();
        QCOMPARE(m_feed->lastId(), rounds);
    }

    void returnsNothingAfterTimeout() { QCOMPARE(m_feed->waitFor({0}, 10ms).size(), 0); }

    void returnsWhenFeedStops()
    {
        std::thread reader([&] { m_feed->waitFor({0}, timeout); });
        m_feed->stop();
        reader.join();
        QVERIFY(m_feed->isStopped());
    }

    void countsKindsAndGoodArrivals()
    {
        m_feed->add(badEvent());
        m_feed->add(record(QStringLiteral("a")));
        m_feed->add(record(QStringLiteral("b")));
        Arrival forged = record(QStringLiteral("c"));
        forged.signature = QStringLiteral("bad: why");
        m_feed->add(forged);
        m_feed->clear();
        const ArrivalFeed::Counts counts = m_feed->counts();
        QCOMPARE(counts.events, 1);
        QCOMPARE(counts.goodEvents, 0);
        QCOMPARE(counts.records, 3);
        QCOMPARE(counts.goodRecords, 2);
    }

    void writesServerSentEventInThreeLines()
    {
        Arrival arrival = record(QStringLiteral("two\nlines\r"));
        arrival.id = 7;
        arrival.request = {"POST", "/", {}, "{\n}"};
        QCOMPARE(ArrivalFeed::toServerSentEvent(arrival),
                 QByteArray("id: 7\nevent: record\ndata: {\"body\":\"{\\n}\",\"detail\":\"\",\"good\":true,"
                            "\"headers\":[],\"id\":7,\"kind\":\"record\",\"method\":\"POST\","
                            "\"name\":\"two\\nlines\\r\",\"problems\":[],\"signature\":\"good\","
                            "\"target\":\"/\",\"time\":\"2026-11-20T17:05:09.123Z\"}\n\n"));
    }

    void sendsArrivals()
    {
        startServer();
        m_feed->add(record(QStringLiteral("before")));
        FeedReader reader(feedUrl());
        QVERIFY(reader.head().startsWith("HTTP/1.1 200 OK"));
        QVERIFY(reader.head().toLower().contains("\r\ncontent-type: text/event-stream"));
        QCOMPARE(nameIn(reader.next()), QStringLiteral("before"));
        m_feed->add(badEvent());
        const FeedReader::Event event = reader.next();
        QCOMPARE(event.id, QByteArray("2"));
        QCOMPARE(event.name, QByteArray("event"));
        QCOMPARE(nameIn(event), QStringLiteral("event"));
        QVERIFY(reader.body().startsWith("retry: 1000\n\nid: 1\nevent: record\ndata: {"));
    }

    void sendsMissedArrivalsAfterReconnect_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<QString>("query");
        QTest::newRow("header") << QByteArray("2") << QString();
        QTest::newRow("query") << QByteArray() << QStringLiteral("?after=2");
        QTest::newRow("both, as after the first break") << QByteArray("2") << QStringLiteral("?after=0");
    }
    void sendsMissedArrivalsAfterReconnect()
    {
        QFETCH(QByteArray, header);
        QFETCH(QString, query);
        startServer();
        for (int i = 1; i <= 4; ++i)
            m_feed->add(record(number(i)));
        FeedReader reader(feedUrl(query), header);
        QCOMPARE(nameIn(reader.next()), number(3));
        QCOMPARE(nameIn(reader.next()), number(4));
    }

    void sendsClearedForUnknownId()
    {
        startServer();
        m_feed->add(record(QStringLiteral("a")));
        FeedReader reader(feedUrl(), "1000");
        QCOMPARE(reader.next().name, QByteArray("cleared"));
        QCOMPARE(nameIn(reader.next()), QStringLiteral("a"));
    }

    void ignoresInvalidId()
    {
        startServer();
        m_feed->add(record(QStringLiteral("a")));
        QCOMPARE(nameIn(FeedReader(feedUrl(), "nonsense").next()), QStringLiteral("a"));
    }

    void sendsNewestFiveHundred()
    {
        startServer();
        for (int i = 1; i <= ArrivalQuery::maximumLimit + 20; ++i)
            m_store->add(record(number(i)));
        FeedReader reader(feedUrl());
        for (int i = 21; i <= ArrivalQuery::maximumLimit + 20; ++i)
            QCOMPARE(nameIn(reader.next()), number(i));
    }

    void sendsAllArrivalsToAllReaders()
    {
        startServer();
        std::vector<std::unique_ptr<FeedReader>> readers;
        for (int i = 0; i < 5; ++i) {
            readers.push_back(std::make_unique<FeedReader>(feedUrl()));
            QVERIFY(readers.back()->head().startsWith("HTTP/1.1 200"));
        }
        for (int i = 0; i < 20; ++i)
            m_feed->add(record(number(i)));
        for (const auto &reader : readers) {
            for (int i = 0; i < 20; ++i)
                QCOMPARE(nameIn(reader->next()), number(i));
        }
    }

    void acceptsReaderAfterAnotherCloses()
    {
        startServer();
        std::vector<std::unique_ptr<FeedReader>> readers;
        for (int i = 0; i < PageServer::maximumReaders; ++i) {
            readers.push_back(std::make_unique<FeedReader>(feedUrl()));
            QVERIFY(readers.back()->head().startsWith("HTTP/1.1 200"));
        }
        QVERIFY(FeedReader(feedUrl()).head().startsWith("HTTP/1.1 503"));
        // The page itself is still available.
        QCOMPARE(request("GET", m_server->url()).status, 200);
        readers.pop_back();
        QVERIFY(
            QTest::qWaitFor([&] { return FeedReader(feedUrl()).head().startsWith("HTTP/1.1 200"); }, 60000));
    }

    void sendsClearedAndEmptiesList()
    {
        startServer();
        m_feed->add(record(QStringLiteral("a")));
        FeedReader reader(feedUrl());
        QCOMPARE(reader.next().name, QByteArray("record"));
        QCOMPARE(request("DELETE", arrivalsUrl()).status, 204);
        const FeedReader::Event cleared = reader.next();
        QCOMPARE(cleared.name, QByteArray("cleared"));
        QCOMPARE(cleared.id, QByteArray("2"));
        QCOMPARE(request("GET", arrivalsUrl()).body, QByteArray("[]"));
    }

    void returnsArrivalsAsJson()
    {
        startServer();
        m_feed->add(record(QStringLiteral("a")));
        m_feed->add(record(QStringLiteral("b")));
        const Answer answer = request("GET", arrivalsUrl());
        QCOMPARE(answer.headers.value("content-type"), QByteArray("application/json"));
        const QJsonArray all = QJsonDocument::fromJson(answer.body).array();
        QCOMPARE(all.size(), 2);
        QCOMPARE(all.first().toObject(), m_store->find({0, 1000}).first().toJson());
    }

    void selectsArrivalsByQuery_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<QByteArray>("names");
        const auto row = [](const char *query, const char *names) {
            QTest::newRow(query) << QString::fromLatin1(query) << QByteArray(names);
        };
        row("?after=1", "b event");
        row("?before=3", "a b");
        row("?before=3&limit=1", "b");
        row("?limit=1000000000000", "a b event");
        row("?kind=problem", "event");
        row("?kind=record&text=%42", "b");
        row("?before=-1&after=x", "a b event");
    }
    void selectsArrivalsByQuery()
    {
        QFETCH(QString, query);
        startServer();
        m_feed->add(record(QStringLiteral("a")));
        m_feed->add(record(QStringLiteral("b")));
        m_feed->add(badEvent());
        const QJsonArray found = QJsonDocument::fromJson(request("GET", arrivalsUrl(query)).body).array();
        QByteArrayList names;
        for (const QJsonValue &each : found)
            names << each.toObject().value(QStringLiteral("name")).toString().toLatin1();
        QTEST(names.join(' '), "names");
    }

    void sendsOnlySelectedArrivals()
    {
        startServer();
        FeedReader reader(feedUrl(QStringLiteral("?kind=problem")));
        m_feed->add(record(QStringLiteral("a")));
        m_feed->add(badEvent());
        QCOMPARE(nameIn(reader.next()), QStringLiteral("event"));
    }

    void reportsThatArrivalsCannotBeRemoved()
    {
        ArrivalStore store(m_directory->filePath(QStringLiteral("missing/arrivals.sqlite")));
        ArrivalFeed feed(store);
        PageServer server(feed, 0, {});
        const Answer answer = request("DELETE", server.url().resolved(QUrl(QStringLiteral("arrivals"))));
        QCOMPARE(answer.status, 500);
        QCOMPARE(answer.body, QByteArray("The database cannot be changed.\n"));
    }

    void rejectsOtherHostNames_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<int>("status");
        QTest::newRow("address") << QStringLiteral("Host: 127.0.0.1:%1\r\n") << 200;
        QTest::newRow("localhost") << QStringLiteral("Host: localhost:%1\r\n") << 200;
        QTest::newRow("another site") << QStringLiteral("Host: site.example:%1\r\n") << 403;
        QTest::newRow("another port") << QStringLiteral("Host: 127.0.0.1:1\r\n") << 403;
        QTest::newRow("begins like it") << QStringLiteral("Host: 127.0.0.1:%1.example\r\n") << 403;
        QTest::newRow("none") << QString() << 403;
    }
    void rejectsOtherHostNames()
    {
        QFETCH(QString, host);
        QFETCH(int, status);
        startServer();
        m_feed->add(record(QStringLiteral("a")));
        const QByteArray header =
            (host.contains(QLatin1String("%1")) ? host.arg(m_server->url().port()) : host).toLatin1();
        QCOMPARE(rawRequest(m_server->url(), "GET / HTTP/1.1\r\n" + header).status, status);
        QCOMPARE(rawRequest(m_server->url(), "GET /arrivals HTTP/1.1\r\n" + header).status, status);
        if (status == 403)
            QCOMPARE(rawRequest(m_server->url(), "DELETE /arrivals HTTP/1.1\r\n" + header).status, status);
        QCOMPARE(m_store->find({0, 10}).size(), 1);
    }

    void rejectsClearFromOtherSites()
    {
        startServer();
        m_feed->add(record(QStringLiteral("a")));
        const QByteArray host = "Host: " + m_server->url().authority().toLatin1() + "\r\n";
        const Answer answer = rawRequest(m_server->url(), "OPTIONS /arrivals HTTP/1.1\r\n" + host
                                                              + "Origin: http://site.example\r\n"
                                                                "Access-Control-Request-Method: DELETE\r\n");
        QVERIFY(answer.status >= 400);
        // A request that a browser sends without a preflight request changes nothing.
        QVERIFY(
            rawRequest(m_server->url(), "POST /arrivals HTTP/1.1\r\n" + host + "Content-Length: 0\r\n").status
            >= 400);
        QCOMPARE(m_store->find({0, 10}).first().name, QStringLiteral("a"));
    }

    void allowsOnlyOwnScriptAndStyle()
    {
        startServer();
        const Answer page = request("GET", m_server->url());
        const QByteArray policy = page.headers.value("content-security-policy");
        QVERIFY(policy.startsWith("default-src 'none'; connect-src 'self'; "));
        QVERIFY(policy.contains("; frame-ancestors 'none'"));
        for (const QByteArray &name : {QByteArray("script"), QByteArray("style")}) {
            QCOMPARE(page.body.count("<" + name), 1);
            const int begin = page.body.indexOf("<" + name + ">") + name.size() + 2;
            const QByteArray text = page.body.mid(begin, page.body.indexOf("</" + name + ">") - begin);
            const QByteArray hash = QCryptographicHash::hash(text, QCryptographicHash::Sha256).toBase64();
            QVERIFY(policy.contains("; " + name + "-src 'sha256-" + hash + "';"));
        }
        QCOMPARE(page.headers.value("x-content-type-options"), QByteArray("nosniff"));
        QCOMPARE(page.headers.value("cache-control"), QByteArray("no-store"));
    }

    void showsPathOfServicesFile()
    {
        m_server = std::make_unique<PageServer>(
            *m_feed, 0, PageAddresses {QStringLiteral("/a<b>&\"/services.json"), {}, {}});
        const QByteArray page = request("GET", m_server->url()).body;
        QVERIFY(page.contains("export LOCAL_SERVICES=/a&lt;b&gt;&amp;&quot;/services.json"));
        QVERIFY(!page.contains("@SERVICES@"));
    }

    void returns404ForOtherPaths()
    {
        startServer();
        QUrl url = m_server->url();
        url.setPath(QStringLiteral("/other"));
        QCOMPARE(request("GET", url).status, 404);
    }

    void rejectsPortInUse()
    {
        startServer();
        const auto port = quint16(m_server->url().port());
        {
            ArrivalFeed otherFeed(*m_store);
            const PageServer other(otherFeed, port, PageAddresses());
            QVERIFY(!other.isListening());
        }
        QCOMPARE(request("GET", m_server->url()).status, 200);
        // The next run can use the port again, although connections were just closed.
        m_server.reset();
        ArrivalFeed nextFeed(*m_store);
        const PageServer next(nextFeed, port, PageAddresses());
        QVERIFY(next.isListening());
        QCOMPARE(next.url().port(), int(port));
    }

    void endsWithReadersAndIdleClients()
    {
        startServer();
        FeedReader reader(feedUrl());
        QVERIFY(reader.head().startsWith("HTTP/1.1 200"));
        QTcpSocket idle;
        idle.setProxy(QNetworkProxy::NoProxy);
        idle.connectToHost(m_server->url().host(), quint16(m_server->url().port()));
        QVERIFY(idle.waitForConnected(60000));
        idle.write("GET / HTTP/1.1\r\n");
        m_server.reset();
        QVERIFY(reader.waitForEnd());
    }

private:
    void startServer()
    {
        m_server = std::make_unique<PageServer>(*m_feed, 0, PageAddresses());
        QVERIFY(m_server->isListening());
    }
    QUrl feedUrl(const QString &query = QString()) const { return at(QStringLiteral("feed") + query); }
    QUrl arrivalsUrl(const QString &query = QString()) const
    {
        return at(QStringLiteral("arrivals") + query);
    }
    QUrl at(const QString &path) const { return QUrl(m_server->url().toString() + path); }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<ArrivalStore> m_store;
    std::unique_ptr<ArrivalFeed> m_feed;
    std::unique_ptr<PageServer> m_server;
};

QTEST_GUILESS_MAIN(TestArrivalFeed)
#include "tst_arrival_feed.moc"
