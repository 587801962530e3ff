// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "HttpServer.h"

#include <QJsonObject>
#include <QStringList>

#include <functional>
#include <mutex>

namespace LocalServices {

/**
 * Stands in for the collector of the Measurement Protocol of Google Analytics 4: answers a POST to
 * "/mp/collect" by 204 whatever it holds, as the real one does, and judges it by the rules of the real
 * one's validation server. To be reached under the real host's name through a Proxy.
 */
class GaCollector
{
public:
    struct Event
    {
        HttpServer::Request request;
        QJsonObject body;
        QStringList problems; ///< what the validation finds; empty for a good event
    };

    /** Is told of each event before its answer goes out, in a thread of the event's connection. */
    using Watcher = std::function<void(const Event &)>;

    explicit GaCollector(Watcher watcher = {});

    QUrl url() const { return m_server.url(QStringLiteral("/mp/collect")); }

    /** The events so far. Any thread. */
    QList<Event> events() const;

    /** How many connections are open. Any thread. */
    int openConnections() const { return m_server.openConnections(); }

private:
    Q_DISABLE_COPY(GaCollector)

    HttpServer::Response collect(const HttpServer::Request &request);

    const Watcher m_watcher;
    mutable std::mutex m_mutex;
    QList<Event> m_events; ///< under m_mutex
    HttpServer m_server; ///< goes first: its threads use the rest
};

} // namespace LocalServices
