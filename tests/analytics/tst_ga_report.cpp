// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Collectors.h"

#include "HostProcess.h"
#include "ProcessFigures.h"

#include <ZyBase/analytics/CGaReport.h>

#include <QJsonDocument>
#include <QTimer>

#include <algorithm>

using LocalServices::Connection;
using LocalServices::GaCollector;
using LocalServices::RawServer;

namespace {

const QString clientId = QStringLiteral("client");
const QString measurementId = QStringLiteral("G-1");
const QString apiSecret = QStringLiteral("secret");

using Reporter = WatchedReporter<CGaReport>;

} // namespace

class TestGaReport : public QObject
{
    Q_OBJECT

private:
    static void report(CGaReport &reporter, bool sync)
    {
        reporter.ReportGaData(QStringLiteral("open"), QStringLiteral("file"), QStringLiteral("pdf"), sync);
    }
    static void startThree(CGaReport &reporter)
    {
        for (int i = 0; i < 3; ++i)
            report(reporter, false);
    }
    QList<GaCollector::Event> received() { return m_collectors->ga().events(); }
    static void addModes()
    {
        QTest::addColumn<bool>("sync");
        QTest::newRow("waiting") << true;
        QTest::newRow("in the background") << false;
    }

    std::unique_ptr<Collectors> m_collectors;

private Q_SLOTS:
    void init() { m_collectors = std::make_unique<Collectors>(); }
    void cleanup() { m_collectors.reset(); }

    void sixValuesReachTheirPlaces_data() { addModes(); }
    void sixValuesReachTheirPlaces()
    {
        QFETCH(bool, sync);
        Reporter reporter;
        reporter.InitData(clientId, measurementId, apiSecret);
        report(reporter, sync);
        QTRY_COMPARE(reporter.running(), 0);
        QCOMPARE(received().size(), 1);
        const GaCollector::Event event = received().first();
        QCOMPARE(event.problems, QStringList());
        QCOMPARE(event.request.target, QByteArray("/mp/collect?measurement_id=G-1&api_secret=secret"));
        const QJsonObject expected = QJsonDocument::fromJson("{\"client_id\": \"client\", \"user_id\":"
                                                             " \"client\", \"events\": [{\"name\": \"open\","
                                                             " \"params\": {\"event_category\": \"file\","
                                                             " \"event_label\": \"pdf\"}}]}")
                                         .object();
        QCOMPARE(event.body, expected);
    }

    void reporterThatWasNeverToldSendsEmptyIdentifiers_data() { addModes(); }
    void reporterThatWasNeverToldSendsEmptyIdentifiers()
    {
        QFETCH(bool, sync);
        Reporter reporter;
        report(reporter, sync);
        QTRY_COMPARE(reporter.running(), 0);
        QCOMPARE(received().size(), 1);
        QCOMPARE(received().first().request.target, QByteArray("/mp/collect?measurement_id=&api_secret="));
        QCOMPARE(received().first().body.value(QStringLiteral("client_id")), QJsonValue(QString()));
    }

    void waitingFormReturnsAfterTheAnswer()
    {
        Reporter reporter;
        report(reporter, true);
        QCOMPARE(received().size(), 1);
        QCOMPARE(reporter.started(), 1);
        QCOMPARE(reporter.running(), 0);
    }

    void waitingRequestIsAChildMeanwhile()
    {
        Reporter reporter;
        int most = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [&] { most = qMax(most, reporter.running()); });
        timer.start(0);
        report(reporter, true);
        QCOMPARE(most, 1);
    }

    void backgroundFormReturnsAtOnce()
    {
        const SilentServer server;
        m_collectors->routeTo(server.url());
        Reporter reporter;
        QElapsedTimer clock;
        clock.start();
        report(reporter, false);
        QVERIFY(clock.elapsed() < 5000);
        QCOMPARE(reporter.running(), 1);
    }

    void requestRemovesItself_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::newRow("204") << QByteArray("HTTP/1.1 204 No Content\r\n\r\n");
        QTest::newRow("200") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
        QTest::newRow("500") << QByteArray("HTTP/1.1 500 Error\r\nContent-Length: 2\r\n\r\nno");
        QTest::newRow("nothing") << QByteArray();
    }
    void requestRemovesItself()
    {
        QFETCH(QByteArray, answer);
        const RawAnswer server(answer);
        m_collectors->routeTo(server.url());
        Reporter reporter;
        startThree(reporter);
        QCOMPARE(reporter.started(), 3);
        QTRY_COMPARE(reporter.running(), 0);
        QVERIFY(reporter.areRemovedInItsThread());
        QVERIFY(server.requests().size() >= 3); // Qt sends again what a closed connection left open
    }

    void requestOfANetworkThatIsAwayRemovesItself()
    {
        QNetworkProxy::setApplicationProxy(
            QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), quint16(deadUrl().port())));
        // An outcome may come before the reporter has connected to it, but not each time.
        int left = 3;
        for (int attempt = 0; attempt < 5 && left > 0; ++attempt) {
            CGaReport reporter;
            report(reporter, true);
            startThree(reporter);
            const bool areGone = QTest::qWaitFor([&] { return reporter.children().isEmpty(); });
            left = areGone ? 0 : reporter.children().size();
        }
        QCOMPARE(left, 0);
    }

    void eachRequestHasAThreadAndOneStopEndsThemAll()
    {
        const SilentServer server;
        m_collectors->routeTo(server.url());
        Reporter reporter;
        startThree(reporter);
        QCOMPARE(reporter.running(), 3);
        QTRY_COMPARE(server.requests().size(), 3);
        reporter.StopReport();
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, 5000);
        QVERIFY(reporter.areRemovedInItsThread());
        QTRY_COMPARE(m_collectors->openConnections(), 0);
    }

    void threadsAreGoneWithTheirRequests()
    {
        Reporter reporter;
        report(reporter, false);
        QTRY_COMPARE(reporter.running(), 0);
        QTRY_COMPARE(m_collectors->openConnections(), 0);
        const int before = ProcessFigures::threadCount();
        for (int i = 0; i < 30; ++i)
            report(reporter, false);
        QCOMPARE(reporter.running(), 30);
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, 30000);
        QTRY_VERIFY(ProcessFigures::threadCount() <= before);
        QCOMPARE(received().size(), 31);
    }

    void stopTakesAHopThroughTheEventLoop()
    {
        const SilentServer server;
        m_collectors->routeTo(server.url());
        Reporter reporter;
        report(reporter, false);
        QTRY_COMPARE(server.requests().size(), 1);
        int stops = 0;
        const QObject listener;
        auto *const request = qobject_cast<CGoogleAnalytics *>(reporter.children().value(0));
        QVERIFY(request != nullptr);
        connect(request, &CGoogleAnalytics::SignalStopRequest, &listener, [&] { ++stops; });
        reporter.StopReport();
        QCOMPARE(stops, 0);
        QCoreApplication::sendPostedEvents(request);
        QCOMPARE(stops, 1);
    }

    void stopIsASignal()
    {
        CGaReport reporter;
        int stops = 0;
        connect(&reporter, &CGaReport::SignalStopRequest, this, [&] { ++stops; });
        reporter.StopReport();
        QCOMPARE(stops, 1);
    }

    void stopWithNoRequestDoesNothing()
    {
        Reporter reporter;
        reporter.StopReport();
        QTest::qWait(10);
        report(reporter, false);
        QTRY_COMPARE(reporter.running(), 0);
        reporter.StopReport();
        QTest::qWait(10);
        QCOMPARE(received().size(), 1);
    }

    void eventAfterAStopGoesOut_data() { addModes(); }
    void eventAfterAStopGoesOut()
    {
        QFETCH(bool, sync);
        Reporter reporter;
        reporter.StopReport();
        report(reporter, sync);
        QTRY_COMPARE(reporter.running(), 0);
        QCOMPARE(received().size(), 1);
    }

    void waitingRequestIsNotStopped()
    {
        const RawServer slow([](Connection &client) {
            if (client.sleep(500))
                client.write("HTTP/1.1 204 No Content\r\n\r\n");
            else
                client.reset();
        });
        m_collectors->routeTo(slow.url());
        Reporter reporter;
        QTimer timer;
        int stops = 0;
        connect(&timer, &QTimer::timeout, this, [&] {
            ++stops;
            reporter.StopReport();
        });
        timer.start(20);
        QElapsedTimer clock;
        clock.start();
        report(reporter, true);
        QVERIFY(stops > 1);
        QVERIFY(clock.elapsed() >= 490);
    }

    void requestsKeepTheIdentifiersOfTheirStart()
    {
        Reporter reporter;
        reporter.InitData(clientId, QStringLiteral("first"), apiSecret);
        report(reporter, false);
        reporter.InitData(clientId, QStringLiteral("second"), apiSecret);
        report(reporter, false);
        QTRY_COMPARE(reporter.running(), 0);
        QList<QByteArray> targets {received().value(0).request.target, received().value(1).request.target};
        std::sort(targets.begin(), targets.end());
        QCOMPARE(targets, QList<QByteArray>({"/mp/collect?measurement_id=first&api_secret=secret",
                                             "/mp/collect?measurement_id=second&api_secret=secret"}));
    }

    void requestIsConnectedAfterItsStart()
    {
        if (ZYBASE_SANITIZED)
            QSKIP("sanitizers need the address space that is taken away here");
        HostProcess host;
        QVERIFY(host.start());
        // So one whose start fails is left behind, and no stop reaches it.
        QCOMPARE(host.call(QStringLiteral("analytics.startEventWithoutThreads")),
                 QJsonValue(QJsonArray({true, 1, false})));
        QCOMPARE(host.quit(), 0);
    }

    void parentOwnsTheReporter()
    {
        QObject parent;
        auto *const child = new CGaReport(&parent);
        QCOMPARE(child->parent(), &parent);
        QCOMPARE(CGaReport(nullptr).parent(), nullptr);
    }

    void oneSignalAndNoSlots()
    {
        QCOMPARE(ownMethods(CGaReport::staticMetaObject),
                 QStringList {QStringLiteral("signal SignalStopRequest()")});
    }

    void fieldsStandInTheirOrder()
    {
        QCOMPARE(sizeof(CGaReport), sizeof(QObject) + 3 * sizeof(QString));
        CGaReport reporter;
        const QString *const fields = textFieldsOf(reporter);
        for (int i = 0; i < 3; ++i)
            QVERIFY(isEmptyNotNull(fields[i]));
        reporter.InitData(clientId, measurementId, apiSecret);
        QCOMPARE(fields[0], clientId);
        QCOMPARE(fields[1], measurementId);
        QCOMPARE(fields[2], apiSecret);
    }
};

QTEST_GUILESS_MAIN(TestGaReport)

#include "tst_ga_report.moc"
