// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>

/**
 * Replaces the sockets of the local services. A target that links FakeConnections.cpp has no sources of
 * Connection and Listener: a server has one client, whose bytes are in memory.
 */
namespace FakeConnections {

/** What the server has sent. Both are limited: a client with enough data closes its connection. */
struct Result
{
    QByteArray toClient;
    QByteArray toOtherServers; ///< forwarded by a proxy
};

/** Handles one connection to the server that was created last. @p pieceSizeBytes limits each read. */
Result connectClient(const QByteArray &received, int pieceSizeBytes);

} // namespace FakeConnections
