// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ArrivalFeed.h"

#include <localservices/Proxy.h>
#include <localservices/PublicServices.h>

/** The whole of the world that the library talks to, on 127.0.0.1. What hosts send goes to the feed. */
class StandIns
{
public:
    explicit StandIns(ArrivalFeed &feed);

    QUrl proxy() const;

    /** For CGaReportManager::InitXdData. */
    QUrl statistics() const { return m_backend.url(); }

    /**
     * The address below which files lie: "files/notes.txt", "files/version.json", "files/picture.svg", and
     * the paths of LocalServices::HttpServer, such as "bytes/1000000/large.bin?rate=200000".
     */
    QUrl downloads() const { return m_downloads.url(QStringLiteral("/")); }

    /** What a host has to trust, as PEM. */
    QByteArray authority() const { return m_authority.certificate(); }

    /** Waits, for a moment, until what is under way has arrived. */
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
