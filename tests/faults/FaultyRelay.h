// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <localservices/Listener.h>

#include <atomic>

/**
 * Relays connections to a server on loopback, and changes what the server sends after a number of bytes, in
 * every connection.
 */
class FaultyRelay
{
public:
    enum class Fault {
        Close, ///< ends the connection
        Reset, ///< ends the connection with a TCP reset
        Pause, ///< sends the other bytes after some milliseconds
        FlipLowBit, ///< changes the next byte
        FlipHighBit,
        FlipAllBits
    };

    explicit FaultyRelay(int serverPort);

    int port() const { return m_listener.port(); }

    /** Sets what happens after @p position bytes from the server. */
    void set(Fault fault, qint64 position);

    /** Returns true if a connection since set() had more bytes than its position. */
    bool hasReached() const { return m_hasReached; }

private:
    Q_DISABLE_COPY(FaultyRelay)

    void relay(LocalServices::Connection &client);
    bool forward(char *bytes, qint64 size, qint64 sent, LocalServices::Connection &client);

    const int m_serverPort;
    std::atomic<Fault> m_fault {Fault::Close};
    std::atomic<qint64> m_position {0};
    std::atomic<bool> m_hasReached {false};
    LocalServices::Listener m_listener; ///< last, so that its threads end first
};
