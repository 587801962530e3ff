// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ArrivalFeed.h"

#include <localservices/Http.h>
#include <localservices/Listener.h>

#include <QUrl>

#include <atomic>

/** How applications and curl reach the services. */
struct PageAddresses
{
    QString services; ///< the path of services.json
    QString authority; ///< the path of the certificate of the authority
    QString proxy; ///< the URL of the proxy
};

/**
 * The web server on 127.0.0.1 for the page that shows what arrives:
 *
 * | Request                   | Response                                                             |
 * |---------------------------|----------------------------------------------------------------------|
 * | GET /                     | the page, with its style and script                                  |
 * | GET /arrivals?QUERY       | arrivals as a JSON array, the newest last                            |
 * | GET /feed?QUERY           | server-sent events without end: the same arrivals, and later ones    |
 * | DELETE /arrivals          | removes all arrivals                                                 |
 *
 * QUERY has any of "after", "before", "limit", "kind" and "text", the members of ArrivalQuery. The header
 * "Last-Event-ID" replaces "after" of a feed.
 *
 * Other sites cannot use the server through a browser. The browser does not let them read a response or
 * send DELETE. A site whose own name resolves to 127.0.0.1 is rejected because of its "Host" header.
 */
class PageServer
{
public:
    /** The maximum number of open feeds; further ones are rejected with status 503. */
    static constexpr int maximumReaders = 16;

    /**
     * Starts the server.
     *
     * @param port a port number; 0 uses any free port
     * @param addresses what the page shows of the other services
     */
    PageServer(ArrivalFeed &feed, quint16 port, const PageAddresses &addresses);

    /** Stops the feed and ends all connections at once. */
    ~PageServer();

    /** Returns false if the port is in use. */
    bool isListening() const { return m_listener.isListening(); }

    QUrl url() const;

private:
    Q_DISABLE_COPY(PageServer)

    void handle(LocalServices::Connection &connection);
    LocalServices::HttpResponse respond(const LocalServices::HttpRequest &request);
    void sendFeed(LocalServices::Connection &connection, const LocalServices::HttpRequest &request);
    bool isOwnHost(const QByteArray &host) const;

    ArrivalFeed &m_feed;
    const QByteArray m_page;
    const LocalServices::HttpHeaders m_headers; ///< of every response
    std::atomic<int> m_readers {0};
    LocalServices::Listener
        m_listener; ///< last, so that its threads end before the other members are destroyed
};
