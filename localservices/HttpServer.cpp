// SPDX-License-Identifier: LGPL-2.1-or-later

#include "HttpServer.h"

#include <zlib.h>

namespace LocalServices {

namespace {

const QByteArray contentType = QByteArrayLiteral("Content-Type");
const QByteArray plainBytes = QByteArrayLiteral("application/octet-stream");
constexpr int dripPauseMs = 100;
constexpr qint64 pieceSizeBytes = 65536;
// A prime, so that a lost or repeated piece of any usual size changes the data.
constexpr qint64 patternSizeBytes = 251;

// Returns the data of content() at the offset, at most one piece of it.
QByteArray piece(qint64 offset, qint64 size)
{
    static const QByteArray pattern = [] {
        QByteArray bytes;
        for (qint64 i = 0; i < pieceSizeBytes + patternSizeBytes; ++i)
            bytes.append(char(i % patternSizeBytes));
        return bytes;
    }();
    return pattern.mid(int(offset % patternSizeBytes), int(qMin(size, pieceSizeBytes)));
}

QByteArray gzip(const QByteArray &bytes)
{
    constexpr int gzipFormat = 16;
    constexpr int usualMemory = 8;
    z_stream stream {};
    deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, MAX_WBITS + gzipFormat, usualMemory,
                 Z_DEFAULT_STRATEGY);
    QByteArray compressed(int(deflateBound(&stream, uLong(bytes.size()))), Qt::Uninitialized);
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(bytes.constData()));
    stream.avail_in = uInt(bytes.size());
    stream.next_out = reinterpret_cast<Bytef *>(compressed.data());
    stream.avail_out = uInt(compressed.size());
    deflate(&stream, Z_FINISH);
    compressed.truncate(int(stream.total_out));
    deflateEnd(&stream);
    return compressed;
}

// Writes the head for a body of @p size bytes, and the body up to @p end.
void writeContent(Connection &connection, const HttpRequest &request, qint64 size, qint64 end)
{
    bool isOpen = writeHead(connection, request, HttpStatus::Ok,
                            {{contentType, plainBytes}, {"Content-Length", QByteArray::number(size)}});
    const qint64 rate = request.queryValue("rate").toLongLong();
    constexpr qint64 piecesPerSecond = 20;
    const qint64 pieceSize = rate > 0 ? qMax(qint64(1), rate / piecesPerSecond) : pieceSizeBytes;
    for (qint64 offset = 0; isOpen && offset < end;) {
        const QByteArray bytes = piece(offset, qMin(pieceSize, end - offset));
        isOpen = connection.write(bytes)
                 && (rate == 0 || connection.sleep(int(qint64(bytes.size()) * 1000 / rate)));
        offset += bytes.size();
    }
}

void answerEcho(Connection &connection, const HttpRequest &request, int)
{
    const QByteArray &body = request.body.isEmpty() ? request.target : request.body;
    writeResponse(connection, request, {HttpStatus::Ok, body, plainBytes});
}

void answerStatus(Connection &connection, const HttpRequest &request, int status)
{
    const bool hasBody = status >= 200 && status != 204 && status != 304;
    const QByteArray body = hasBody ? "status " + QByteArray::number(status) : QByteArray();
    writeResponse(connection, request, {status, body, plainBytes});
}

void answerRedirect(Connection &connection, const HttpRequest &request, int status)
{
    const HttpHeaders location {{"Location", request.queryValue("to").toUtf8()}};
    writeResponse(connection, request, {status, "moved", plainBytes, location});
}

void answerNever(Connection &connection, const HttpRequest &, int)
{
    connection.waitForClose();
}

void answerDrip(Connection &connection, const HttpRequest &request, int)
{
    if (!beginChunks(connection, request, {{contentType, plainBytes}}))
        return;
    while (writeChunk(connection, ".") && connection.sleep(dripPauseMs)) {}
}

void answerCut(Connection &connection, const HttpRequest &request, int size)
{
    writeContent(connection, request, size, size / 2);
}

void answerChunked(Connection &connection, const HttpRequest &request, int size)
{
    bool isOpen = beginChunks(connection, request, {{contentType, plainBytes}});
    for (qint64 offset = 0; isOpen && offset < size; offset += pieceSizeBytes)
        isOpen = writeChunk(connection, piece(offset, size - offset));
    if (isOpen)
        writeChunk(connection, {});
}

void answerGzip(Connection &connection, const HttpRequest &request, int size)
{
    writeResponse(
        connection, request,
        {HttpStatus::Ok, gzip(HttpServer::content(size)), plainBytes, {{"Content-Encoding", "gzip"}}});
}

void answerBytes(Connection &connection, const HttpRequest &request, int size)
{
    writeContent(connection, request, size, size);
}

// A function that answers "/name/N".
using BuiltIn = void (*)(Connection &connection, const HttpRequest &request, int number);

BuiltIn builtIn(const QByteArray &name)
{
    static const QMap<QByteArray, BuiltIn> builtIns {
        {"echo", answerEcho},       {"status", answerStatus}, {"redirect", answerRedirect},
        {"never", answerNever},     {"drip", answerDrip},     {"cut", answerCut},
        {"chunked", answerChunked}, {"gzip", answerGzip},     {"bytes", answerBytes}};
    return builtIns.value(name);
}

} // namespace

HttpServer::HttpServer(const Certificate &certificate, const QMap<QString, Answer> &answers)
    : m_scheme(certificate.certificate.isEmpty() ? QStringLiteral("http") : QStringLiteral("https"))
    , m_answers(answers)
    , m_listener([this](Connection &connection) { handle(connection); }, certificate)
{
}

void HttpServer::handle(Connection &connection)
{
    const std::optional<Request> request = readRequest(connection);
    if (!request)
        return;
    const QByteArray path = request->path();
    const QList<QByteArray> segments = path.split('/'); // the first one is empty
    if (const Answer answer = m_answers.value(QString::fromLatin1(path))) {
        record(*request);
        writeResponse(connection, *request, answer(*request));
    } else if (const BuiltIn function = builtIn(segments.value(1))) {
        record(*request);
        function(connection, *request, qMax(0, segments.value(2).toInt()));
    } else {
        writeResponse(connection, *request, {HttpStatus::NotFound, {}});
    }
}

void HttpServer::record(const Request &request)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_requests.append(request);
}

QUrl HttpServer::url(const QString &pathAndQuery) const
{
    return QUrl(QStringLiteral("%1://127.0.0.1:%2%3").arg(m_scheme).arg(m_listener.port()).arg(pathAndQuery));
}

QList<HttpServer::Request> HttpServer::requests() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

void HttpServer::forgetRequests()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_requests.clear();
}

QByteArray HttpServer::content(int size)
{
    QByteArray bytes;
    bytes.reserve(size);
    while (bytes.size() < size)
        bytes.append(piece(bytes.size(), size - bytes.size()));
    return bytes;
}

} // namespace LocalServices
