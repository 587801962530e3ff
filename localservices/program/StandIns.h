// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ArrivalFeed.h"

#include <localservices/Proxy.h>
#include <localservices/PublicServices.h>

/** Local servers for everything that the library connects to. What applications send is added to the feed. */
class StandIns
{
public:
    explicit StandIns(ArrivalFeed &feed);

    /** The address of the proxy that routes the fixed host names to the local servers. */
    QUrl proxy() const;

    /** The address for CGaReportManager::InitXdData(). */
    QUrl statistics() const { return m_backend.url(); }

    /**
     * The base address of the downloads: "files/notes.txt", "files/version.json", "files/picture.svg", and
     * the paths of LocalServices::HttpServer, for example "bytes/1000000/large.bin?rate=200000".
     */
    QUrl downloads() const { return m_downloads.url(QStringLiteral("/")); }

    /** The certificate authority that an application must trust, as PEM. */
    QByteArray authority() const { return m_authority.certificate(); }

    /** Waits until no connection is open, for two seconds at most. */
    void settle();

private:
    Q_DISABLE_COPY(StandIns)

    bool isQuiet();

    const LocalServices::Authority m_authority;
    const LocalServices::PublicServices m_publicServices;
    const LocalServices::HttpServer m_downloads;
    const LocalServices::GaCollector m_collector;
    const LocalServices::StatisticsBackend m_backend;
    LocalServices::Proxy m_proxy;
};
