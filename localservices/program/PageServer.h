// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ArrivalFeed.h"

#include <QUrl>

#include <atomic>
#include <memory>
#include <thread>

namespace httplib {
class Server;
struct Request;
struct Response;
} // namespace httplib

/**
 * Serves the page on 127.0.0.1 that shows what arrives:
 *
 * | Request                   | Answer                                                               |
 * |---------------------------|----------------------------------------------------------------------|
 * | GET /                     | the page, whose style and script are parts of it                     |
 * | GET /feed                 | server-sent events without end, behind the header "Last-Event-ID" or |
 * |                           | "?after=ID"                                                          |
 * | GET /arrivals?after=ID    | a JSON array of the newest arrivals behind the id                    |
 * | DELETE /arrivals          | removes all                                                          |
 *
 * Other sites can't reach it through a browser: they can't read an answer, a DELETE isn't theirs to send,
 * and under a name of their own that leads to 127.0.0.1 they are refused by the "Host" header.
 */
class PageServer
{
public:
    /** More readers of the feed than this are refused by status 503. */
    static constexpr int maximumReaders = 16;

    /** Takes any free port for @p port 0. @p services is the file that the page tells hosts to use. */
    PageServer(ArrivalFeed &feed, quint16 port, const QString &services);

    /** Stops the feed; ends within two seconds whatever clients do. */
    ~PageServer();

    /** False when the port can't be had. */
    bool isListening() const { return m_thread.joinable(); }

    QUrl url() const;

private:
    Q_DISABLE_COPY(PageServer)

    void answer(const httplib::Request &request, httplib::Response &response);
    bool isOurs(const httplib::Request &request) const;
    void addAnswers(const QString &services);
    void start();
    void sendFeed(const httplib::Request &request, httplib::Response &response);

    ArrivalFeed &m_feed;
    std::unique_ptr<httplib::Server> m_server;
    quint16 m_port = 0;
    std::atomic<int> m_readers {0};
    std::thread m_thread;
};
