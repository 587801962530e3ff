// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Downloads.h"
#include "Files.h"
#include "Requests.h"
#include "Waiting.h"

#include <localservices/HttpServer.h>
#include <localservices/RawServer.h>

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <thread>
#include <vector>

using LocalServices::Connection;
using LocalServices::HttpServer;
using LocalServices::RawServer;

namespace {

// Qt's timers may fire 5 % early.
constexpr qint64 earliestMs = 9500;
constexpr qint64 latestMs = 12500;

struct SyncCall
{
    bool returned = true;
    QByteArray data = "before";
    qint64 durationMs = 0;
};

struct AsyncCall
{
    WatchedRequest watched;
    qint64 durationMs = 0;
};

} // namespace

// The time limit of ten seconds. All requests run at the same time.
class TestHttpTimeLimit : public QObject
{
    Q_OBJECT

private:
    HttpServer m_server;
    RawServer m_late {[](Connection &client) {
        if (client.sleep(9000))
            client.write("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nlate");
    }};
    RawServer m_tooLate {[](Connection &client) {
        if (client.sleep(11000))
            client.write("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nlate");
    }};
    const QTemporaryDir m_directory;
    WatchedDownload m_download;
    std::map<QByteArray, SyncCall> m_sync;
    std::map<QByteArray, AsyncCall> m_async;

    static QByteArray key(Form form, const char *path) { return QByteArray(nameOf(form)) + ' ' + path; }

    QUrl urlOf(const char *path) const
    {
        return qstrcmp(path, "/late") == 0 ? m_late.url() : m_server.url(QString::fromLatin1(path));
    }

    static void addRows(const QList<Form> &forms)
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<QByteArray>("path");
        for (const Form form : forms) {
            for (const char *path : {"/never", "/drip"})
                QTest::addRow("%s %s", nameOf(form), path) << form << QByteArray(path);
        }
    }

private Q_SLOTS:
    void initTestCase()
    {
        constexpr const char *paths[] {"/never", "/drip", "/late"};
        QVERIFY(
            m_download.manager()->StartDownload(m_tooLate.url(QStringLiteral("/file")), m_directory.path()));
        std::vector<std::thread> threads;
        for (const char *path : paths) {
            for (const Form form : syncForms) {
                SyncCall &mine = m_sync[key(form, path)];
                threads.emplace_back([this, form, path, &mine] {
                    QElapsedTimer clock;
                    clock.start();
                    mine.returned = call(form, urlOf(path), mine.data);
                    mine.durationMs = clock.elapsed();
                });
            }
        }
        for (const char *path : paths) {
            for (const Form form : asyncForms) {
                AsyncCall &mine = m_async[key(form, path)];
                QElapsedTimer clock;
                clock.start();
                const auto setDuration = [&mine, clock] { mine.durationMs = clock.elapsed(); };
                connect(mine.watched.request(), &ZyBase::CHttpPostRequest::SignalRequestTimeout, this,
                        setDuration);
                mine.watched.start(form, urlOf(path));
            }
        }
        for (auto &call : m_async)
            call.second.watched.waitForAll();
        for (std::thread &thread : threads)
            thread.join();
    }

    void emitsTimeoutInWorkerThread_data() { addRows(asyncForms); }
    void emitsTimeoutInWorkerThread()
    {
        QFETCH(Form, form);
        QFETCH(QByteArray, path);
        const AsyncCall &mine = m_async.at(key(form, path.constData()));
        QCOMPARE(mine.watched.outcomes(), QList<Outcome> {timedOut});
        QVERIFY(mine.watched.areEmittedInWorkers());
        QTRY_VERIFY_WITH_TIMEOUT(mine.durationMs > 0, longestWaitMs);
        QVERIFY2(mine.durationMs >= earliestMs && mine.durationMs <= latestMs,
                 qPrintable(QString::number(mine.durationMs)));
    }

    void returnsFalseAndKeepsResultVariable_data() { addRows(syncForms); }
    void returnsFalseAndKeepsResultVariable()
    {
        QFETCH(Form, form);
        QFETCH(QByteArray, path);
        const SyncCall &mine = m_sync.at(key(form, path.constData()));
        QVERIFY(!mine.returned);
        QCOMPARE(mine.data, QByteArray("before"));
        QVERIFY2(mine.durationMs >= earliestMs && mine.durationMs <= latestMs,
                 qPrintable(QString::number(mine.durationMs)));
    }

    void reportsAnswerBeforeTimeLimit_data() { addForms(allForms); }
    void reportsAnswerBeforeTimeLimit()
    {
        QFETCH(Form, form);
        const QByteArray name = key(form, "/late");
        if (isSync(form)) {
            QVERIFY(m_sync.at(name).returned);
            QCOMPARE(m_sync.at(name).data, QByteArray("late"));
        } else {
            QCOMPARE(m_async.at(name).watched.outcomes(), QList<Outcome> {result(form, "late", 200)});
        }
    }

    void downloadsWithoutTimeLimit()
    {
        QVERIFY(m_download.waitForOutcomes());
        QCOMPARE(m_download.outcomes().size(), 1);
        QVERIFY(m_download.outcomes().first().success);
        QCOMPARE(readFile(m_download.outcomes().first().path), QByteArray("late"));
    }

    void closesConnectionAfterTimeout()
    {
        QTRY_COMPARE_WITH_TIMEOUT(m_server.openConnections(), 0, longestWaitMs);
    }
};

QTEST_GUILESS_MAIN(TestHttpTimeLimit)

#include "tst_http_time_limit.moc"
