// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ReporterTest.h"

#include "ProcessFigures.h"
#include "Waiting.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QSignalSpy>

using namespace std::chrono_literals;

void ReporterTest::start(ReporterWatcher &reporter, int count)
{
    for (int i = 0; i < count; ++i)
        start(reporter);
}

void ReporterTest::deletesFinishedRequest_data()
{
    QTest::addColumn<QByteArray>("answer");
    const auto row = [](const char *status, const QByteArray &headers = {}) {
        QTest::newRow(status) << QByteArray("HTTP/1.1 ") + status + "\r\n" + headers
                                     + "Content-Length: 2\r\n\r\nok";
    };
    row("200 OK");
    row("302 Found", "Location: /echo\r\n");
    row("403 Forbidden");
    row("500 Error");
    QTest::newRow("204 No Content") << QByteArray("HTTP/1.1 204 No Content\r\n\r\n");
    QTest::newRow("truncated") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf");
    QTest::newRow("no answer") << QByteArray();
}

void ReporterTest::deletesFinishedRequest()
{
    QFETCH(QByteArray, answer);
    const RawAnswer server(answer);
    const std::unique_ptr<ReporterWatcher> reporter = createReporter(server.url());
    start(*reporter, 3);
    QCOMPARE(reporter->started(), 3);
    QTRY_COMPARE_WITH_TIMEOUT(reporter->running(), 0, longestWaitMs);
    QVERIFY(reporter->areDeletedInOwnThread());
    if (answer.isEmpty())
        QVERIFY(server.requests().size() >= 3); // Qt repeats a request whose connection was closed
    else
        QCOMPARE(server.requests().size(), 3);
}

void ReporterTest::returnsBeforeAnswer()
{
    const SilentServer server;
    const std::unique_ptr<ReporterWatcher> reporter = createReporter(server.url());
    QElapsedTimer clock;
    clock.start();
    start(*reporter);
    QVERIFY(clock.elapsed() < beforeTimeLimitMs);
    QCOMPARE(reporter->running(), 1);
}

void ReporterTest::stopsAllRequests()
{
    constexpr int count = 20;
    SilentServer server;
    const std::unique_ptr<ReporterWatcher> reporter = createReporter(server.url());
    start(*reporter, count);
    QCOMPARE(reporter->running(), count);
    QTRY_COMPARE_WITH_TIMEOUT(server.requests().size(), count,
                              longestWaitMs); // at the same time: each has a thread
    reporter->stop();
    QTRY_COMPARE_WITH_TIMEOUT(reporter->running(), 0, beforeTimeLimitMs);
    QVERIFY(reporter->areDeletedInOwnThread());
    QTRY_COMPARE_WITH_TIMEOUT(server.openConnections(), 0, longestWaitMs);
}

void ReporterTest::endsThreadsOfRequests()
{
    const std::unique_ptr<ReporterWatcher> reporter = createReporter();
    start(*reporter);
    QTRY_COMPARE_WITH_TIMEOUT(reporter->running(), 0, longestWaitMs);
    QTRY_COMPARE_WITH_TIMEOUT(network().openConnections(), 0, longestWaitMs);
    const int before = ProcessFigures::threadCount();
    QElapsedTimer clock;
    clock.start();
    start(*reporter, 30);
    QCOMPARE(reporter->running(), 30);
    QTRY_COMPARE_WITH_TIMEOUT(reporter->running(), 0, longestWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(ProcessFigures::threadCount() <= before, longestWaitMs);
    // On a busy machine the time limit may end some of them before they are sent.
    if (clock.elapsed() < beforeTimeLimitMs)
        QCOMPARE(recorded(), 31);
}

void ReporterTest::emitsStopSignal()
{
    const std::unique_ptr<ReporterWatcher> reporter = createReporter();
    QSignalSpy stops(&reporter->object(), SIGNAL(SignalStopRequest()));
    reporter->stop();
    QCOMPARE(stops.size(), 1);
}

void ReporterTest::sendsAfterStop()
{
    const std::unique_ptr<ReporterWatcher> reporter = createReporter();
    reporter->stop();
    start(*reporter);
    QTRY_COMPARE_WITH_TIMEOUT(reporter->running(), 0, longestWaitMs);
    reporter->stop();
    QVERIFY(staysTrueFor(10ms, [this] { return recorded() == 1; }));
}

void ReporterTest::isDeletedByParent()
{
    auto parent = std::make_unique<QObject>();
    const QPointer<QObject> child = createObject(parent.get()).release();
    QCOMPARE(child->parent(), parent.get());
    parent.reset();
    QVERIFY(child.isNull());
    QCOMPARE(createObject(nullptr)->parent(), nullptr);
}

void ReporterTest::declaresOneSignalAndNoSlots()
{
    const std::unique_ptr<QObject> reporter = createObject(nullptr);
    QCOMPARE(ownMethods(*reporter->metaObject()), QStringList {QStringLiteral("signal SignalStopRequest()")});
}
