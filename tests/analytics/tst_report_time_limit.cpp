// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Collectors.h"

#include <ZyBase/analytics/CGaReport.h>
#include <ZyBase/analytics/CXdReport.h>

#include <QElapsedTimer>

#include <thread>

using LocalServices::Connection;
using LocalServices::RawServer;

namespace {

// Qt's timers may be off by a twentieth.
constexpr qint64 earliest = 9500;
constexpr qint64 latest = 12500;

bool isTheLimit(qint64 milliseconds)
{
    return milliseconds >= earliest && milliseconds <= latest;
}

struct SyncCall
{
    bool returned = true;
    qint64 took = 0;
};

template <class Call> void measure(SyncCall &result, Call call)
{
    QElapsedTimer clock;
    clock.start();
    result.returned = call();
    result.took = clock.elapsed();
}

} // namespace

// The ten seconds. All requests of this program wait side by side.
class TestReportTimeLimit : public QObject
{
    Q_OBJECT

private:
    Collectors m_collectors;
    SilentServer m_silent;
    // Sends the head of an answer and no end of it.
    RawServer m_dripping {[](Connection &client) {
        client.write("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n");
        while (client.write(".") && client.sleep(200)) {}
    }};

    SyncCall m_analytics;
    SyncCall m_reporter;
    WatchedEvent m_event;
    WatchedEvent m_stoppedLate;
    WatchedReporter<CGaReport> m_gaReporter;
    WatchedReporter<CXdReport> m_xdReporter;
    qint64 m_gaTook = 0;
    qint64 m_xdTook = 0;

private Q_SLOTS:
    void initTestCase()
    {
        m_collectors.routeTo(m_dripping.url());
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
        QTRY_COMPARE(m_dripping.requests().size(), 2);
        m_collectors.routeTo(m_silent.url());

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
        QVERIFY(QTest::qWaitFor(
            [&] {
                if (m_gaReporter.running() > 0)
                    m_gaTook = clock.elapsed();
                if (m_xdReporter.running() > 0)
                    m_xdTook = clock.elapsed();
                return m_gaReporter.running() + m_xdReporter.running() == 0 && m_event.outcomes().size() == 1
                       && m_stoppedLate.outcomes().size() == 1;
            },
            30000));
        first.join();
        second.join();
    }

    void waitingRequestReturnsFalse()
    {
        QVERIFY(!m_analytics.returned);
        QVERIFY2(isTheLimit(m_analytics.took), qPrintable(QString::number(m_analytics.took)));
    }

    void backgroundRequestEndsByTheTimeoutSignalAlone()
    {
        QTest::qWait(50);
        QCOMPARE(m_event.outcomes(), QList<Outcome> {timedOut});
    }

    void stopAfterTheTimerChangesNothing() { QCOMPARE(m_stoppedLate.outcomes(), QList<Outcome> {timedOut}); }

    void waitingReportReturns()
    {
        QVERIFY2(isTheLimit(m_reporter.took), qPrintable(QString::number(m_reporter.took)));
    }

    void eventsThatTimedOutAreRemoved()
    {
        QCOMPARE(m_gaReporter.started(), 3);
        QVERIFY2(isTheLimit(m_gaTook), qPrintable(QString::number(m_gaTook)));
        QVERIFY(m_gaReporter.areRemovedInItsThread());
    }

    void recordsThatTimedOutAreRemoved()
    {
        QCOMPARE(m_xdReporter.started(), 3);
        QVERIFY2(isTheLimit(m_xdTook), qPrintable(QString::number(m_xdTook)));
        QVERIFY(m_xdReporter.areRemovedInItsThread());
    }

    void connectionsAreClosed() { QTRY_COMPARE(m_collectors.openConnections(), 0); }
};

QTEST_GUILESS_MAIN(TestReportTimeLimit)

#include "tst_report_time_limit.moc"
