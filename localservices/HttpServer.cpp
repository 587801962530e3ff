// SPDX-License-Identifier: LGPL-2.1-or-later

#include "HttpServer.h"

#include "Listener.h"

#include <QStringList>

#include <httplib.h>

#include <cstring>
#include <utility>

namespace LocalServices {

namespace {

constexpr const char *plainBytes = "application/octet-stream";
constexpr const char *compressible = "text/plain";
constexpr int dripPauseMs = 100;
constexpr qint64 pieceSize = 65536;
// A prime, so that no piece that is lost or doubled goes unnoticed.
constexpr qint64 patternSize = 251;

const QByteArray &pattern()
{
    static const QByteArray bytes = [] {
        QByteArray result;
        for (qint64 i = 0; i < pieceSize + patternSize; ++i)
            result.append(char(i % patternSize));
        return result;
    }();
    return bytes;
}

// What content() holds at the offset, up to a piece of it.
std::string piece(qint64 offset, qint64 size)
{
    return {pattern().constData() + offset % patternSize, size_t(qMin(size, pieceSize))};
}

// httplib's view of a connection. Keeps the head of the request as it came.
class ConnectionStream : public httplib::Stream
{
public:
    explicit ConnectionStream(Connection &connection)
        : m_connection(connection)
    {
    }

    Connection &connection() const { return m_connection; }

    // Request line and headers.
    QList<QByteArray> headLines() const
    {
        QList<QByteArray> lines;
        for (const QByteArray &line : m_head.split('\n'))
            lines << (line.endsWith('\r') ? line.chopped(1) : line);
        return lines;
    }

    bool is_readable() const override { return true; }
    bool is_writable() const override { return true; }
    void get_remote_ip_and_port(std::string &, int &) const override {}
    void get_local_ip_and_port(std::string &, int &) const override {}
    socket_t socket() const override { return m_connection.socket(); }
    ssize_t write(const char *data, size_t size) override
    {
        return m_connection.write(data, qint64(size)) ? ssize_t(size) : -1;
    }
    ssize_t read(char *data, size_t size) override
    {
        if (m_position == m_available) {
            m_position = 0;
            m_available = m_connection.read(m_buffer, sizeof(m_buffer));
            if (m_available <= 0)
                return std::exchange(m_available, 0);
        }
        const qint64 count = qMin(qint64(size), m_available - m_position);
        std::memcpy(data, m_buffer + m_position, size_t(count));
        m_position += count;
        keepHead(data, count);
        joinQueries(data, count);
        return count;
    }

private:
    // httplib refuses a target with a second question mark, which the rules for URLs allow.
    void joinQueries(char *data, qint64 size)
    {
        for (char *end = data + size; data != end && m_isInFirstLine; ++data) {
            if (*data == '?' && std::exchange(m_hasQuery, true))
                *data = '&';
            m_isInFirstLine = *data != '\n';
        }
    }

    void keepHead(const char *data, qint64 size)
    {
        if (m_isHeadWhole)
            return;
        m_head.append(data, int(size));
        const int end = m_head.indexOf("\r\n\r\n");
        m_isHeadWhole = end >= 0;
        if (m_isHeadWhole)
            m_head.truncate(end);
    }

    Connection &m_connection;
    char m_buffer[16384];
    qint64 m_position = 0;
    qint64 m_available = 0;
    QByteArray m_head;
    bool m_isHeadWhole = false;
    bool m_isInFirstLine = true;
    bool m_hasQuery = false;
};

} // namespace

QByteArray HttpServer::Request::header(const QByteArray &name) const
{
    for (const QPair<QByteArray, QByteArray> &header : headers) {
        if (header.first.compare(name, Qt::CaseInsensitive) == 0)
            return header.second;
    }
    return QByteArray();
}

// httplib reads the requests and writes the answers; connections and threads are the listener's, which
// can end them whatever they do.
class HttpServer::Private : private httplib::Server
{
public:
    Private(const Certificate &certificate, const QMap<QString, HttpServer::Answer> &answers)
        : scheme(certificate.certificate.isEmpty() ? QStringLiteral("http") : QStringLiteral("https"))
    {
        addAnswers();
        for (auto answer = answers.begin(); answer != answers.end(); ++answer)
            addAnswer(answer.key(), answer.value());
        listener =
            std::make_unique<Listener>([this](Connection &connection) { serve(connection); }, certificate);
        svr_sock_ = listener->socket(); // a server without one counts as stopped
    }
    ~Private() override
    {
        listener.reset();
        svr_sock_ = INVALID_SOCKET;
    }

    const QString scheme;
    mutable std::mutex mutex;
    QList<Request> requests; ///< under mutex
    std::unique_ptr<Listener> listener;

private:
    using Answer = std::function<void(const httplib::Request &, httplib::Response &, Connection &)>;
    using SetUp = std::function<void(httplib::Request &)>;

    void serve(Connection &connection)
    {
        ConnectionStream stream(connection);
        s_current = &stream;
        process(&Private::process_request, stream);
        s_current = nullptr;
    }

    // httplib's one call for a request has grown arguments over the years.
    void process(bool (Server::*function)(httplib::Stream &, bool, bool &, const SetUp &),
                 ConnectionStream &stream)
    {
        bool isClosed = false;
        (this->*function)(stream, true, isClosed, nullptr);
    }
    void process(bool (Server::*function)(httplib::Stream &, const std::string &, int, const std::string &,
                                          int, bool, bool &, const SetUp &),
                 ConnectionStream &stream)
    {
        bool isClosed = false;
        (this->*function)(stream, std::string(), 0, std::string(), 0, true, isClosed, nullptr);
    }

    void add(const std::string &path, const Answer &answer)
    {
        route(path + "(?:/.*)?",
              [this, answer](const httplib::Request &request, httplib::Response &response) {
                  record(request);
                  answer(request, response, s_current->connection());
              });
    }

    void route(const std::string &path, const Handler &handler)
    {
        Get(path, handler);
        Post(path, handler);
    }

    void addAnswers();
    void addAnswer(const QString &path, const HttpServer::Answer &answer);
    Request record(const httplib::Request &request);

    // A request is served by one thread from its first byte to its last.
    static thread_local ConnectionStream *s_current;
};

thread_local ConnectionStream *HttpServer::Private::s_current = nullptr;

HttpServer::Request HttpServer::Private::record(const httplib::Request &request)
{
    QList<QByteArray> lines = s_current->headLines();
    const QList<QByteArray> firstLine = lines.takeFirst().split(' ');
    Request recorded {firstLine.at(0), firstLine.at(1), {}, QByteArray::fromStdString(request.body)};
    for (const QByteArray &line : qAsConst(lines)) {
        const int colon = line.indexOf(':');
        recorded.headers.append({line.left(colon), line.mid(colon + 1).trimmed()});
    }
    const std::lock_guard<std::mutex> lock(mutex);
    requests.append(recorded);
    return recorded;
}

void HttpServer::Private::addAnswer(const QString &path, const HttpServer::Answer &answer)
{
    route(path.toStdString(), [this, answer](const httplib::Request &request, httplib::Response &response) {
        const HttpServer::Response own = answer(record(request));
        response.status = own.status;
        if (!own.body.isEmpty())
            response.set_content(own.body.toStdString(), own.contentType.constData());
    });
}

namespace {

size_t numberIn(const httplib::Request &request)
{
    return std::stoul(request.matches[1]);
}

void echo(const httplib::Request &request, httplib::Response &response, Connection &)
{
    response.set_content(request.body.empty() ? request.target : request.body, plainBytes);
}

void answerStatus(const httplib::Request &request, httplib::Response &response, Connection &)
{
    response.status = int(numberIn(request));
    const bool hasBody = response.status >= 200 && response.status != 204 && response.status != 304;
    if (hasBody)
        response.set_content("status " + std::to_string(response.status), plainBytes);
}

void redirect(const httplib::Request &request, httplib::Response &response, Connection &)
{
    response.status = int(numberIn(request));
    response.set_header("Location", request.get_param_value("to"));
    response.set_content("moved", plainBytes);
}

void answerNever(const httplib::Request &, httplib::Response &, Connection &connection)
{
    connection.waitForClose();
}

void drip(const httplib::Request &, httplib::Response &response, Connection &connection)
{
    response.set_chunked_content_provider(plainBytes, [&connection](size_t, httplib::DataSink &sink) {
        return sink.write(".", 1) && connection.sleep(dripPauseMs);
    });
}

void breakOff(const httplib::Request &request, httplib::Response &response, Connection &)
{
    const size_t size = numberIn(request);
    response.set_content_provider(size, plainBytes, [size](size_t offset, size_t, httplib::DataSink &sink) {
        if (offset >= size / 2)
            return false;
        const std::string data = piece(qint64(offset), qint64(size / 2 - offset));
        return sink.write(data.data(), data.size());
    });
}

void answerInChunks(const httplib::Request &request, httplib::Response &response, Connection &)
{
    const size_t size = numberIn(request);
    response.set_chunked_content_provider(plainBytes, [size](size_t offset, httplib::DataSink &sink) {
        if (offset == size) {
            sink.done();
            return true;
        }
        const std::string data = piece(qint64(offset), qint64(size - offset));
        return sink.write(data.data(), data.size());
    });
}

void answerCompressed(const httplib::Request &request, httplib::Response &response, Connection &)
{
    // httplib compresses this kind of content for a client that takes it.
    response.set_content(HttpServer::content(int(numberIn(request))).toStdString(), compressible);
}

void answerBytes(const httplib::Request &request, httplib::Response &response, Connection &connection)
{
    const size_t total = numberIn(request);
    if (total == 0) // httplib has no provider for nothing
        return response.set_content(std::string(), plainBytes);
    const size_t rate = request.has_param("rate") ? std::stoul(request.get_param_value("rate")) : 0;
    response.set_content_provider(
        total, plainBytes, [rate, &connection](size_t offset, size_t length, httplib::DataSink &sink) {
            constexpr size_t piecesPerSecond = 20;
            const size_t size = rate ? qBound(size_t(1), rate / piecesPerSecond, size_t(pieceSize)) : length;
            const std::string data = piece(qint64(offset), qint64(qMin(size, length)));
            return sink.write(data.data(), data.size())
                   && (!rate || connection.sleep(int(data.size() * 1000 / rate)));
        });
}

} // namespace

void HttpServer::Private::addAnswers()
{
    add("/echo", echo);
    add("/status/([0-9]+)", answerStatus);
    add("/redirect/([0-9]+)", redirect);
    add("/never", answerNever);
    add("/drip", drip);
    add("/cut/([0-9]+)", breakOff);
    add("/chunked/([0-9]+)", answerInChunks);
    add("/gzip/([0-9]+)", answerCompressed);
    add("/bytes/([0-9]+)", answerBytes);
}

HttpServer::HttpServer(const Certificate &certificate, const QMap<QString, Answer> &answers)
    : d(std::make_unique<Private>(certificate, answers))
{
}

HttpServer::~HttpServer() = default;

QUrl HttpServer::url(const QString &pathAndQuery) const
{
    return QUrl(
        QStringLiteral("%1://127.0.0.1:%2%3").arg(d->scheme).arg(d->listener->port()).arg(pathAndQuery));
}

QList<HttpServer::Request> HttpServer::requests() const
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    return d->requests;
}

void HttpServer::forgetRequests()
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    d->requests.clear();
}

int HttpServer::openConnections() const
{
    return d->listener->openConnections();
}

QByteArray HttpServer::content(int size)
{
    QByteArray bytes;
    bytes.reserve(size);
    while (bytes.size() < size)
        bytes.append(QByteArray::fromStdString(piece(bytes.size(), size - bytes.size())));
    return bytes;
}

} // namespace LocalServices
