// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Certificates.h"
#include "Connection.h"

#include <atomic>
#include <functional>
#include <list>
#include <mutex>
#include <set>
#include <thread>

namespace LocalServices {

/** Accepts connections on a loopback port of its own and serves each in a thread, until it is destroyed. */
class Listener
{
public:
    using Serve = std::function<void(Connection &)>;

    /** Under TLS where a certificate is given; any version that OpenSSL knows. */
    explicit Listener(Serve serve, const Certificate &certificate = {});

    /** Ends all connections, whatever they wait for, and their threads. */
    ~Listener();

    quint16 port() const { return m_port; }
    int socket() const { return m_socket; }
    int openConnections();

private:
    Q_DISABLE_COPY(Listener)

    struct Worker
    {
        std::thread thread;
        std::atomic<bool> isDone {false};
    };

    void acceptConnections();
    void startWorker(int socket);
    void serveConnection(int socket);
    void joinDoneWorkers();

    const Serve m_serve;
    std::shared_ptr<ssl_ctx_st> m_tls;
    int m_socket = -1;
    quint16 m_port = 0;
    std::mutex m_mutex;
    std::set<int> m_connections; ///< under m_mutex
    bool m_isStopping = false; ///< under m_mutex
    std::list<Worker> m_workers; ///< of the accepting thread
    std::thread m_acceptor;
};

} // namespace LocalServices
