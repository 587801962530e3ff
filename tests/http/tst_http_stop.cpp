// SPDX-License-Identifier: LGPL-2.1-or-later

#include "StopTest.h"

#include "Waiting.h"

#include <localservices/HttpServer.h>

#include <QTimer>

using LocalServices::HttpServer;

namespace {

QStringList namesOf(const QList<Form> &forms)
{
    QStringList names;
    for (const Form form : forms)
        names << QString::fromLatin1(nameOf(form));
    return names;
}

Form formOf(const QString &name)
{
    return allForms.at(namesOf(allForms).indexOf(name));
}

} // namespace

// CHttpPostRequest::SignalStopRequest().
class TestHttpStop : public StopTest
{
    Q_OBJECT

private:
    QStringList asyncCalls() const override { return namesOf(asyncForms); }
    QStringList syncCalls() const override { return namesOf(syncForms); }
    bool hasSyncData() const override { return true; }
    void setServer(const QUrl &url) override { m_url = url; }
    std::unique_ptr<OutcomeWatcher> createWatcher() override { return std::make_unique<WatchedRequest>(); }
    void start(OutcomeWatcher &watcher, const QString &call) override
    {
        static_cast<WatchedRequest &>(watcher).start(formOf(call), m_url);
    }
    bool send(OutcomeWatcher &watcher, const QString &call, QByteArray &data) override
    {
        return ::call(formOf(call), static_cast<WatchedRequest &>(watcher).request(), m_url, data);
    }
    Outcome resultOf(const QString &call, const QByteArray &data) const override
    {
        return result(formOf(call), data, 200);
    }
    QUrl url(const char *path) const { return m_server.url(QString::fromLatin1(path)); }

    HttpServer m_server;
    QUrl m_url;

private Q_SLOTS:
    void keepsRequestsOfOtherObjects()
    {
        WatchedRequest stopped;
        WatchedRequest other;
        stopped.start(Form::Get, url("/never"));
        other.start(Form::Get, url("/bytes/1000?rate=2000"));
        QVERIFY(stopped.stopAll());
        QVERIFY(other.waitForAll());
        QCOMPARE(other.outcomes(), QList<Outcome> {result(Form::Get, HttpServer::content(1000), 200)});
    }

    void stopsBySignalOfAnotherObject()
    {
        WatchedRequest other;
        WatchedRequest watched;
        QVERIFY(connect(other.request(), SIGNAL(SignalStopRequest()), watched.request(),
                        SIGNAL(SignalStopRequest())));
        watched.start(Form::PostAsync, url("/never"));
        QTRY_VERIFY_WITH_TIMEOUT(([&] {
                                     Q_EMIT other.request()->SignalStopRequest();
                                     return !watched.outcomes().isEmpty();
                                 }()),
                                 longestWaitMs);
        QCOMPARE(watched.outcomes(), QList<Outcome> {cancelled});
    }

    // Applications send their last event here.
    void waitsDuringAboutToQuit_data() { addForms(syncForms); }
    void waitsDuringAboutToQuit()
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
};

QTEST_GUILESS_MAIN(TestHttpStop)

#include "tst_http_stop.moc"
