// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Requests.h"

#include "ProcessFigures.h"
#include "Waiting.h"

#include <localservices/HttpServer.h>

#include <memory>
#include <vector>

using LocalServices::HttpServer;
using namespace std::chrono_literals;

namespace {

constexpr bool isSanitized = ZYBASE_SANITIZED != 0;
// Each request has threads, whose stacks fill the address space of a 32-bit process.
constexpr int parallelRequests = isSanitized || sizeof(void *) == 4 ? 40 : 200;
constexpr int sequentialRequests = isSanitized ? 300 : 5000;
constexpr int warmUpRequests = isSanitized ? 50 : 500;
constexpr qint64 mebibyte = 1024 * 1024;
// Sanitizers keep freed memory.
constexpr qint64 allowedGrowthBytes = (isSanitized ? 512 : 4) * mebibyte;

} // namespace

// Many requests leak no thread, file descriptor or memory.
class TestHttpLoad : public QObject
{
    Q_OBJECT

private:
    void verifyNothingLeaks()
    {
        QTRY_VERIFY_WITH_TIMEOUT(ProcessFigures::threadCount() <= m_threads, longestWaitMs);
        QTRY_VERIFY_WITH_TIMEOUT(ProcessFigures::openFileCount() <= m_files, longestWaitMs);
    }

    HttpServer m_server;
    int m_threads = 0;
    int m_files = 0;

private Q_SLOTS:
    void initTestCase()
    {
        // What Qt creates once for all requests is not a leak.
        for (const Form form : allForms)
            carryOut(form, m_server.url(QStringLiteral("/echo")));
        QTRY_COMPARE_WITH_TIMEOUT(m_server.openConnections(), 0, longestWaitMs);
        QTRY_VERIFY_WITH_TIMEOUT(([this] {
                                     m_threads = ProcessFigures::threadCount();
                                     m_files = ProcessFigures::openFileCount();
                                     return staysTrueFor(200ms, [this] {
                                         return ProcessFigures::threadCount() == m_threads
                                                && ProcessFigures::openFileCount() == m_files;
                                     });
                                 }()),
                                 longestWaitMs);
    }

    void stopsManyRequestsOfOneObject()
    {
        {
            WatchedRequest watched;
            const int before = m_server.requests().size();
            for (int i = 0; i < parallelRequests; ++i)
                watched.start(asyncForms.at(i % asyncForms.size()), m_server.url(QStringLiteral("/never")));
            QTRY_COMPARE_WITH_TIMEOUT(m_server.requests().size(), before + parallelRequests,
                                      beforeTimeLimitMs);
            QVERIFY(watched.stopAll());
            QCOMPARE(watched.outcomes().count(cancelled), parallelRequests);
            verifyNothingLeaks();
            QCOMPARE(watched.outcomes().size(), parallelRequests);
        }
    }

    void endsManyRequestsOfOneObject()
    {
        WatchedRequest watched;
        for (int i = 0; i < parallelRequests; ++i)
            watched.start(Form::Get, m_server.url(QStringLiteral("/bytes/10000?rate=20000")));
        QVERIFY(watched.waitForAll());
        QCOMPARE(watched.outcomes().count(result(Form::Get, HttpServer::content(10000), 200)),
                 parallelRequests);
        verifyNothingLeaks();
    }

    void stopsManyObjectsByOneSignal()
    {
        std::vector<std::unique_ptr<WatchedRequest>> watched(parallelRequests);
        const int before = m_server.requests().size();
        WatchedRequest source;
        for (auto &mine : watched) {
            mine = std::make_unique<WatchedRequest>();
            QVERIFY(connect(source.request(), SIGNAL(SignalStopRequest()), mine->request(),
                            SIGNAL(SignalStopRequest())));
            mine->start(Form::PostAsync, m_server.url(QStringLiteral("/never")));
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_server.requests().size(), before + parallelRequests, beforeTimeLimitMs);
        for (auto &mine : watched) {
            QTRY_VERIFY_WITH_TIMEOUT(([&] {
                                         Q_EMIT source.request()->SignalStopRequest();
                                         return !mine->outcomes().isEmpty();
                                     }()),
                                     longestWaitMs);
        }
        for (auto &mine : watched)
            QCOMPARE(mine->outcomes(), QList<Outcome> {cancelled});
        verifyNothingLeaks();
    }

    void leaksNoMemoryInSequence()
    {
        if (ZYBASE_EMULATED)
            QSKIP("the emulator keeps translated code for each thread");
        const QUrl url = m_server.url(QStringLiteral("/echo"));
        for (int i = 0; i < warmUpRequests; ++i)
            carryOut(allForms.at(i % allForms.size()), url);
        verifyNothingLeaks();
        m_server.forgetRequests();
        const qint64 before = ProcessFigures::residentBytes();
        for (int i = 0; i < sequentialRequests; ++i) {
            const Form form = allForms.at(i % allForms.size());
            QCOMPARE(carryOut(form, url).data, form < Form::Get ? QByteArray("{}") : QByteArray("/echo"));
            m_server.forgetRequests();
        }
        verifyNothingLeaks();
        const qint64 growth = ProcessFigures::residentBytes() - before;
        QVERIFY2(growth < allowedGrowthBytes, qPrintable(QStringLiteral("%1 KiB").arg(growth / 1024)));
    }

    void leaksNothingAfterFailures()
    {
        for (int i = 0; i < 50; ++i) {
            for (const Form form : allForms) {
                carryOut(form, QUrl(QStringLiteral("http://127.0.0.1:1/")));
                carryOut(form, QUrl());
            }
        }
        verifyNothingLeaks();
    }
};

QTEST_GUILESS_MAIN(TestHttpLoad)

#include "tst_http_load.moc"
