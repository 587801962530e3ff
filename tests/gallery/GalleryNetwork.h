// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <localservices/FakeNetwork.h>

#include <QTemporaryDir>

/** The network of the gallery. LOCAL_SERVICES is the path of its description until it is destroyed. */
class GalleryNetwork
{
public:
    GalleryNetwork();
    ~GalleryNetwork();

    /** Stops the answers of the geolocation services, or resumes them. */
    void setSilent(bool isSilent);

    /** Routes @p host to another server than server(). */
    void route(const char *host, const QUrl &url) { m_network.route(host, url); }

    LocalServices::HttpServer &server() { return m_server; }
    QList<LocalServices::GaCollector::Event> events() const { return m_network.collector().events(); }
    QList<LocalServices::StatisticsBackend::Record> records() const
    {
        return m_network.statistics().records();
    }

private:
    Q_DISABLE_COPY(GalleryNetwork)

    const QTemporaryDir m_directory;
    LocalServices::HttpServer m_server;
    LocalServices::FakeNetwork m_network;
};
