// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FakeConnections.h"

#include <localservices/Listener.h>

#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

// Connection's destructor frees a TLS connection, which is always null here.
void LocalServices::Connection::FreeTls::operator()(ssl_st *) const
{
}

namespace {

constexpr int clientSocket = -1;
constexpr int maximumReplyBytes = 256 * 1024;
constexpr int maximumSleeps = 8;

LocalServices::Listener::Handler lastHandler;
QByteArray unread;
int pieceBytes = 1;
int sleeps = 0;
FakeConnections::Result result;

} // namespace

FakeConnections::Result FakeConnections::connectClient(const QByteArray &received, int pieceSizeBytes)
{
    unread = received;
    pieceBytes = qMax(1, pieceSizeBytes);
    sleeps = 0;
    result = Result();
    LocalServices::Connection client(clientSocket, nullptr);
    lastHandler(client);
    return result;
}

namespace LocalServices {

Connection::Connection(int socket, ssl_ctx_st *)
    : m_socket(socket)
{
}

Connection::~Connection()
{
    if (m_socket != clientSocket)
        ::close(m_socket);
}

bool Connection::accept()
{
    return true;
}

bool Connection::acceptTls(ssl_ctx_st *)
{
    return false;
}

qint64 Connection::read(char *data, qint64 size)
{
    const int count = int(qMin(size, qint64(qMin(pieceBytes, unread.size()))));
    std::memcpy(data, unread.constData(), std::size_t(count));
    unread.remove(0, count);
    return count;
}

bool Connection::write(const char *data, qint64 size)
{
    QByteArray &target = m_socket == clientSocket ? result.toClient : result.toOtherServers;
    target.append(data, int(qMin(size, qint64(maximumReplyBytes))));
    return m_socket == clientSocket && target.size() < maximumReplyBytes;
}

bool Connection::sleep(int)
{
    return ++sleeps < maximumSleeps;
}

void Connection::waitForClose()
{
}

bool Connection::hasPending() const
{
    return false;
}

void Connection::closeSending()
{
}

void Connection::reset()
{
}

void Connection::finish()
{
}

Listener::Listener(Handler handler, const Certificate &, quint16)
    : m_handler(std::move(handler))
{
    lastHandler = m_handler;
}

Listener::~Listener() = default;

int Listener::openConnections() const
{
    return 0;
}

// No target connects to a server of this machine. Port 1 seems to be open, all others are closed.
int connectToLoopback(int port)
{
    return port == 1 ? ::socket(AF_INET, SOCK_STREAM, 0) : -1;
}

} // namespace LocalServices
