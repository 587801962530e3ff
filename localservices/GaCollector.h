// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "HttpServer.h"

#include <QJsonObject>
#include <QStringList>

#include <functional>
#include <mutex>

namespace LocalServices {

/**
 * A local collector for the Measurement Protocol of Google Analytics 4. Like the real one, it answers every
 * request to "/mp/collect" with status 204. It records the events and validates them by the rules of the
 * real validation server. Use a Proxy to reach it under the real host name.
 */
class GaCollector
{
public:
    struct Event
    {
        HttpServer::Request request;
        QJsonObject body;
        QStringList problems; ///< found by the validation; empty for a valid event
    };

    /** Called for each event before the response is sent, in the thread of the connection. */
    using Watcher = std::function<void(const Event &)>;

    explicit GaCollector(Watcher watcher = {});

    QUrl url() const { return m_server.url(QStringLiteral("/mp/collect")); }

    /** Returns the events so far. Thread-safe. */
    QList<Event> events() const;

    /** Returns the number of open connections. Thread-safe. */
    int openConnections() const { return m_server.openConnections(); }

private:
    Q_DISABLE_COPY(GaCollector)

    HttpServer::Response collect(const HttpServer::Request &request);

    const Watcher m_watcher;
    mutable std::mutex m_mutex;
    QList<Event> m_events; ///< guarded by m_mutex
    HttpServer m_server; ///< last, so that its threads end before the other members are destroyed
};

} // namespace LocalServices
