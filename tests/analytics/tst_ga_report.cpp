// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ReporterTest.h"

#include "HostProcess.h"
#include "Waiting.h"

#include <ZyBase/analytics/CGaReport.h>

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QTimer>

#include <algorithm>

namespace {

const QString clientId = QStringLiteral("client");
const QString measurementId = QStringLiteral("G-1");
const QString apiSecret = QStringLiteral("secret");

using Reporter = WatchedReporter<CGaReport>;

} // namespace

class TestGaReport : public ReporterTest
{
    Q_OBJECT

private:
    std::unique_ptr<ReporterWatcher> createReporter(const QUrl &server) override
    {
        if (!server.isEmpty())
            routeEvents(server);
        return std::make_unique<Reporter>();
    }
    void start(ReporterWatcher &reporter) override { report(static_cast<Reporter &>(reporter), false); }
    int recorded() override { return received().size(); }
    std::unique_ptr<QObject> createObject(QObject *parent) override
    {
        return std::make_unique<CGaReport>(parent);
    }

    void report(CGaReport &reporter, bool sync)
    {
        const auto start = [&] {
            reporter.ReportGaData(QStringLiteral("open"), QStringLiteral("file"), QStringLiteral("pdf"),
                                  sync);
        };
        sync ? start() : startEvents(start);
    }
    QList<GaCollector::Event> received() { return network().collector().events(); }
    static void addModes()
    {
        QTest::addColumn<bool>("sync");
        QTest::newRow("synchronous") << true;
        QTest::newRow("asynchronous") << false;
    }

private Q_SLOTS:
    void sendsAllValues_data() { addModes(); }
    void sendsAllValues()
    {
        QFETCH(bool, sync);
        Reporter reporter;
        reporter.InitData(clientId, measurementId, apiSecret);
        report(reporter, sync);
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, longestWaitMs);
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

    void sendsEmptyIdentifiersByDefault_data() { addModes(); }
    void sendsEmptyIdentifiersByDefault()
    {
        QFETCH(bool, sync);
        Reporter reporter;
        report(reporter, sync);
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, longestWaitMs);
        QCOMPARE(received().size(), 1);
        QCOMPARE(received().first().request.target, QByteArray("/mp/collect?measurement_id=&api_secret="));
        QCOMPARE(received().first().body.value(QStringLiteral("client_id")), QJsonValue(QString()));
    }

    void returnsAfterAnswerOfSynchronousReport()
    {
        Reporter reporter;
        report(reporter, true);
        QCOMPARE(received().size(), 1);
        QCOMPARE(reporter.started(), 1);
        QCOMPARE(reporter.running(), 0);
    }

    void ownsRequestDuringSynchronousReport()
    {
        Reporter reporter;
        int maximum = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [&] { maximum = qMax(maximum, reporter.running()); });
        timer.start(0);
        report(reporter, true);
        QCOMPARE(maximum, 1);
    }

    void deletesRequestsIfNetworkIsDown()
    {
        const LocalServices::ReservedPort closedPort;
        useProxy(closedPort.number());
        // A signal may be emitted before the reporter is connected to it, but not in every attempt.
        int left = 3;
        for (int attempt = 0; attempt < 5 && left > 0; ++attempt) {
            CGaReport reporter;
            report(reporter, true);
            for (int i = 0; i < 3; ++i)
                report(reporter, false);
            const bool areGone = QTest::qWaitFor([&] { return reporter.children().isEmpty(); });
            left = areGone ? 0 : reporter.children().size();
        }
        QCOMPARE(left, 0);
    }

    void deliversStopThroughEventLoop()
    {
        const SilentServer server;
        routeEvents(server.url());
        Reporter reporter;
        report(reporter, false);
        QTRY_COMPARE_WITH_TIMEOUT(server.requests().size(), 1, longestWaitMs);
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

    void sendsEventAfterStop_data() { addModes(); }
    void sendsEventAfterStop()
    {
        QFETCH(bool, sync);
        Reporter reporter;
        reporter.StopReport();
        report(reporter, sync);
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, longestWaitMs);
        QCOMPARE(received().size(), 1);
    }

    void ignoresStopDuringSynchronousReport()
    {
        const SlowServer server;
        routeEvents(server.url());
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

    void sendsIdentifiersSetAtStart()
    {
        Reporter reporter;
        reporter.InitData(clientId, QStringLiteral("first"), apiSecret);
        report(reporter, false);
        reporter.InitData(clientId, QStringLiteral("second"), apiSecret);
        report(reporter, false);
        QTRY_COMPARE_WITH_TIMEOUT(reporter.running(), 0, longestWaitMs);
        QList<QByteArray> targets {received().value(0).request.target, received().value(1).request.target};
        std::sort(targets.begin(), targets.end());
        QCOMPARE(targets, QList<QByteArray>({"/mp/collect?measurement_id=first&api_secret=secret",
                                             "/mp/collect?measurement_id=second&api_secret=secret"}));
    }

    void connectsRequestAfterStart()
    {
        if (ZYBASE_SANITIZED || ZYBASE_EMULATED)
            QSKIP("sanitizers need the address space that this test removes, and emulators do not remove it");
        HostProcess host;
        QVERIFY(host.start());
        // A request whose start fails is neither connected nor deleted.
        QCOMPARE(host.call(QStringLiteral("analytics.startEventWithoutThreads")),
                 QJsonValue(QJsonArray({true, 1, false})));
        QCOMPARE(host.quit(), 0);
    }

    void keepsFieldsInOrder()
    {
        QCOMPARE(sizeof(CGaReport), sizeof(QObject) + 3 * sizeof(QString));
        CGaReport reporter;
        const QString *const fields = stringFieldsOf(reporter);
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
