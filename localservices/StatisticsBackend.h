// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "HttpServer.h"

#include <QJsonObject>
#include <QStringList>

#include <functional>
#include <mutex>

namespace LocalServices {

/**
 * A backend for statistics records: takes a POST to "/report" whose signature, time stamp and form are
 * right by 200, and refuses any other by 403. It knows the shared secret and the rules, and none of
 * the library's code.
 */
class StatisticsBackend
{
public:
    struct Record
    {
        HttpServer::Request request;
        QByteArray signature; ///< as it stood in the query
        qint64 timestamp; ///< as it stood in the query; 0 for none
        QJsonObject body;
        QStringList problems; ///< why it is refused; empty for one that was taken
    };

    /** Is told of each record before its answer goes out, in a thread of the record's connection. */
    using Watcher = std::function<void(const Record &)>;

    /** Under TLS where a certificate is given. */
    explicit StatisticsBackend(const QByteArray &secret, const Certificate &certificate = {},
                               Watcher watcher = {});

    QUrl url() const { return m_server.url(QStringLiteral("/report")); }

    /** The records so far, those that were refused too. Any thread. */
    QList<Record> records() const;

    /** How many connections are open. Any thread. */
    int openConnections() const { return m_server.openConnections(); }

private:
    Q_DISABLE_COPY(StatisticsBackend)

    HttpServer::Response receive(const HttpServer::Request &request);

    const QByteArray m_secret;
    const Watcher m_watcher;
    mutable std::mutex m_mutex;
    QList<Record> m_records; ///< under m_mutex
    HttpServer m_server; ///< goes first: its threads use the rest
};

} // namespace LocalServices
