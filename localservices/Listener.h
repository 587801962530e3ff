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

/** Accepts connections on 127.0.0.1 and handles each in its own thread, until the object is destroyed. */
class Listener
{
public:
    using Handler = std::function<void(Connection &)>;

    /**
     * Starts to listen.
     *
     * @param handler called in the thread of each connection, which is closed when the function returns
     * @param certificate if not empty, connections use TLS, in any version that OpenSSL supports
     * @param port a port number; 0 uses any free port
     */
    explicit Listener(Handler handler, const Certificate &certificate = {}, quint16 port = 0);

    /** Ends all connections at once, and waits for their threads. */
    ~Listener();

    /** Returns false if the port is in use. */
    bool isListening() const { return m_socket >= 0; }

    quint16 port() const { return m_port; }

    /** Returns the number of open connections. Thread-safe. */
    int openConnections() const;

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

    const Handler m_handler;
    std::shared_ptr<ssl_ctx_st> m_tls;
    int m_socket = -1;
    quint16 m_port = 0;
    mutable std::mutex m_mutex;
    std::set<int> m_connections; ///< guarded by m_mutex
    bool m_isStopping = false; ///< guarded by m_mutex
    std::list<Worker> m_workers; ///< used by the accepting thread only
    std::thread m_acceptor;
};

} // namespace LocalServices
