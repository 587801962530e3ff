// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "HttpServer.h"

#include <QJsonObject>
#include <QStringList>

#include <functional>
#include <mutex>

namespace LocalServices {

/**
 * A backend for statistics records. It answers a POST to "/report" with status 200 if signature, time stamp
 * and body are valid, and with 403 otherwise. It has its own implementation of the rules and uses no code of
 * the library.
 */
class StatisticsBackend
{
public:
    struct Record
    {
        HttpServer::Request request;
        QByteArray signature; ///< as received in the query
        qint64 timestamp; ///< as received in the query; 0 if missing
        QJsonObject body;
        QStringList problems; ///< why it was rejected; empty for an accepted record
    };

    /** Called for each record before the response is sent, in the thread of the connection. */
    using Watcher = std::function<void(const Record &)>;

    /** Starts the backend, with TLS if a certificate is passed. */
    explicit StatisticsBackend(const QByteArray &secret, const Certificate &certificate = {},
                               Watcher watcher = {});

    QUrl url() const { return m_server.url(QStringLiteral("/report")); }

    /** Returns the records so far, accepted and rejected. Thread-safe. */
    QList<Record> records() const;

    /** Returns the number of open connections. Thread-safe. */
    int openConnections() const { return m_server.openConnections(); }

private:
    Q_DISABLE_COPY(StatisticsBackend)

    HttpServer::Response receive(const HttpServer::Request &request);

    const QByteArray m_secret;
    const Watcher m_watcher;
    mutable std::mutex m_mutex;
    QList<Record> m_records; ///< guarded by m_mutex
    HttpServer m_server; ///< last, so that its threads end before the other members are destroyed
};

} // namespace LocalServices
