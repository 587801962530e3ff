// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ReporterTest.h"

#include "Waiting.h"

#include <ZyBase/analytics/CGaReport.h>
#include <ZyBase/analytics/CXdReport.h>
#include <ZyBase/http/CHttpPostRequest.h>

#include <QElapsedTimer>
#include <QPointer>

#include <thread>

using namespace std::chrono_literals;

namespace {

// Qt's timers may fire 5 % early.
constexpr qint64 earliestMs = 9500;
constexpr qint64 latestMs = 12500;

bool isTheLimit(qint64 milliseconds)
{
    return milliseconds >= earliestMs && milliseconds <= latestMs;
}

struct SyncCall
{
    bool returned = true;
    qint64 durationMs = 0;
};

template <class Call> void measure(SyncCall &result, Call call)
{
    QElapsedTimer clock;
    clock.start();
    result.returned = call();
    result.durationMs = clock.elapsed();
}

} // namespace

// The time limit of ten seconds. All requests run at the same time.
class TestReportTimeLimit : public QObject
{
    Q_OBJECT

private:
    OutputCapture m_output;
    LocalServices::FakeNetwork m_network;
    SilentServer m_silent;
    DrippingServer m_dripping;

    void routeEvents(const QUrl &url) { m_network.route(LocalServices::FakeNetwork::collectorHost, url); }

    SyncCall m_analytics;
    SyncCall m_reporter;
    WatchedEvent m_event;
    WatchedEvent m_stoppedLate;
    WatchedReporter<CGaReport> m_gaReporter;
    WatchedReporter<CXdReport> m_xdReporter;
    qint64 m_gaDurationMs = 0;
    qint64 m_xdDurationMs = 0;
    QPointer<ZyBase::CHttpPostRequest> m_withoutReporter;
    int m_withoutReporterTimeouts = 0;

private Q_SLOTS:
    void initTestCase()
    {
        m_network.install();
        routeEvents(m_dripping.url());
        std::thread first([this] {
            measure(m_analytics, [] {
                CGoogleAnalytics analytics;
                return sendSync(analytics);
            });
        });
        std::thread second([this] {
            measure(m_reporter, [] {
                CGaReport reporter;
                reporter.ReportGaData(QStringLiteral("n"), QStringLiteral("c"), QStringLiteral("l"), true);
                return true;
            });
        });
        QTRY_COMPARE_WITH_TIMEOUT(m_dripping.requests().size(), 2, longestWaitMs);
        routeEvents(m_silent.url());

        QElapsedTimer clock;
        clock.start();
        m_event.start();
        connect(
            &m_stoppedLate.analytics(), &CGoogleAnalytics::SignalRequestTimeout, this,
            [this] { Q_EMIT m_stoppedLate.analytics().SignalStopRequest(); }, Qt::DirectConnection);
        m_stoppedLate.start();
        for (int i = 0; i < 3; ++i)
            m_gaReporter.ReportGaData(QStringLiteral("n"), QStringLiteral("c"), QStringLiteral("l"), false);
        m_xdReporter.InitData(m_silent.url().toString(), {}, {}, {}, {});
        for (int i = 0; i < 3; ++i)
            m_xdReporter.ReportXdData(QStringLiteral("a"), QStringLiteral("s"));
        auto reporter = std::make_unique<CXdReport>();
        reporter->InitData(m_silent.url().toString(), {}, {}, {}, {});
        reporter->ReportXdData(QStringLiteral("a"), QStringLiteral("s"));
        m_withoutReporter = reporter->findChild<ZyBase::CHttpPostRequest *>();
        m_withoutReporter->setParent(nullptr);
        connect(m_withoutReporter, &ZyBase::CHttpPostRequest::SignalRequestTimeout, this,
                [this] { ++m_withoutReporterTimeouts; });
        reporter.reset();
        QVERIFY(QTest::qWaitFor(
            [&] {
                if (m_gaReporter.running() > 0)
                    m_gaDurationMs = clock.elapsed();
                if (m_xdReporter.running() > 0)
                    m_xdDurationMs = clock.elapsed();
                return m_gaReporter.running() + m_xdReporter.running() == 0 && m_event.outcomes().size() == 1
                       && m_stoppedLate.outcomes().size() == 1 && m_withoutReporterTimeouts == 1;
            },
            30000));
        first.join();
        second.join();
    }

    void returnsFalseFromSynchronousRequest()
    {
        QVERIFY(!m_analytics.returned);
        QVERIFY2(isTheLimit(m_analytics.durationMs), qPrintable(QString::number(m_analytics.durationMs)));
    }

    void emitsOnlyTimeoutInWorkerThread()
    {
        QVERIFY(staysTrueFor(50ms, [this] { return m_event.outcomes() == QList<Outcome> {timedOut}; }));
        QVERIFY(m_event.areEmittedInWorkers());
    }

    void ignoresStopAfterTimeout() { QCOMPARE(m_stoppedLate.outcomes(), QList<Outcome> {timedOut}); }

    void returnsFromSynchronousReport()
    {
        QVERIFY2(isTheLimit(m_reporter.durationMs), qPrintable(QString::number(m_reporter.durationMs)));
    }

    void deletesEventsAfterTimeout()
    {
        QCOMPARE(m_gaReporter.started(), 3);
        QVERIFY2(isTheLimit(m_gaDurationMs), qPrintable(QString::number(m_gaDurationMs)));
        QVERIFY(m_gaReporter.areDeletedInOwnThread());
    }

    void deletesRecordsAfterTimeout()
    {
        QCOMPARE(m_xdReporter.started(), 3);
        QVERIFY2(isTheLimit(m_xdDurationMs), qPrintable(QString::number(m_xdDurationMs)));
        QVERIFY(m_xdReporter.areDeletedInOwnThread());
    }

    // The functions that delete a request end with the reporter.
    void deletesNoRequestAfterReporter()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!m_withoutReporter.isNull());
        delete m_withoutReporter;
    }

    void writesNoMessages() { QCOMPARE(m_output.lines(), QStringList()); }

    void closesConnections() { QTRY_COMPARE_WITH_TIMEOUT(m_network.openConnections(), 0, longestWaitMs); }
};

QTEST_GUILESS_MAIN(TestReportTimeLimit)

#include "tst_report_time_limit.moc"
