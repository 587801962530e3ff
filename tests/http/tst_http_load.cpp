// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Requests.h"

#include "ProcessFigures.h"

#include <localservices/HttpServer.h>

#include <memory>
#include <utility>
#include <vector>

using LocalServices::HttpServer;

namespace {

constexpr bool isSanitized = ZYBASE_SANITIZED != 0;
constexpr int atOnce = isSanitized ? 40 : 200;
constexpr int inTurn = isSanitized ? 300 : 5000;
constexpr int warmUp = isSanitized ? 50 : 500;
constexpr qint64 mebi = 1024 * 1024;
// What a sanitizer keeps of freed memory is not ours to count.
constexpr qint64 allowedGrowth = (isSanitized ? 512 : 4) * mebi;

} // namespace

// Many requests at once and in turn leave no thread, file descriptor or memory behind.
class TestHttpLoad : public QObject
{
    Q_OBJECT

private:
    void verifyNothingIsLeft()
    {
        QTRY_COMPARE_WITH_TIMEOUT(ProcessFigures::threadCount(), m_threads, 20000);
        QTRY_COMPARE_WITH_TIMEOUT(ProcessFigures::openFileCount(), m_files, 20000);
    }

    HttpServer m_server;
    int m_threads = 0;
    int m_files = 0;

private Q_SLOTS:
    void initTestCase()
    {
        // What Qt makes once for all requests to come is no leak.
        for (const Form form : allForms)
            carryOut(form, m_server.url(QStringLiteral("/echo")));
        QTRY_COMPARE(m_server.openConnections(), 0);
        int threads = -1;
        QTRY_COMPARE(std::exchange(threads, ProcessFigures::threadCount()), ProcessFigures::threadCount());
        QTest::qWait(200);
        m_threads = ProcessFigures::threadCount();
        m_files = ProcessFigures::openFileCount();
    }

    void manyOnOneObjectAreStoppedByOneSignal()
    {
        {
            WatchedRequest watched;
            const int before = m_server.requests().size();
            for (int i = 0; i < atOnce; ++i)
                watched.start(asyncForms.at(i % asyncForms.size()), m_server.url(QStringLiteral("/never")));
            QTRY_COMPARE_WITH_TIMEOUT(m_server.requests().size(), before + atOnce, 9000);
            QVERIFY(watched.stopAll());
            QCOMPARE(watched.outcomes().count(cancelled), atOnce);
            verifyNothingIsLeft();
            QCOMPARE(watched.outcomes().size(), atOnce);
        }
    }

    void manyOnOneObjectAllEnd()
    {
        WatchedRequest watched;
        for (int i = 0; i < atOnce; ++i)
            watched.start(Form::Get, m_server.url(QStringLiteral("/bytes/10000?rate=20000")));
        QVERIFY(watched.waitForAll());
        QCOMPARE(watched.outcomes().count(result(Form::Get, HttpServer::content(10000), 200)), atOnce);
        verifyNothingIsLeft();
    }

    void manyObjectsAreStoppedByOneSignal()
    {
        std::vector<std::unique_ptr<WatchedRequest>> watched(atOnce);
        const int before = m_server.requests().size();
        WatchedRequest host;
        for (auto &mine : watched) {
            mine = std::make_unique<WatchedRequest>();
            QVERIFY(connect(host.request(), SIGNAL(SignalStopRequest()), mine->request(),
                            SIGNAL(SignalStopRequest())));
            mine->start(Form::PostAsync, m_server.url(QStringLiteral("/never")));
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_server.requests().size(), before + atOnce, 9000);
        for (auto &mine : watched) {
            QTRY_VERIFY(([&] {
                Q_EMIT host.request()->SignalStopRequest();
                return !mine->outcomes().isEmpty();
            }()));
        }
        for (auto &mine : watched)
            QCOMPARE(mine->outcomes(), QList<Outcome> {cancelled});
        verifyNothingIsLeft();
    }

    void manyInTurnLeaveNoMemory()
    {
        const QUrl url = m_server.url(QStringLiteral("/echo"));
        for (int i = 0; i < warmUp; ++i)
            carryOut(allForms.at(i % allForms.size()), url);
        verifyNothingIsLeft();
        m_server.forgetRequests();
        const qint64 before = ProcessFigures::residentBytes();
        for (int i = 0; i < inTurn; ++i) {
            const Form form = allForms.at(i % allForms.size());
            QCOMPARE(carryOut(form, url).data, form < Form::Get ? QByteArray("{}") : QByteArray("/echo"));
            m_server.forgetRequests();
        }
        verifyNothingIsLeft();
        const qint64 growth = ProcessFigures::residentBytes() - before;
        QVERIFY2(growth < allowedGrowth, qPrintable(QStringLiteral("%1 KiB").arg(growth / 1024)));
    }

    void failedRequestsLeaveNothing()
    {
        for (int i = 0; i < 50; ++i) {
            for (const Form form : allForms) {
                carryOut(form, QUrl(QStringLiteral("http://127.0.0.1:1/")));
                carryOut(form, QUrl());
            }
        }
        verifyNothingIsLeft();
    }
};

QTEST_GUILESS_MAIN(TestHttpLoad)

#include "tst_http_load.moc"
