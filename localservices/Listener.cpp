// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Listener.h"

#include "Tls.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

namespace LocalServices {

namespace {

// Returns a listening socket, or -1 if the port is in use.
int createSocket(quint16 port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    // Lets the next run use the port although connections to it were just closed.
    const int on = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    const auto *const generic = reinterpret_cast<const sockaddr *>(&address);
    if (::bind(socket, generic, sizeof(address)) == 0 && ::listen(socket, SOMAXCONN) == 0)
        return socket;
    if (port == 0)
        qFatal("local services: cannot listen on 127.0.0.1: %s", std::strerror(errno));
    ::close(socket);
    return -1;
}

quint16 portOf(int socket)
{
    sockaddr_in address {};
    socklen_t size = sizeof(address);
    ::getsockname(socket, reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(address.sin_port);
}

// OpenSSL writes without MSG_NOSIGNAL, and a write after the client closed must not end the process.
void ignoreBrokenPipes()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

} // namespace

Listener::Listener(Handler handler, const Certificate &certificate, quint16 port)
    : m_handler(std::move(handler))
    , m_tls(createTls(certificate))
    , m_socket(createSocket(port))
{
    if (!isListening())
        return;
    m_port = portOf(m_socket);
    m_acceptor = std::thread(&Listener::acceptConnections, this);
}

Listener::~Listener()
{
    if (!isListening())
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isStopping = true;
        for (const int connection : m_connections)
            ::shutdown(connection, SHUT_RDWR);
    }
    ::shutdown(m_socket, SHUT_RDWR);
    m_acceptor.join();
    for (Worker &worker : m_workers)
        worker.thread.join();
    ::close(m_socket);
}

int Listener::openConnections() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return int(m_connections.size());
}

void Listener::acceptConnections()
{
    while (true) {
        const int connection = ::accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC);
        joinDoneWorkers();
        if (connection >= 0) {
            startWorker(connection);
            continue;
        }
        if (errno != EINTR && errno != ECONNABORTED && errno != EMFILE)
            return;
    }
}

void Listener::startWorker(int socket)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_isStopping) {
            ::close(socket);
            return;
        }
        m_connections.insert(socket);
    }
    m_workers.emplace_back();
    Worker &worker = m_workers.back();
    worker.thread = std::thread([this, socket, &worker] {
        serveConnection(socket);
        worker.isDone = true;
    });
}

void Listener::serveConnection(int socket)
{
    ignoreBrokenPipes();
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    auto connection = std::make_unique<Connection>(socket, m_tls.get());
    if (connection->accept())
        m_handler(*connection);
    connection->finish(); // before the mutex is locked: it may block until the destructor ends the connection
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_connections.erase(socket);
    connection.reset();
}

void Listener::joinDoneWorkers()
{
    m_workers.remove_if([](Worker &worker) {
        if (!worker.isDone)
            return false;
        worker.thread.join();
        return true;
    });
}

} // namespace LocalServices
