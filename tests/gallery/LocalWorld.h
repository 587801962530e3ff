// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <localservices/GaCollector.h>
#include <localservices/HttpServer.h>
#include <localservices/Proxy.h>
#include <localservices/RawServer.h>
#include <localservices/StatisticsBackend.h>

#include <QTemporaryDir>

/**
 * The running local services as a host meets them: LOCAL_SERVICES names their file. All names that the
 * gallery asks for lead here.
 */
class LocalWorld
{
public:
    LocalWorld();
    ~LocalWorld();

    /** From now on the services for the location take requests and don't answer; or they are as before. */
    void setSilent(bool isSilent);

    /** Leads @p host elsewhere than to server(). */
    void route(const char *host, const QUrl &url) { m_proxy.route(QLatin1String(host), url); }

    LocalServices::HttpServer &server() { return m_server; }
    QList<LocalServices::GaCollector::Event> events() const { return m_collector.events(); }
    QList<LocalServices::StatisticsBackend::Record> records() const { return m_backend.records(); }

private:
    Q_DISABLE_COPY(LocalWorld)
    void describe(const QString &path);

    QTemporaryDir m_directory;
    LocalServices::Authority m_authority;
    LocalServices::GaCollector m_collector;
    LocalServices::StatisticsBackend m_backend;
    LocalServices::HttpServer m_server;
    LocalServices::Proxy m_proxy;
    std::unique_ptr<LocalServices::RawServer> m_silence;
};
