// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FaultyRelay.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

using LocalServices::Connection;

namespace {

constexpr int pauseMs = 3;

// A changed length makes both sides wait for each other. This ends the connection long before the request's
// time limit does.
constexpr int idleMs = 2000;

char changed(char byte, FaultyRelay::Fault fault)
{
    const int mask = fault == FaultyRelay::Fault::FlipLowBit    ? 0x01
                     : fault == FaultyRelay::Fault::FlipHighBit ? 0x80
                                                                : 0xff;
    return char(byte ^ mask);
}

} // namespace

FaultyRelay::FaultyRelay(int serverPort)
    : m_serverPort(serverPort)
    , m_listener([this](Connection &client) { relay(client); })
{
}

void FaultyRelay::set(Fault fault, qint64 position)
{
    m_fault = fault;
    m_position = position;
    m_hasReached = false;
}

void FaultyRelay::relay(Connection &client)
{
    const int socket = LocalServices::connectToLoopback(m_serverPort);
    if (socket == -1)
        return;
    Connection server(socket, nullptr);
    qint64 sent = 0;
    char buffer[16384];
    while (true) {
        pollfd sockets[] {{client.socket(), POLLIN, 0}, {server.socket(), POLLIN, 0}};
        if (::poll(sockets, 2, idleMs) <= 0)
            return;
        if (sockets[0].revents) {
            const qint64 size = client.read(buffer, sizeof(buffer));
            if (size <= 0 || !server.write(buffer, size))
                return;
        }
        if (sockets[1].revents) {
            const qint64 size = server.read(buffer, sizeof(buffer));
            if (size <= 0 || !forward(buffer, size, sent, client))
                return;
            sent += size;
        }
    }
}

// Sends bytes of the server to the client. Returns false if the connection must end.
bool FaultyRelay::forward(char *bytes, qint64 size, qint64 sent, Connection &client)
{
    const qint64 before = m_position - sent; // bytes before the fault
    if (before < 0 || before >= size)
        return client.write(bytes, size);
    m_hasReached = true;
    const Fault fault = m_fault;
    if (fault == Fault::Close || fault == Fault::Reset) {
        client.write(bytes, before);
        if (fault == Fault::Reset)
            client.reset();
        return false;
    }
    if (fault == Fault::Pause)
        return client.write(bytes, before) && client.sleep(pauseMs)
               && client.write(bytes + before, size - before);
    bytes[before] = changed(bytes[before], fault);
    return client.write(bytes, size);
}
