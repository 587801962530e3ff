// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Requests.h"

#include <localservices/HttpServer.h>
#include <localservices/RawServer.h>

#include <QElapsedTimer>

#include <thread>
#include <vector>

using LocalServices::Connection;
using LocalServices::HttpServer;
using LocalServices::RawServer;

namespace {

// Qt's timers may be off by a twentieth.
constexpr qint64 earliest = 9500;
constexpr qint64 latest = 12500;

struct SyncCall
{
    bool returned = true;
    QByteArray data = "before";
    qint64 took = 0;
};

struct AsyncCall
{
    WatchedRequest watched;
    qint64 took = 0;
};

} // namespace

// The ten seconds. All requests of this program wait side by side.
class TestHttpTimeLimit : public QObject
{
    Q_OBJECT

private:
    HttpServer m_server;
    RawServer m_late {[](Connection &client) {
        if (client.sleep(9000))
            client.write("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nlate");
    }};
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
        std::vector<std::thread> threads;
        for (const char *path : paths) {
            for (const Form form : syncForms) {
                SyncCall &mine = m_sync[key(form, path)];
                threads.emplace_back([this, form, path, &mine] {
                    QElapsedTimer clock;
                    clock.start();
                    mine.returned = call(form, urlOf(path), mine.data);
                    mine.took = clock.elapsed();
                });
            }
        }
        for (const char *path : paths) {
            for (const Form form : asyncForms) {
                AsyncCall &mine = m_async[key(form, path)];
                QElapsedTimer clock;
                clock.start();
                const auto keepTime = [&mine, clock] { mine.took = clock.elapsed(); };
                connect(mine.watched.request(), &ZyBase::CHttpPostRequest::SignalRequestTimeout, this,
                        keepTime);
                mine.watched.start(form, urlOf(path));
            }
        }
        for (auto &call : m_async)
            call.second.watched.waitForAll();
        for (std::thread &thread : threads)
            thread.join();
    }

    void asynchronousFormEndsByTheTimeoutSignal_data() { addRows(asyncForms); }
    void asynchronousFormEndsByTheTimeoutSignal()
    {
        QFETCH(Form, form);
        QFETCH(QByteArray, path);
        const AsyncCall &mine = m_async.at(key(form, path.constData()));
        QCOMPARE(mine.watched.outcomes(), QList<Outcome> {timedOut});
        QTRY_VERIFY(mine.took > 0);
        QVERIFY2(mine.took >= earliest && mine.took <= latest, qPrintable(QString::number(mine.took)));
    }

    void synchronousFormReturnsFalseAndLeavesTheResult_data() { addRows(syncForms); }
    void synchronousFormReturnsFalseAndLeavesTheResult()
    {
        QFETCH(Form, form);
        QFETCH(QByteArray, path);
        const SyncCall &mine = m_sync.at(key(form, path.constData()));
        QVERIFY(!mine.returned);
        QCOMPARE(mine.data, QByteArray("before"));
        QVERIFY2(mine.took >= earliest && mine.took <= latest, qPrintable(QString::number(mine.took)));
    }

    void answerBeforeTheLimitIsAResult_data() { addForms(allForms); }
    void answerBeforeTheLimitIsAResult()
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

    void connectionOfATimedOutRequestIsClosed() { QTRY_COMPARE(m_server.openConnections(), 0); }
};

QTEST_GUILESS_MAIN(TestHttpTimeLimit)

#include "tst_http_time_limit.moc"
