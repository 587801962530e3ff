// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Listener.h"

#include <QList>
#include <QUrl>

namespace LocalServices {

/**
 * Reads one request per connection and calls a function that writes the answer byte by byte, valid HTTP
 * or not:
 *
 * @code
 * RawServer server([](Connection &client) {
 *     client.write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf");
 *     client.reset();
 * });
 * @endcode
 *
 * The function is called in the thread of the connection. The connection is closed when it returns.
 */
class RawServer
{
public:
    using Answer = std::function<void(Connection &)>;

    /** Returns a function that answers with status 200 and this body. */
    static Answer answerWith(const QByteArray &body);

    explicit RawServer(Answer answer, const Certificate &certificate = {});

    QUrl url(const QString &pathAndQuery = QStringLiteral("/")) const;

    /** Returns the requests so far, as received. Thread-safe. */
    QList<QByteArray> requests() const;

    /** Returns the number of open connections. Thread-safe. */
    int openConnections() { return m_listener.openConnections(); }

private:
    Q_DISABLE_COPY(RawServer)

    mutable std::mutex m_mutex;
    QList<QByteArray> m_requests;
    const QString m_scheme;
    Listener m_listener; ///< last, so that its threads end before the other members are destroyed
};

} // namespace LocalServices
