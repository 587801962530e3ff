// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Listener.h"

#include <QMap>
#include <QStringList>
#include <QUrl>

namespace LocalServices {

/**
 * An HTTP proxy that leads any host name to a local stand-in, so that code which asks a fixed host in
 * the world reaches one of ours instead:
 *
 * @code
 * const Authority authority;       // which the default SSL configuration is told to trust
 * const HttpServer server;
 * Proxy proxy(authority);
 * proxy.route("service.example.org", server.url("/"));
 * QNetworkProxy::setApplicationProxy({QNetworkProxy::HttpProxy, "127.0.0.1", proxy.port()});
 * @endcode
 *
 * It knows requests in absolute form ("GET http://host/path") and CONNECT. Under CONNECT it is itself
 * the TLS server, with a certificate for the asked name; what a stand-in gets is plain HTTP in either
 * case, one request a connection, and its "Host" header has the asked name. Loopback addresses are
 * led to themselves, and their TLS is left alone. A name that leads nowhere is answered by status 502.
 */
class Proxy
{
public:
    using Issue = std::function<Certificate(const QString &host)>;

    /** With good certificates of the authority, which must outlive the proxy. */
    explicit Proxy(const Authority &authority);

    /** With those that @p issue gives for the asked host; it is called in threads of the connections. */
    explicit Proxy(Issue issue);

    quint16 port() const { return m_listener.port(); }

    /** Leads @p host to the server of @p standIn, a plain HTTP URL of which the rest is ignored. */
    void route(const QString &host, const QUrl &standIn);

    /** Leads there all names that weren't led elsewhere. */
    void routeAll(const QUrl &standIn) { route(QString(), standIn); }

    /** The first lines of the requests so far, such as "CONNECT host:443 HTTP/1.1". Any thread. */
    QStringList requestLines() const;

    /** How many connections are open. Any thread. */
    int openConnections() { return m_listener.openConnections(); }

private:
    Q_DISABLE_COPY(Proxy)

    void serve(Connection &client);
    void tunnel(Connection &client, const QUrl &target);
    void forward(Connection &client, const QByteArray &request, const QUrl &target);
    int portFor(const QUrl &target) const;

    const Issue m_issue;
    mutable std::mutex m_mutex;
    QMap<QString, int> m_ports; ///< under m_mutex
    QStringList m_requestLines; ///< under m_mutex
    Listener m_listener; ///< goes first: its threads use the rest
};

} // namespace LocalServices
