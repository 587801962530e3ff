// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Listener.h"

#include "Tls.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>

namespace LocalServices {

namespace {

int createSocket()
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const auto *const anyPort = reinterpret_cast<const sockaddr *>(&address);
    if (::bind(socket, anyPort, sizeof(address)) != 0 || ::listen(socket, SOMAXCONN) != 0)
        qFatal("A local service can't listen on 127.0.0.1");
    return socket;
}

quint16 portOf(int socket)
{
    sockaddr_in address {};
    socklen_t size = sizeof(address);
    ::getsockname(socket, reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(address.sin_port);
}

// A client that went away must not end the process; OpenSSL writes without MSG_NOSIGNAL.
void ignoreBrokenPipes()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

} // namespace

Listener::Listener(Serve serve, const Certificate &certificate)
    : m_serve(std::move(serve))
    , m_tls(createTls(certificate))
    , m_socket(createSocket())
    , m_port(portOf(m_socket))
    , m_acceptor(&Listener::acceptConnections, this)
{
}

Listener::~Listener()
{
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

int Listener::openConnections()
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
        m_serve(*connection);
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
