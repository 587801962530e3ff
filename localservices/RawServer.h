// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Listener.h"

#include <QList>
#include <QUrl>

namespace LocalServices {

/**
 * Reads one request a connection and has a function answer it byte by byte, as badly as wanted:
 *
 * @code
 * RawServer server([](Connection &client) {
 *     client.write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf");
 *     client.reset();
 * });
 * @endcode
 *
 * The function is called in a thread of each connection; the connection is closed when it returns.
 */
class RawServer
{
public:
    using Answer = std::function<void(Connection &)>;

    /** Answers each request with status 200 and just this body. */
    static Answer answerWith(const QByteArray &body);

    explicit RawServer(Answer answer, const Certificate &certificate = {});

    QUrl url(const QString &pathAndQuery = QStringLiteral("/")) const;

    /** The requests so far, each as it stood on the wire. Any thread. */
    QList<QByteArray> requests() const;

    /** The number of open connections. Any thread. */
    int openConnections() { return m_listener.openConnections(); }

private:
    Q_DISABLE_COPY(RawServer)

    mutable std::mutex m_mutex;
    QList<QByteArray> m_requests;
    const QString m_scheme;
    Listener m_listener; ///< goes first: its threads use the rest
};

} // namespace LocalServices
