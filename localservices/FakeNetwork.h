// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "GaCollector.h"
#include "Proxy.h"
#include "PublicServices.h"
#include "RawServer.h"
#include "StatisticsBackend.h"

namespace LocalServices {

/**
 * Local servers in the place of those that the library connects to, and a proxy that routes their host
 * names to them. install() makes this process use them; writeDescription() is for other processes.
 *
 * @code
 * FakeNetwork network;
 * network.install();
 * sendEvent();
 * QCOMPARE(network.collector().events().size(), 1);
 * @endcode
 *
 * At first only the collector's host name has a route. A request to a host without a route is answered
 * with status 502.
 */
class FakeNetwork
{
public:
    /** The host name of the Measurement Protocol. */
    static constexpr const char *collectorHost = "www.google-analytics.com";

    explicit FakeNetwork(GaCollector::Watcher eventWatcher = {},
                         StatisticsBackend::Watcher recordWatcher = {});

    /** Restores what install() and installProxy() changed, and closes all connections. */
    ~FakeNetwork();

    /** Makes this process use the proxy, and trust authority() and no other. */
    void install();

    /** Makes this process use the proxy; its certificates are not trusted. */
    void installProxy();

    void route(const char *host, const QUrl &url) { m_proxy.route(QLatin1String(host), url); }

    /** Routes @p host to a new server that answers each request with @p answer. */
    void route(const char *host, const RawServer::Answer &answer);

    /** Routes every host that has no route of its own. */
    void routeAll(const QUrl &url) { m_proxy.routeAll(url); }

    /** Routes the hosts that report the public address, the country and the location. */
    void routePublicServices();

    /** Holds later requests to the proxy back while the returned lock exists. */
    std::unique_lock<std::mutex> pause() { return m_proxy.pause(); }

    const Authority &authority() const { return m_authority; }
    const GaCollector &collector() const { return m_collector; }
    const StatisticsBackend &statistics() const { return m_statistics; }
    QUrl proxyUrl() const;

    /** The requests, as received, to the server that the last route() to an answer created. */
    QList<QByteArray> requests(const char *host) const;

    /** The first lines of all requests to the proxy, such as "CONNECT host:443 HTTP/1.1". */
    QStringList requestLines() const { return m_proxy.requestLines(); }

    /** The number of open connections to the proxy, the collector and the statistics backend. */
    int openConnections();

    /** The addresses in a description that are not the network's own. */
    struct Addresses
    {
        QUrl downloads;
        QUrl page;
        QUrl statistics; ///< statistics().url() if empty
    };

    /**
     * Writes authority.pem and then services.json, each completely or not at all. LOCAL_SERVICES, set to
     * the returned path, makes programs that call useDevelopmentServices() use this network.
     *
     * @return the path of services.json, or a null string if a file cannot be written
     */
    QString writeDescription(const QString &directory, const Addresses &addresses = {}) const;

private:
    Q_DISABLE_COPY(FakeNetwork)
    class Installation;

    const Authority m_authority;
    const GaCollector m_collector;
    const StatisticsBackend m_statistics;
    std::unique_ptr<PublicServices> m_publicServices;
    QMap<QByteArray, std::shared_ptr<RawServer>> m_servers;
    Proxy m_proxy; ///< destroyed before the servers that it routes to
    std::unique_ptr<Installation> m_installation;
};

} // namespace LocalServices
