// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <localservices/RawServer.h>

/** Sends three fifths of a file and then hardly anything more. */
class HalfServer : public LocalServices::RawServer
{
public:
    static constexpr int total = 25 * 1024 * 1024;
    static constexpr int sent = total / 5 * 3;
    static constexpr int pauseMs = 150;

    HalfServer()
        : RawServer([](LocalServices::Connection &client) {
            client.write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(total) + "\r\n\r\n");
            client.write(QByteArray(sent, 'x'));
            // Qt tells of progress when data comes, and not of all.
            while (client.sleep(pauseMs) && client.write("x")) {}
        })
    {
    }
};
