// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Requests.h"

#include <ZyBase/analytics/CGoogleAnalytics.h>
#include <localservices/GaCollector.h>
#include <localservices/Proxy.h>
#include <localservices/RawServer.h>

#include <QChildEvent>
#include <QNetworkProxy>
#include <QSslConfiguration>
#include <QThread>

/**
 * While it lives, every host name leads this process to the local collector for events, and its
 * certificates hold.
 */
class Collectors
{
public:
    Collectors();
    ~Collectors();

    /** Leads all host names to another server. */
    void routeTo(const QUrl &url) { m_proxy.routeAll(url); }

    LocalServices::GaCollector &ga() { return m_ga; }
    const LocalServices::Authority &authority() const { return m_authority; }
    QStringList requestLines() const { return m_proxy.requestLines(); }
    int openConnections() { return m_proxy.openConnections(); }

    /** Has this process trust the authority and no other. */
    static void trust(const LocalServices::Authority &authority);

    /** Sends what this process asks for through the proxy. */
    static void use(const LocalServices::Proxy &proxy);

private:
    Q_DISABLE_COPY(Collectors)

    const QSslConfiguration m_previousConfiguration;
    const QNetworkProxy m_previousProxy;
    LocalServices::Authority m_authority;
    LocalServices::GaCollector m_ga;
    LocalServices::Proxy m_proxy;
};

/** An answer of the GA service as it stands on the wire. */
class RawAnswer : public LocalServices::RawServer
{
public:
    explicit RawAnswer(const QByteArray &answer)
        : RawServer([answer](LocalServices::Connection &client) { client.write(answer); })
    {
    }
};

/** A service that takes requests and never answers. */
class SilentServer : public LocalServices::RawServer
{
public:
    SilentServer()
        : RawServer([](LocalServices::Connection &client) { client.waitForClose(); })
    {
    }
};

/** The address of a port on which nobody listens. */
QUrl deadUrl();

/** The six arguments of a request. */
struct Event
{
    QString clientId = QStringLiteral("client");
    QString measurementId = QStringLiteral("G-1");
    QString apiSecret = QStringLiteral("secret");
    QString name = QStringLiteral("open");
    QString category = QStringLiteral("file");
    QString label = QStringLiteral("pdf");
};

bool sendSync(CGoogleAnalytics &analytics, const Event &event = Event());
void sendAsync(CGoogleAnalytics &analytics, const Event &event = Event());

/** A request object whose outcomes are collected in the thread that made it. */
class WatchedEvent : public QObject
{
public:
    WatchedEvent();

    /** Stops what still runs and waits for it. */
    ~WatchedEvent() override;

    CGoogleAnalytics &analytics() { return *m_analytics; }
    void start(const Event &event = Event());
    QList<Outcome> outcomes() const { return m_outcomes; }

    /** Waits until every request that was started has had an outcome. */
    bool waitForAll();

    /** Emits the stop signal until every request has had an outcome. */
    bool stopAll();

private:
    bool areAllOver() const { return m_outcomes.size() >= m_started; }

    std::unique_ptr<CGoogleAnalytics> m_analytics;
    QList<Outcome> m_outcomes;
    int m_started = 0;
};

/** A reporter that sees its requests come and go as its children. */
template <class Reporter> class WatchedReporter : public Reporter
{
public:
    /** Stops what still runs and waits for it: it must not outlive its reporter. */
    ~WatchedReporter() override
    {
        if (!waitForAll([this] { this->StopReport(); }))
            qWarning("A request is left behind");
    }

    /** Waits until no request is left, and calls @p meanwhile again and again. */
    template <class Call> bool waitForAll(Call meanwhile)
    {
        return QTest::qWaitFor(
            [&] {
                meanwhile();
                return running() == 0;
            },
            20000);
    }
    bool waitForAll()
    {
        return waitForAll([] {});
    }

    int running() const { return this->children().size(); }
    int started() const { return m_started; }

    /** Whether all of the requests that are gone went in the thread of the reporter. */
    bool areRemovedInItsThread() const { return m_areRemovedInItsThread; }

protected:
    void childEvent(QChildEvent *event) override
    {
        if (event->added())
            ++m_started;
        if (event->removed())
            m_areRemovedInItsThread = m_areRemovedInItsThread && QThread::currentThread() == this->thread();
    }

private:
    int m_started = 0;
    bool m_areRemovedInItsThread = true;
};

/** The own fields of an object, as they lie in it behind those of QObject. */
template <class Object> const QString *textFieldsOf(const Object &object)
{
    return reinterpret_cast<const QString *>(reinterpret_cast<const char *>(&object) + sizeof(QObject));
}

inline bool isEmptyNotNull(const QString &text)
{
    return text.isEmpty() && !text.isNull();
}

/** The signatures of the signals and slots that a class adds, in their order. */
QStringList ownMethods(const QMetaObject &meta);
