// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>

#include <memory>

struct ssl_ctx_st;
struct ssl_st;

namespace LocalServices {

/**
 * One client's connection, plain or under TLS, for the thread that serves it. Every call that waits
 * returns at once, as failed, when the client goes away or the server stops.
 */
class Connection
{
public:
    /** Takes over the socket. A null @p tls is for plain connections. */
    Connection(int socket, ssl_ctx_st *tls);
    ~Connection();

    /** The TLS handshake; true at once on a plain connection. */
    bool accept();

    /** Goes on under TLS: the handshake of a plain connection that isn't to stay one. */
    bool acceptTls(ssl_ctx_st *tls);

    /** @return the number of bytes read, at most @p size; 0 at the end, -1 for a failure */
    qint64 read(char *data, qint64 size);

    /** Writes all of it. */
    bool write(const char *data, qint64 size);
    bool write(const QByteArray &data) { return write(data.constData(), data.size()); }

    /** One request with head and body (by Content-Length) as it came; empty when none did. */
    QByteArray readRequest();

    /** @return false when the client went away meanwhile */
    bool sleep(int milliseconds);

    /** Answers nothing until the client goes away. */
    void waitForClose();

    /** True when read() gives bytes that have already come, which the socket doesn't show. */
    bool hasPending() const;

    /** Closes our direction only. */
    void closeSending();

    /** Has the connection end with a reset instead of in good order, once the serving function returns. */
    void reset();

    int socket() const { return m_socket; }

private:
    Q_DISABLE_COPY(Connection)

    struct FreeTls
    {
        void operator()(ssl_st *tls) const;
    };

    int m_socket;
    std::unique_ptr<ssl_st, FreeTls> m_tls;
    bool m_isReset = false;
};

} // namespace LocalServices
