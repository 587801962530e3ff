// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ArrivalFeed.h"

#include <localservices/FakeNetwork.h>

/** Local servers for everything that the library connects to. What applications send is added to the feed. */
class LocalServers
{
public:
    explicit LocalServers(ArrivalFeed &feed);

    /**
     * Writes authority.pem and services.json. The downloads in services.json are "files/notes.txt",
     * "files/version.json", "files/picture.svg", and the paths of LocalServices::HttpServer, for example
     * "bytes/1000000/large.bin?rate=200000".
     *
     * @return false if a file cannot be written
     */
    bool writeDescription(const QString &directory, const QUrl &page) const;

    QUrl proxyUrl() const { return m_network.proxyUrl(); }

    /** Waits until no connection is open, for two seconds at most. */
    void settle();

private:
    Q_DISABLE_COPY(LocalServers)

    const LocalServices::HttpServer m_downloads;
    LocalServices::FakeNetwork m_network;
};
