// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Http.h"
#include "HttpStatus.h"
#include "Listener.h"

#include <QMap>
#include <QUrl>

namespace LocalServices {

/**
 * An HTTP server on loopback, or an HTTPS server if a certificate is passed. It answers every method alike:
 *
 * | Path                    | Response                                                            |
 * |-------------------------|---------------------------------------------------------------------|
 * | /echo                   | the body of the request, or its target if the body is empty         |
 * | /status/N               | status N with the body "status N"                                   |
 * | /redirect/N?to=TARGET   | status N with the header "Location: TARGET" and the body "moved"    |
 * | /never                  | none: the connection stays open                                     |
 * | /drip                   | one byte every 100 ms, without end                                  |
 * | /cut/N                  | a body of N bytes that ends after N/2 bytes                         |
 * | /chunked/N              | N bytes in chunks, without a Content-Length                         |
 * | /gzip/N                 | N bytes, compressed with gzip                                       |
 * | /bytes/N?rate=R         | N bytes, at R bytes per second or, without a rate, at full speed    |
 *
 * "/anything" may follow each path, to set the file name of a download. The N bytes are those of content().
 * A missing or negative N is 0.
 * Other paths are answered with status 404. The connection is closed after each response.
 */
class HttpServer
{
public:
    using Request = HttpRequest;
    using Response = HttpResponse;

    /** Returns the response to one request. Called in the thread of the connection. */
    using Answer = std::function<Response(const Request &)>;

    /** Starts the server. It also answers the paths that are the keys of @p answers. */
    explicit HttpServer(const Certificate &certificate = {}, const QMap<QString, Answer> &answers = {});

    QUrl url(const QString &pathAndQuery) const;

    /** Returns the requests to known paths, in the order in which their responses began. Thread-safe. */
    QList<Request> requests() const;

    /** Removes all requests from the record. Thread-safe. */
    void forgetRequests();

    /** Returns the number of open connections. Thread-safe. */
    int openConnections() const { return m_listener.openConnections(); }

    /** Returns the first @p size bytes of the test data that the paths with N send. */
    static QByteArray content(int size);

private:
    Q_DISABLE_COPY(HttpServer)

    void handle(Connection &connection);
    void record(const Request &request);

    const QString m_scheme;
    const QMap<QString, Answer> m_answers;
    mutable std::mutex m_mutex;
    QList<Request> m_requests; ///< guarded by m_mutex
    Listener m_listener; ///< last, so that its threads end before the other members are destroyed
};

} // namespace LocalServices
