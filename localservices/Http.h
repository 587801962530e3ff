// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

#include <optional>

namespace LocalServices {

class Connection;

using HttpHeaders = QList<QPair<QByteArray, QByteArray>>;

/** One HTTP request. */
struct HttpRequest
{
    QByteArray method;
    QByteArray target; ///< path and query, as received
    HttpHeaders headers; ///< in the order received
    QByteArray body;

    /** Returns the target without its query. */
    QByteArray path() const;

    /** Returns the decoded value of a key of the query, or an empty string if the key is missing. */
    QString queryValue(const char *key) const;

    /** Returns the value of the first header of this name in any case, or a null value if there is none. */
    QByteArray header(const QByteArray &name) const;
};

/** One HTTP response with a body of known size. */
struct HttpResponse
{
    int status;
    QByteArray body;
    QByteArray contentType = QByteArrayLiteral("application/json"); ///< sent only with a body
    HttpHeaders headers = {}; ///< sent in addition
};

/**
 * Reads one request from the connection.
 *
 * @param received if not null, set to the bytes of the request as received
 * @return the request, or nothing if the connection ends first, its bytes are not HTTP, or its body is larger
 * than 1 GiB
 */
std::optional<HttpRequest> readRequest(Connection &connection, QByteArray *received = nullptr);

/** Writes a whole response. The connection must be closed after it. */
void writeResponse(Connection &connection, const HttpRequest &request, const HttpResponse &response);

/**
 * Writes the status line and headers of a response whose body the caller writes.
 *
 * @return false if no body must follow: the request is HEAD, or the client closed the connection
 */
bool writeHead(Connection &connection, const HttpRequest &request, int status, const HttpHeaders &headers);

/** Calls writeHead() with status 200 for a body that is written by writeChunk(). */
bool beginChunks(Connection &connection, const HttpRequest &request, const HttpHeaders &headers);

/** Writes one chunk of a body; an empty chunk ends it. Returns false if the client closed the connection. */
bool writeChunk(Connection &connection, const QByteArray &bytes);

} // namespace LocalServices
