// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Connection.h"

#include <openssl/ssl.h>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <limits>
#include <utility>

namespace LocalServices {

int connectToLoopback(int port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(quint16(port));
    if (::connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0)
        return socket;
    ::close(socket);
    return -1;
}

void Connection::FreeTls::operator()(ssl_st *tls) const
{
    SSL_free(tls);
}

Connection::Connection(int socket, ssl_ctx_st *tls)
    : m_socket(socket)
    , m_tls(tls ? SSL_new(tls) : nullptr)
{
    if (m_tls)
        SSL_set_fd(m_tls.get(), m_socket);
}

Connection::~Connection()
{
    finish();
    m_tls.reset();
    ::close(m_socket);
}

bool Connection::accept()
{
    return !m_tls || SSL_accept(m_tls.get()) == 1;
}

bool Connection::acceptTls(ssl_ctx_st *tls)
{
    m_tls.reset(SSL_new(tls));
    SSL_set_fd(m_tls.get(), m_socket);
    return accept();
}

bool Connection::hasPending() const
{
    return m_tls && SSL_pending(m_tls.get()) > 0;
}

qint64 Connection::read(char *data, qint64 size)
{
    if (m_tls)
        return SSL_read(m_tls.get(), data, int(qMin(size, qint64(std::numeric_limits<int>::max()))));
    return ::recv(m_socket, data, size_t(size), 0);
}

bool Connection::write(const char *data, qint64 size)
{
    while (size > 0) {
        const qint64 written =
            m_tls ? SSL_write(m_tls.get(), data, int(qMin(size, qint64(std::numeric_limits<int>::max()))))
                  : ::send(m_socket, data, size_t(size), MSG_NOSIGNAL);
        if (written <= 0)
            return false;
        data += written;
        size -= written;
    }
    return true;
}

bool Connection::sleep(int milliseconds)
{
    pollfd client {m_socket, POLLRDHUP, 0};
    int result = -1;
    do {
        result = ::poll(&client, 1, milliseconds);
    } while (result < 0 && errno == EINTR);
    return result == 0;
}

void Connection::waitForClose()
{
    constexpr int forever = -1;
    sleep(forever);
}

void Connection::closeSending()
{
    ::shutdown(m_socket, SHUT_WR);
}

void Connection::reset()
{
    const linger atOnce {1, 0};
    ::setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof(atOnce));
    m_isReset = true;
}

void Connection::finish()
{
    if (m_tls && !m_isReset && !std::exchange(m_isFinished, true))
        SSL_shutdown(m_tls.get());
}

} // namespace LocalServices
