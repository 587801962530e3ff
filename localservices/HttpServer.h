// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Certificates.h"

#include <QList>
#include <QMap>
#include <QPair>
#include <QUrl>

#include <functional>
#include <memory>

namespace LocalServices {

/**
 * An HTTP server on loopback, or an HTTPS one where a certificate is given. GET and POST alike:
 *
 * | Path                    | Answer                                                              |
 * |-------------------------|---------------------------------------------------------------------|
 * | /echo                   | the body of the request; its target when there is none              |
 * | /status/N               | status N with the body "status N"                                   |
 * | /redirect/N?to=TARGET   | status N with the header "Location: TARGET" and the body "moved"    |
 * | /never                  | none: the connection stays open                                     |
 * | /drip                   | one byte every 100 ms, without end                                  |
 * | /cut/N                  | a body of N bytes that breaks off in the middle                     |
 * | /chunked/N              | N bytes in chunks, without a length                                 |
 * | /gzip/N                 | N bytes, compressed                                                 |
 * | /bytes/N?rate=R         | N bytes, at R bytes a second or as fast as can be                   |
 *
 * A path may go on with "/anything", so that a download finds its file name there. The N bytes are
 * those of content(). Connections are closed after each answer.
 */
class HttpServer
{
public:
    struct Request
    {
        QByteArray method;
        QByteArray target; ///< path and query as they stood on the wire
        QList<QPair<QByteArray, QByteArray>> headers; ///< in their order
        QByteArray body;

        /** The value of the header, whatever the case of its name; null when there is none. */
        QByteArray header(const QByteArray &name) const;
    };

    /** A service's own answer: the status, and the body that goes with it. Any thread. */
    struct Response
    {
        int status;
        QByteArray body;
        QByteArray contentType = QByteArrayLiteral("application/json");
    };
    using Answer = std::function<Response(const Request &)>;

    /** Answers at the paths of @p answers as well. */
    explicit HttpServer(const Certificate &certificate = {}, const QMap<QString, Answer> &answers = {});

    /** Ends all connections, those of requests that hang too, and returns at once. */
    ~HttpServer();

    QUrl url(const QString &pathAndQuery) const;

    /** The requests so far, in the order in which their answers began. Any thread. */
    QList<Request> requests() const;

    /** Empties the record. Any thread. */
    void forgetRequests();

    /** How many connections are open. Any thread. */
    int openConnections() const;

    static QByteArray content(int size);

private:
    Q_DISABLE_COPY(HttpServer)
    class Private;

    std::unique_ptr<Private> d;
};

} // namespace LocalServices
