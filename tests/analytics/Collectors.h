// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Requests.h"

#include <ZyBase/analytics/CGoogleAnalytics.h>
#include <localservices/GaCollector.h>
#include <localservices/Proxy.h>
#include <localservices/RawServer.h>

#include <QNetworkProxy>
#include <QSslConfiguration>

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
    void leadTo(const QUrl &url) { m_proxy.leadAll(url); }

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
