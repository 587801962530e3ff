// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Requests.h"

#include <localservices/HttpServer.h>

#include <QElapsedTimer>
#include <QTimer>

using LocalServices::HttpServer;
using ZyBase::CHttpPostRequest;

// Stopping requests by the signal.
class TestHttpStop : public QObject
{
    Q_OBJECT

private:
    QUrl url(const QByteArray &path) const { return m_server->url(QString::fromLatin1(path)); }

    std::unique_ptr<HttpServer> m_server;

private Q_SLOTS:
    void init() { m_server = std::make_unique<HttpServer>(); }
    void cleanup() { m_server.reset(); }

    void stoppedRequestIsCancelled_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<QByteArray>("path");
        for (const Form form : asyncForms) {
            QTest::addRow("%s, no answer yet", nameOf(form)) << form << QByteArray("/never");
            QTest::addRow("%s, in the middle of the answer", nameOf(form)) << form << QByteArray("/drip");
        }
    }
    void stoppedRequestIsCancelled()
    {
        QFETCH(Form, form);
        QFETCH(QByteArray, path);
        WatchedRequest watched;
        QElapsedTimer clock;
        clock.start();
        watched.start(form, url(path));
        QTRY_COMPARE(m_server->requests().size(), 1);
        QVERIFY(watched.stopAll());
        QVERIFY(clock.elapsed() < 9000); // not by the time limit
        QTRY_COMPARE(m_server->openConnections(), 0);
        QTest::qWait(50);
        QCOMPARE(watched.outcomes(), QList<Outcome> {cancelled});
    }

    void startDoesNotWait_data() { addForms(asyncForms); }
    void startDoesNotWait()
    {
        QFETCH(Form, form);
        WatchedRequest watched;
        watched.start(form, url("/never"));
        // No event was delivered so far, so the outcome is still to come.
        QVERIFY(watched.outcomes().isEmpty());
        QVERIFY(watched.stopAll());
        QCOMPARE(watched.outcomes(), QList<Outcome> {cancelled});
    }

    void stopBeforeTheRequestListensIsLost_data() { addForms(asyncForms); }
    void stopBeforeTheRequestListensIsLost()
    {
        QFETCH(Form, form);
        // The machine may hold this thread up until the other one listens, but not each time.
        Outcome outcome;
        for (int attempt = 0; attempt < 20 && outcome.data.isEmpty(); ++attempt) {
            WatchedRequest watched;
            watched.start(form, url("/bytes/1000?rate=4000"));
            Q_EMIT watched.request()->SignalStopRequest();
            QVERIFY(watched.waitForAll());
            outcome = watched.outcomes().value(0);
        }
        QCOMPARE(outcome, result(form, HttpServer::content(1000), 200));
    }

    void stopWithNoRequestRunningDoesNothing()
    {
        WatchedRequest watched;
        Q_EMIT watched.request()->SignalStopRequest();
        watched.start(Form::Get, url("/echo"));
        QVERIFY(watched.waitForAll());
        Q_EMIT watched.request()->SignalStopRequest();
        QTest::qWait(50);
        QCOMPARE(watched.outcomes(), QList<Outcome> {result(Form::Get, "/echo", 200)});
    }

    void oneStopReachesAllRequestsOfTheObject()
    {
        WatchedRequest watched;
        for (const Form form : asyncForms)
            watched.start(form, url("/never"));
        QTRY_COMPARE(m_server->requests().size(), asyncForms.size());
        QVERIFY(watched.stopAll());
        QCOMPARE(watched.outcomes(), QList<Outcome>({cancelled, cancelled, cancelled}));
    }

    void stopOfOneObjectLeavesTheOthersAlone()
    {
        WatchedRequest stopped;
        WatchedRequest other;
        stopped.start(Form::Get, url("/never"));
        other.start(Form::Get, url("/bytes/1000?rate=2000"));
        QVERIFY(stopped.stopAll());
        QVERIFY(other.waitForAll());
        QCOMPARE(other.outcomes(), QList<Outcome> {result(Form::Get, HttpServer::content(1000), 200)});
    }

    void signalOfTheHostStopsThroughTheObject()
    {
        WatchedRequest host;
        WatchedRequest watched;
        // Signal to signal: stopping the one object stops the other.
        QVERIFY(connect(host.request(), SIGNAL(SignalStopRequest()), watched.request(),
                        SIGNAL(SignalStopRequest())));
        watched.start(Form::PostAsync, url("/never"));
        QTRY_VERIFY(([&] {
            Q_EMIT host.request()->SignalStopRequest();
            return !watched.outcomes().isEmpty();
        }()));
        QCOMPARE(watched.outcomes(), QList<Outcome> {cancelled});
    }

    void synchronousFormsDoNotListen_data() { addForms(syncForms); }
    void synchronousFormsDoNotListen()
    {
        QFETCH(Form, form);
        CHttpPostRequest request;
        int stops = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, [&] {
            ++stops;
            Q_EMIT request.SignalStopRequest();
        });
        timer.start(20);
        QByteArray data;
        const QUrl slow = url("/bytes/1000?rate=2000");
        QVERIFY(form == Form::PostSync ? request.StartRequestSync(slow, {}, data)
                                       : request.StartGetRequestSync(slow, data));
        QVERIFY(stops > 1);
        QCOMPARE(data, HttpServer::content(1000));
    }

    void quittingEndsTheWait_data() { addForms(syncForms); }
    void quittingEndsTheWait()
    {
        QFETCH(Form, form);
        bool returned = false;
        QByteArray data = "before";
        QTimer::singleShot(0, this, [&] { returned = call(form, url("/never"), data); });
        QTimer::singleShot(100, QCoreApplication::instance(), &QCoreApplication::quit);
        QElapsedTimer clock;
        clock.start();
        QCoreApplication::exec();
        QVERIFY(clock.elapsed() < 9000); // not by the time limit
        QVERIFY(returned);
        QCOMPARE(data, QByteArray());
    }

    // Here a host has its last word.
    void quittingApplicationMayStillWait_data() { addForms(syncForms); }
    void quittingApplicationMayStillWait()
    {
        QFETCH(Form, form);
        QByteArray data;
        QObject guard;
        connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, &guard,
                [&] { call(form, url("/bytes/10"), data); });
        QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
        QCoreApplication::exec();
        QCOMPARE(data.size(), 10);
    }

    void synchronousFormsEmitNothing_data() { addForms(syncForms); }
    void synchronousFormsEmitNothing()
    {
        QFETCH(Form, form);
        WatchedRequest watched;
        QByteArray data;
        QVERIFY(form == Form::PostSync ? watched.request()->StartRequestSync(url("/echo"), {}, data)
                                       : watched.request()->StartGetRequestSync(url("/echo"), data));
        QTest::qWait(10);
        QVERIFY(watched.outcomes().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestHttpStop)

#include "tst_http_stop.moc"
