// SPDX-License-Identifier: LGPL-2.1-or-later

#include "PageServer.h"

#include <QCryptographicHash>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <httplib.h>

// Of a static library, whose resources are in the program only where they are asked for.
static void initResources()
{
    Q_INIT_RESOURCE(page);
}

namespace {

constexpr const char *address = "127.0.0.1";
constexpr int refused = 403;
constexpr int noContent = 204;
constexpr int busy = 503;
constexpr int otherWorkers = 16; // for requests that don't last
constexpr int clientPatienceSeconds = 1;
constexpr std::chrono::milliseconds sign(1000); // of life, in a feed where nothing happens

// In the page, the place of the file's name.
const QString servicesMark = QStringLiteral("@SERVICES@");

QByteArray createPage(const QString &services)
{
    initResources();
    QFile file(QStringLiteral(":/page.html"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The page isn't in the program");
    return QString::fromUtf8(file.readAll()).replace(servicesMark, services.toHtmlEscaped()).toUtf8();
}

// What Content-Security-Policy calls the inline text of the page's one element of this name.
QByteArray hashSource(const QByteArray &page, const QByteArray &element)
{
    const QByteArray opening = "<" + element + ">";
    const int begin = page.indexOf(opening) + opening.size();
    const QByteArray text = page.mid(begin, page.indexOf("</" + element + ">", begin) - begin);
    return "'sha256-" + QCryptographicHash::hash(text, QCryptographicHash::Sha256).toBase64() + "'";
}

// The page runs its own script and style and talks to its own server, and nothing else.
QByteArray contentSecurityPolicy(const QByteArray &page)
{
    return "default-src 'none'; connect-src 'self'; img-src data:; script-src " + hashSource(page, "script")
           + "; style-src " + hashSource(page, "style")
           + "; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
}

// SO_REUSEPORT, which httplib would set, lets two programs share a port and get half of the requests each.
void allowReuse(int socket)
{
    const int on = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
}

qint64 idIn(const std::string &text)
{
    return QByteArray::fromStdString(text).toLongLong();
}

qint64 lastSeen(const httplib::Request &request)
{
    return idIn(request.has_header("Last-Event-ID") ? request.get_header_value("Last-Event-ID")
                                                    : request.get_param_value("after"));
}

bool write(httplib::DataSink &sink, const QByteArray &bytes)
{
    return sink.write(bytes.constData(), size_t(bytes.size()));
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

// Sends what comes behind an id for as long as the client listens.
class Reader
{
public:
    Reader(ArrivalFeed &feed, qint64 after)
        : m_feed(feed)
        , m_lastId(after)
    {
    }

    bool begin(httplib::DataSink &sink)
    {
        // An id that never was is from a list that is gone, with all that a reader may have of it.
        const bool isUnknown = m_lastId > m_feed.lastId();
        if (isUnknown)
            m_lastId = 0;
        return write(sink, isUnknown ? "retry: 1000\nevent: cleared\ndata: {}\n\n" : "retry: 1000\n\n");
    }

    bool go(httplib::DataSink &sink)
    {
        const QList<Arrival> arrivals = m_feed.waitAfter(m_lastId, sign);
        if (m_feed.isStopped())
            return false;
        QByteArray bytes = arrivals.isEmpty() ? QByteArrayLiteral(":\n\n") : QByteArray();
        for (const Arrival &arrival : arrivals) {
            bytes += ArrivalFeed::toServerSentEvent(arrival);
            m_lastId = arrival.id;
        }
        return write(sink, bytes);
    }

private:
    ArrivalFeed &m_feed;
    qint64 m_lastId;
};

} // namespace

PageServer::PageServer(ArrivalFeed &feed, quint16 port, const QString &services)
    : m_feed(feed)
    , m_server(std::make_unique<httplib::Server>())
{
    m_server->new_task_queue = [] { return new httplib::ThreadPool(maximumReaders + otherWorkers); };
    m_server->set_socket_options(allowReuse);
    // One request a connection, so that no worker waits for a client's next.
    m_server->set_keep_alive_max_count(1);
    m_server->set_keep_alive_timeout(clientPatienceSeconds);
    m_server->set_read_timeout(clientPatienceSeconds);
    m_server->set_write_timeout(clientPatienceSeconds);
    addAnswers(services);
    const int bound =
        port == 0 ? m_server->bind_to_any_port(address) : (m_server->bind_to_port(address, port) ? port : -1);
    if (bound <= 0)
        return;
    m_port = quint16(bound);
    start();
}

PageServer::~PageServer()
{
    if (!isListening())
        return;
    m_feed.stop();
    m_server->stop();
    m_thread.join();
}

// Returns once stop() works, which does nothing before the server runs.
void PageServer::start()
{
    m_thread = std::thread([this] { m_server->listen_after_bind(); });
    while (!m_server->is_running())
        std::this_thread::yield();
}

QUrl PageServer::url() const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(m_port));
}

bool PageServer::isOurs(const httplib::Request &request) const
{
    const std::string host = request.get_header_value("Host");
    const std::string port = ":" + std::to_string(m_port);
    return host == address + port || host == "localhost" + port;
}

void PageServer::addAnswers(const QString &services)
{
    const QByteArray page = createPage(services);
    m_server->set_default_headers({{"Content-Security-Policy", contentSecurityPolicy(page).toStdString()},
                                   {"X-Content-Type-Options", "nosniff"},
                                   {"Referrer-Policy", "no-referrer"},
                                   {"Cache-Control", "no-store"}});
    m_server->set_pre_routing_handler([this](const httplib::Request &request, httplib::Response &response) {
        if (isOurs(request))
            return httplib::Server::HandlerResponse::Unhandled;
        response.status = refused;
        response.set_content("This page is for 127.0.0.1 and localhost.\n", "text/plain");
        return httplib::Server::HandlerResponse::Handled;
    });
    m_server->Get("/", [page](const httplib::Request &, httplib::Response &response) {
        response.set_content(page.toStdString(), "text/html; charset=utf-8");
    });
    m_server->Get("/feed", [this](const httplib::Request &request, httplib::Response &response) {
        sendFeed(request, response);
    });
    m_server->Get("/arrivals", [this](const httplib::Request &request, httplib::Response &response) {
        const QList<Arrival> arrivals = m_feed.after(idIn(request.get_param_value("after")));
        response.set_content(toJson(arrivals).toStdString(), "application/json");
    });
    m_server->Delete("/arrivals", [this](const httplib::Request &, httplib::Response &response) {
        m_feed.clear();
        response.status = noContent;
    });
}

void PageServer::sendFeed(const httplib::Request &request, httplib::Response &response)
{
    if (m_readers.fetch_add(1) >= maximumReaders) {
        --m_readers;
        response.status = busy;
        response.set_content("Too many pages are open.\n", "text/plain");
        return;
    }
    const auto reader = std::make_shared<Reader>(m_feed, lastSeen(request));
    response.set_chunked_content_provider(
        "text/event-stream",
        [reader](size_t offset, httplib::DataSink &sink) {
            return (offset > 0 || reader->begin(sink)) && reader->go(sink);
        },
        [this](bool) { --m_readers; });
}
