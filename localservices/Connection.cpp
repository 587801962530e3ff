// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Connection.h"

#include <QList>

#include <openssl/ssl.h>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <limits>

namespace LocalServices {

namespace {

const QByteArray endOfHead = QByteArrayLiteral("\r\n\r\n");

int bodySize(const QByteArray &head)
{
    const QList<QByteArray> lines = head.split('\n');
    for (const QByteArray &line : lines) {
        if (line.toLower().startsWith("content-length:"))
            return line.mid(line.indexOf(':') + 1).trimmed().toInt();
    }
    return 0;
}

} // namespace

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
    if (m_isReset) {
        const linger atOnce {1, 0};
        setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof(atOnce));
    } else if (m_tls) {
        SSL_shutdown(m_tls.get());
    }
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

QByteArray Connection::readRequest()
{
    QByteArray request;
    int wanted = std::numeric_limits<int>::max();
    while (request.size() < wanted) {
        char buffer[16384];
        const qint64 size = read(buffer, sizeof(buffer));
        if (size <= 0)
            return QByteArray();
        request.append(buffer, int(size));
        const int head = request.indexOf(endOfHead);
        if (head >= 0)
            wanted = head + endOfHead.size() + bodySize(request.left(head));
    }
    return request;
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
    constexpr int forEver = -1;
    sleep(forEver);
}

void Connection::closeSending()
{
    ::shutdown(m_socket, SHUT_WR);
}

void Connection::reset()
{
    m_isReset = true;
}

} // namespace LocalServices
