// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "OutputCapture.h"
#include "Requests.h"
#include "Servers.h"

#include <ZyBase/analytics/CGoogleAnalytics.h>
#include <localservices/FakeNetwork.h>
#include <localservices/ReservedPort.h>

#include <QChildEvent>
#include <QThread>

/**
 * Base of the tests of analytics. Each function has its own network and fails if the process writes a
 * message.
 */
class AnalyticsTest : public QObject
{
    Q_OBJECT

protected:
    using Authority = LocalServices::Authority;
    using Connection = LocalServices::Connection;
    using FakeNetwork = LocalServices::FakeNetwork;
    using GaCollector = LocalServices::GaCollector;
    using HttpServer = LocalServices::HttpServer;
    using Record = LocalServices::StatisticsBackend::Record;

    /** Returns true if the requests of this process use the proxy of the network. */
    virtual bool usesProxy() const { return true; }

    FakeNetwork &network() { return *m_network; }

    /** Routes events to this server instead of the collector. */
    void routeEvents(const QUrl &url) { m_network->route(FakeNetwork::collectorHost, url); }

    /**
     * Calls @p start, which starts background events, and keeps them from ending before it returns: CGaReport
     * never deletes an event that ends earlier.
     */
    template <class Start> void startEvents(Start start)
    {
        const std::unique_lock<std::mutex> pause = network().pause();
        start();
    }

    /** Makes this process use a proxy on this port of 127.0.0.1. */
    static void useProxy(int port);

    /** Adds the columns "value" and "json": strings and their representation in the body of a request. */
    static void addEscapedStrings();

protected Q_SLOTS:
    void init();
    void cleanup();

private:
    std::unique_ptr<OutputCapture> m_output;
    std::unique_ptr<FakeNetwork> m_network;
};

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

/** A CGoogleAnalytics object and its outcomes. */
class WatchedEvent : public OutcomeWatcher
{
public:
    WatchedEvent();

    /** Stops the requests and retires the request object. */
    ~WatchedEvent() override;

    CGoogleAnalytics &analytics() { return *m_analytics; }
    void start(const Event &event = Event());
    void emitStop() override { Q_EMIT m_analytics->SignalStopRequest(); }

private:
    std::unique_ptr<CGoogleAnalytics> m_analytics;
};

/** Returns the fields of an object, which follow those of QObject. */
template <class Object> const QString *stringFieldsOf(const Object &object)
{
    return reinterpret_cast<const QString *>(reinterpret_cast<const char *>(&object) + sizeof(QObject));
}

inline bool isEmptyNotNull(const QString &string)
{
    return string.isEmpty() && !string.isNull();
}

/** Returns the signatures of the signals and slots that a class declares, in their order. */
QStringList ownMethods(const QMetaObject &meta);
