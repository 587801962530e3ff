// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Http.h"

#include "Connection.h"
#include "HttpStatus.h"

#include <QUrlQuery>

// Beast 1.74 asserts that the end of a chunked body arrives in one piece, which no client guarantees.
#define BOOST_DISABLE_ASSERTS
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

#include <limits>

namespace LocalServices {

namespace {

namespace http = boost::beast::http;

// The parser allocates memory for the announced size. A QByteArray holds less than 2 GiB.
constexpr std::uint64_t maximumBodyBytes = 1ULL << 30U;
const QByteArray contentType = QByteArrayLiteral("Content-Type");
const QByteArray contentLength = QByteArrayLiteral("Content-Length");
const QByteArray transferEncoding = QByteArrayLiteral("Transfer-Encoding");
const QByteArray endOfLine = QByteArrayLiteral("\r\n");
const QByteArray endOfHead = QByteArrayLiteral("\r\n\r\n");

QByteArray toBytes(boost::beast::string_view view)
{
    return QByteArray(view.data(), int(view.size()));
}

// The parser groups headers of the same name; here they keep the order received.
HttpHeaders headersOf(const QByteArray &received)
{
    HttpHeaders headers;
    const QByteArray head = received.left(received.indexOf(endOfHead));
    const QList<QByteArray> lines = head.split('\n').mid(1);
    for (const QByteArray &line : lines) {
        const int colon = line.indexOf(':');
        headers.append({line.left(colon), line.mid(colon + 1).trimmed()});
    }
    return headers;
}

QByteArray headOf(int status, const HttpHeaders &headers)
{
    const http::status code = http::int_to_status(unsigned(status));
    QByteArray head = "HTTP/1.1 " + QByteArray::number(status) + ' ' + toBytes(http::obsolete_reason(code))
                      + "\r\nConnection: close\r\n";
    for (const QPair<QByteArray, QByteArray> &header : headers)
        head += header.first + ": " + header.second + endOfLine;
    return head + endOfLine;
}

bool hasBody(const HttpRequest &request)
{
    return request.method != "HEAD";
}

} // namespace

QByteArray HttpRequest::path() const
{
    return target.mid(0, target.indexOf('?'));
}

QString HttpRequest::queryValue(const char *key) const
{
    const QUrlQuery query(QUrl::fromEncoded(target));
    return query.queryItemValue(QLatin1String(key), QUrl::FullyDecoded);
}

QByteArray HttpRequest::header(const QByteArray &name) const
{
    for (const QPair<QByteArray, QByteArray> &header : headers) {
        if (header.first.compare(name, Qt::CaseInsensitive) == 0)
            return header.second;
    }
    return QByteArray();
}

std::optional<HttpRequest> readRequest(Connection &connection, QByteArray *received)
{
    http::request_parser<http::string_body> parser;
    parser.eager(true);
    parser.header_limit(std::numeric_limits<std::uint32_t>::max());
    parser.body_limit(maximumBodyBytes);
    QByteArray bytes;
    int parsedSize = 0;
    while (!parser.is_done()) {
        char buffer[16384];
        const qint64 size = connection.read(buffer, sizeof(buffer));
        if (size <= 0)
            return std::nullopt;
        bytes.append(buffer, int(size));
        boost::beast::error_code error;
        const boost::asio::const_buffer rest(bytes.constData() + parsedSize,
                                             size_t(bytes.size() - parsedSize));
        parsedSize += int(parser.put(rest, error));
        if (error && error != http::error::need_more)
            return std::nullopt;
    }
    if (received)
        *received = bytes;
    const http::request<http::string_body> &message = parser.get();
    return HttpRequest {toBytes(message.method_string()), toBytes(message.target()), headersOf(bytes),
                        QByteArray::fromStdString(message.body())};
}

void writeResponse(Connection &connection, const HttpRequest &request, const HttpResponse &response)
{
    HttpHeaders headers = response.headers;
    headers.append({contentLength, QByteArray::number(response.body.size())});
    if (!response.body.isEmpty())
        headers.append({contentType, response.contentType});
    connection.write(headOf(response.status, headers) + (hasBody(request) ? response.body : QByteArray()));
}

bool writeHead(Connection &connection, const HttpRequest &request, int status, const HttpHeaders &headers)
{
    return connection.write(headOf(status, headers)) && hasBody(request);
}

bool beginChunks(Connection &connection, const HttpRequest &request, const HttpHeaders &headers)
{
    return writeHead(connection, request, HttpStatus::Ok,
                     headers + HttpHeaders {{transferEncoding, QByteArrayLiteral("chunked")}});
}

bool writeChunk(Connection &connection, const QByteArray &bytes)
{
    return connection.write(QByteArray::number(bytes.size(), 16) + endOfLine + bytes + endOfLine);
}

} // namespace LocalServices
