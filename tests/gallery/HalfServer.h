// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <localservices/RawServer.h>

/** Sends three fifths of a file at once, and then one byte from time to time. */
class HalfServer : public LocalServices::RawServer
{
public:
    static constexpr int totalBytes = 25 * 1024 * 1024;
    static constexpr int firstBytes = totalBytes / 5 * 3;
    static constexpr int intervalMs = 150;

    HalfServer()
        : RawServer([](LocalServices::Connection &client) {
            client.write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(totalBytes) + "\r\n\r\n");
            client.write(QByteArray(firstBytes, 'x'));
            // Qt reports progress only when data arrives, and skips some of it.
            while (client.sleep(intervalMs) && client.write("x")) {}
        })
    {
    }
};
