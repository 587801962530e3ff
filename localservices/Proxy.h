// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Listener.h"

#include <QMap>
#include <QStringList>
#include <QUrl>

namespace LocalServices {

/**
 * An HTTP proxy that routes any host name to a local server. It connects code that uses a fixed host name
 * to a local service:
 *
 * @code
 * const Authority authority;       // add it to the default SSL configuration
 * const HttpServer server;
 * Proxy proxy(authority);
 * proxy.route("service.example.org", server.url("/"));
 * QNetworkProxy::setApplicationProxy({QNetworkProxy::HttpProxy, "127.0.0.1", proxy.port()});
 * @endcode
 *
 * The proxy accepts requests in absolute form ("GET http://host/path") and CONNECT. After CONNECT, the proxy
 * is the TLS server, with a certificate for the requested name. The local server always receives plain HTTP,
 * one request per connection, with the requested name in the "Host" header.
 *
 * Connections to loopback addresses are passed on unchanged. A name without a route is answered with
 * status 502.
 */
class Proxy
{
public:
    using Issue = std::function<Certificate(const QString &host)>;

    /** Uses certificates issued by the authority, which must outlive the proxy. */
    explicit Proxy(const Authority &authority);

    /** Uses the certificates that @p issue returns. It is called in the threads of the connections. */
    explicit Proxy(Issue issue);

    quint16 port() const { return m_listener.port(); }

    /** Routes @p host to the port of @p server, a plain HTTP server on loopback. */
    void route(const QString &host, const QUrl &server);

    /** Routes all other names to the port of @p server. */
    void routeAll(const QUrl &server) { route(QString(), server); }

    /** Holds later requests back while the returned lock exists. Thread-safe. */
    std::unique_lock<std::mutex> pause() { return std::unique_lock<std::mutex>(m_pause); }

    /** Returns the first lines of the requests so far, such as "CONNECT host:443 HTTP/1.1". Thread-safe. */
    QStringList requestLines() const;

    /** Returns the number of open connections. Thread-safe. */
    int openConnections() const { return m_listener.openConnections(); }

private:
    Q_DISABLE_COPY(Proxy)

    void handle(Connection &client);
    bool startTunnel(Connection &client, const QUrl &target) const;
    int portFor(const QUrl &target) const;

    const Issue m_issue;
    std::mutex m_pause; ///< locked by pause(), and for a moment before each request is passed on
    mutable std::mutex m_mutex;
    QMap<QString, int> m_ports; ///< guarded by m_mutex
    QStringList m_requestLines; ///< guarded by m_mutex
    Listener m_listener; ///< last, so that its threads end before the other members are destroyed
};

} // namespace LocalServices
