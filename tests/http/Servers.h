// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <localservices/RawServer.h>

/** Writes the same bytes to every client. */
class RawAnswer : public LocalServices::RawServer
{
public:
    explicit RawAnswer(const QByteArray &answer)
        : RawServer([answer](LocalServices::Connection &client) { client.write(answer); })
    {
    }
};

/** Receives requests and never answers. */
class SilentServer : public LocalServices::RawServer
{
public:
    SilentServer()
        : RawServer([](LocalServices::Connection &client) { client.waitForClose(); })
    {
    }
};

/** Sends the beginning of an answer, and one more byte every 100 ms without an end. */
class DrippingServer : public LocalServices::RawServer
{
public:
    DrippingServer()
        : RawServer([](LocalServices::Connection &client) {
            client.write("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n");
            while (client.write(".") && client.sleep(100)) {}
        })
    {
    }
};

/** Answers with status 200 and the body "slow" after half a second. */
class SlowServer : public LocalServices::RawServer
{
public:
    SlowServer()
        : RawServer([](LocalServices::Connection &client) {
            if (client.sleep(500))
                client.write("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nslow");
        })
    {
    }
};
