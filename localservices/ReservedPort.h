// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QUrl>

#include <memory>

class QTcpSocket;

namespace LocalServices {

/**
 * A port of 127.0.0.1 that is given to nobody else while the object exists.
 *
 * No server listens on it, so connections are refused. A server that is started with this port number can use
 * it, if it sets SO_REUSEADDR, as nearly all servers do.
 */
class ReservedPort
{
public:
    ReservedPort();
    ~ReservedPort();

    quint16 number() const;

    /** Returns the root of an HTTP server on this port. */
    QUrl url() const;

private:
    Q_DISABLE_COPY(ReservedPort)

    std::unique_ptr<QTcpSocket> m_socket;
};

} // namespace LocalServices
