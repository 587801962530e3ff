// SPDX-License-Identifier: LGPL-2.1-or-later

#include "PageServer.h"

#include <localservices/HttpStatus.h>

#include <QCryptographicHash>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

using LocalServices::Certificate;
using LocalServices::Connection;
using LocalServices::HttpHeaders;
using LocalServices::HttpRequest;
using LocalServices::HttpResponse;

namespace HttpStatus = LocalServices::HttpStatus;

// The resources of a static library must be initialized by name.
static void initResources()
{
    Q_INIT_RESOURCE(page);
}

namespace {

// An idle feed sends a comment this often. A closed connection is detected by the failed write.
constexpr std::chrono::seconds heartbeat(1);

const QByteArray plainText = QByteArrayLiteral("text/plain");

// The page contains marks instead of the addresses.
QByteArray createPage(const PageAddresses &addresses)
{
    initResources();
    QFile file(QStringLiteral(":/page.html"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("local-services: the page is missing in the program's resources");
    return QString::fromUtf8(file.readAll())
        .replace(QLatin1String("@SERVICES@"), addresses.services.toHtmlEscaped())
        .replace(QLatin1String("@AUTHORITY@"), addresses.authority.toHtmlEscaped())
        .replace(QLatin1String("@PROXY@"), addresses.proxy.toHtmlEscaped())
        .toUtf8();
}

// Returns the source expression of Content-Security-Policy for the only inline element of this name.
QByteArray hashSource(const QByteArray &page, const QByteArray &element)
{
    const QByteArray opening = "<" + element + ">";
    const int begin = page.indexOf(opening) + opening.size();
    const QByteArray content = page.mid(begin, page.indexOf("</" + element + ">", begin) - begin);
    return "'sha256-" + QCryptographicHash::hash(content, QCryptographicHash::Sha256).toBase64() + "'";
}

// The page may run its own script and style and connect to its own server, and nothing else.
QByteArray contentSecurityPolicy(const QByteArray &page)
{
    return "default-src 'none'; connect-src 'self'; img-src data:; script-src " + hashSource(page, "script")
           + "; style-src " + hashSource(page, "style")
           + "; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
}

ArrivalQuery queryOf(const HttpRequest &request)
{
    ArrivalQuery query;
    const auto number = [&request](const char *key, qint64 fallback) {
        const qint64 value = request.queryValue(key).toLongLong();
        return value > 0 ? value : fallback;
    };
    query.after = number("after", query.after);
    query.before = number("before", query.before);
    query.limit = int(qMin<qint64>(ArrivalQuery::maximumLimit, number("limit", query.limit)));
    query.kind = request.queryValue("kind");
    query.text = request.queryValue("text");
    return query;
}

QByteArray toJson(const QList<Arrival> &arrivals)
{
    QJsonArray array;
    for (const Arrival &arrival : arrivals) {
        if (arrival.kind != Arrival::cleared())
            array << arrival.toJson();
    }
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

} // namespace

PageServer::PageServer(ArrivalFeed &feed, quint16 port, const PageAddresses &addresses)
    : m_feed(feed)
    , m_page(createPage(addresses))
    , m_headers {{"Content-Security-Policy", contentSecurityPolicy(m_page)},
                 {"X-Content-Type-Options", "nosniff"},
                 {"Referrer-Policy", "no-referrer"},
                 {"Cache-Control", "no-store"}}
    , m_listener([this](Connection &connection) { handle(connection); }, Certificate(), port)
{
}

PageServer::~PageServer()
{
    m_feed.stop();
}

QUrl PageServer::url() const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(m_listener.port()));
}

bool PageServer::isOwnHost(const QByteArray &host) const
{
    const QByteArray port = ':' + QByteArray::number(m_listener.port());
    return host == "127.0.0.1" + port || host == "localhost" + port;
}

void PageServer::handle(Connection &connection)
{
    const std::optional<HttpRequest> request = LocalServices::readRequest(connection);
    if (!request)
        return;
    const bool isFeed =
        isOwnHost(request->header("Host")) && request->method == "GET" && request->path() == "/feed";
    if (isFeed && ++m_readers <= maximumReaders)
        sendFeed(connection, *request);
    else
        writeResponse(connection, *request, respond(*request));
    if (isFeed)
        --m_readers;
}

HttpResponse PageServer::respond(const HttpRequest &request)
{
    if (!isOwnHost(request.header("Host")))
        return {HttpStatus::Forbidden, "This page is for 127.0.0.1 and localhost.\n", plainText, m_headers};
    const QByteArray action = request.method + ' ' + request.path();
    if (action == "GET /")
        return {HttpStatus::Ok, m_page, "text/html; charset=utf-8", m_headers};
    if (action == "GET /feed")
        return {HttpStatus::ServiceUnavailable, "Too many pages are open.\n", plainText, m_headers};
    if (action == "GET /arrivals")
        return {HttpStatus::Ok, toJson(m_feed.find(queryOf(request))), "application/json", m_headers};
    if (action == "DELETE /arrivals" && m_feed.clear())
        return {HttpStatus::NoContent, {}, {}, m_headers};
    if (action == "DELETE /arrivals")
        return {HttpStatus::InternalServerError, "The database cannot be changed.\n", plainText, m_headers};
    return {HttpStatus::NotFound, {}, {}, m_headers};
}

// Sends the selected arrivals after the reader's last one until the client closes the connection.
void PageServer::sendFeed(Connection &connection, const HttpRequest &request)
{
    ArrivalQuery query = queryOf(request);
    const QByteArray lastEventId = request.header("Last-Event-ID");
    if (!lastEventId.isNull())
        query.after = lastEventId.toLongLong();
    QByteArray bytes = QByteArrayLiteral("retry: 1000\n");
    // An id that does not exist yet is from an older database. The reader must drop its arrivals.
    if (query.after > m_feed.lastId()) {
        query.after = 0;
        bytes += "event: cleared\ndata: {}\n";
    }
    bytes += '\n';
    bool isOpen =
        beginChunks(connection, request, m_headers + HttpHeaders {{"Content-Type", "text/event-stream"}});
    while (isOpen && writeChunk(connection, bytes)) {
        const QList<Arrival> arrivals = m_feed.waitFor(query, heartbeat);
        isOpen = !m_feed.isStopped();
        bytes = arrivals.isEmpty() ? QByteArrayLiteral(":\n\n") : QByteArray();
        for (const Arrival &arrival : arrivals) {
            bytes += ArrivalFeed::toServerSentEvent(arrival);
            query.after = arrival.id;
        }
    }
}
