// SPDX-License-Identifier: LGPL-2.1-or-later

#include "StopTest.h"

#include "Servers.h"
#include "Waiting.h"

#include <ZyBase/base/LoggerObjectPrivate.h>
#include <localservices/ReservedPort.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

using namespace std::chrono_literals;

void StopTest::init()
{
    m_output = std::make_unique<OutputCapture>();
}

void StopTest::cleanup()
{
    QCOMPARE(OutputCapture::take(m_output), QString());
    QVERIFY(!LoggerObjectPrivate::s_pLogger); // the log is not used
}

void StopTest::addCalls(const QStringList &calls)
{
    QTest::addColumn<QString>("call");
    for (const QString &call : calls)
        QTest::newRow(qPrintable(call)) << call;
}

void StopTest::cancelsStoppedRequest_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<bool>("isAnswered");
    const QStringList calls = asyncCalls();
    for (const QString &call : calls) {
        QTest::addRow("%s, before the answer", qPrintable(call)) << call << false;
        QTest::addRow("%s, during the answer", qPrintable(call)) << call << true;
    }
}

void StopTest::cancelsStoppedRequest()
{
    QFETCH(QString, call);
    QFETCH(bool, isAnswered);
    SilentServer silent;
    DrippingServer dripping;
    LocalServices::RawServer &server =
        isAnswered ? static_cast<LocalServices::RawServer &>(dripping) : silent;
    setServer(server.url());
    const std::unique_ptr<OutcomeWatcher> watched = createWatcher();
    QElapsedTimer clock;
    clock.start();
    start(*watched, call);
    QTRY_COMPARE_WITH_TIMEOUT(server.requests().size(), 1, longestWaitMs);
    QVERIFY(watched->stopAll());
    QVERIFY(clock.elapsed() < beforeTimeLimitMs);
    QTRY_COMPARE_WITH_TIMEOUT(server.openConnections(), 0, longestWaitMs);
    QVERIFY(staysTrueFor(50ms, [&] { return watched->outcomes() == QList<Outcome> {cancelled}; }));
    QVERIFY(watched->areEmittedInWorkers());
}

void StopTest::returnsBeforeAnswer()
{
    QFETCH(QString, call);
    const SilentServer server;
    setServer(server.url());
    const std::unique_ptr<OutcomeWatcher> watched = createWatcher();
    start(*watched, call);
    QVERIFY(watched->outcomes().isEmpty()); // no event was delivered yet
    QVERIFY(watched->stopAll());
    QCOMPARE(watched->outcomes(), QList<Outcome> {cancelled});
    QVERIFY(watched->areEmittedInWorkers());
}

void StopTest::ignoresStopBeforeRequestIsConnected()
{
    QFETCH(QString, call);
    const SlowServer server;
    setServer(server.url());
    const Outcome expected = resultOf(call, "slow");
    // The new thread may be connected before the emission, but not in every attempt.
    Outcome outcome;
    for (int attempt = 0; attempt < 20 && !(outcome == expected); ++attempt) {
        const std::unique_ptr<OutcomeWatcher> watched = createWatcher();
        start(*watched, call);
        watched->emitStop();
        QVERIFY(watched->waitForAll());
        outcome = watched->outcomes().value(0);
    }
    QCOMPARE(outcome, expected);
}

void StopTest::ignoresStopWithoutRequest()
{
    QFETCH(QString, call);
    const SlowServer server;
    setServer(server.url());
    const std::unique_ptr<OutcomeWatcher> watched = createWatcher();
    watched->emitStop();
    start(*watched, call);
    QVERIFY(watched->waitForAll());
    watched->emitStop();
    QVERIFY(staysTrueFor(50ms, [&] { return watched->outcomes().size() == 1; }));
    QCOMPARE(watched->outcomes(), QList<Outcome> {resultOf(call, "slow")});
}

void StopTest::stopsAllRequestsOfObject()
{
    const SilentServer server;
    setServer(server.url());
    const std::unique_ptr<OutcomeWatcher> watched = createWatcher();
    const QStringList calls = asyncCalls();
    for (int i = 0; i < 3; ++i)
        start(*watched, calls.at(i % calls.size()));
    QTRY_COMPARE_WITH_TIMEOUT(server.requests().size(), 3, longestWaitMs);
    QVERIFY(watched->stopAll());
    QCOMPARE(watched->outcomes(), QList<Outcome>({cancelled, cancelled, cancelled}));
}

void StopTest::ignoresStopDuringSynchronousCall()
{
    QFETCH(QString, call);
    const SlowServer server;
    setServer(server.url());
    const std::unique_ptr<OutcomeWatcher> watched = createWatcher();
    int stops = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        ++stops;
        watched->emitStop();
    });
    timer.start(20);
    QByteArray data;
    QVERIFY(send(*watched, call, data));
    QVERIFY(stops > 1); // events are delivered during the call
    QCOMPARE(data, hasSyncData() ? QByteArray("slow") : QByteArray());
}

void StopTest::returnsTrueIfApplicationQuits()
{
    QFETCH(QString, call);
    const SilentServer server;
    setServer(server.url());
    const std::unique_ptr<OutcomeWatcher> watched = createWatcher();
    bool isTrue = false;
    QByteArray data = hasSyncData() ? "before" : "";
    QTimer::singleShot(0, this, [&] { isTrue = send(*watched, call, data); });
    QTimer::singleShot(100, QCoreApplication::instance(), &QCoreApplication::quit);
    QElapsedTimer clock;
    clock.start();
    QCoreApplication::exec();
    QVERIFY(clock.elapsed() < beforeTimeLimitMs);
    QVERIFY(isTrue);
    QCOMPARE(data, QByteArray());
}

void StopTest::emitsNothingDuringSynchronousCall()
{
    QFETCH(QString, call);
    const std::unique_ptr<OutcomeWatcher> watched = createWatcher();
    const SlowServer server;
    setServer(server.url());
    QByteArray data;
    QVERIFY(send(*watched, call, data));
    const LocalServices::ReservedPort closedPort;
    setServer(closedPort.url());
    send(*watched, call, data);
    QVERIFY(staysTrueFor(10ms, [&] { return watched->outcomes().isEmpty(); }));
}
