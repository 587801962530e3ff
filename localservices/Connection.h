// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>

#include <memory>

struct ssl_ctx_st;
struct ssl_st;

namespace LocalServices {

/** Connects to a port of the loopback interface. Returns the socket, or -1 after a failure. */
int connectToLoopback(int port);

/**
 * One TCP connection, plain or with TLS, for use in one thread. Calls that block fail at once if the client
 * closes the connection or the server stops.
 */
class Connection
{
public:
    /** Takes ownership of the socket. The connection uses TLS if @p tls is not null. */
    Connection(int socket, ssl_ctx_st *tls);
    ~Connection();

    /** Performs the TLS handshake. Returns true without a handshake if the connection is plain. */
    bool accept();

    /** Switches a plain connection to TLS and performs the handshake. */
    bool acceptTls(ssl_ctx_st *tls);

    /** Reads at most @p size bytes. Returns their number, 0 at the end of the data, or -1 after a failure. */
    qint64 read(char *data, qint64 size);

    /** Writes all bytes. Returns false after a failure. */
    bool write(const char *data, qint64 size);
    bool write(const QByteArray &data) { return write(data.constData(), data.size()); }

    /** Waits for this time. Returns false at once if the client closes the connection. */
    bool sleep(int milliseconds);

    /** Waits until the client closes the connection. */
    void waitForClose();

    /** Returns true if TLS has decrypted bytes that read() returns although the socket has no data. */
    bool hasPending() const;

    /** Closes the connection for writing only. */
    void closeSending();

    /** Makes the destructor end the connection with a TCP reset. */
    void reset();

    /** Announces the end of a TLS connection to the client, unless reset() was called. */
    void finish();

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
    bool m_isFinished = false;
};

} // namespace LocalServices
