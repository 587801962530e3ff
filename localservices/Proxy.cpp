// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Proxy.h"

#include "Http.h"
#include "HttpStatus.h"
#include "Tls.h"

#include <QHostAddress>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace LocalServices {

namespace {

constexpr int noPort = 0;
constexpr int httpPort = 80;

bool isLoopback(const QUrl &target)
{
    return QHostAddress(target.host()).isLoopback();
}

// Copies the bytes that are available. Returns false at the end of the connection.
bool copy(Connection &from, Connection &to)
{
    char buffer[16384];
    const qint64 size = from.read(buffer, sizeof(buffer));
    return size > 0 && to.write(buffer, size);
}

// Copies bytes in both directions until either side closes the connection.
void relay(Connection &client, Connection &server)
{
    while (true) {
        pollfd sockets[] {{client.socket(), POLLIN, 0}, {server.socket(), POLLIN, 0}};
        constexpr int forever = -1;
        if (!client.hasPending() && ::poll(sockets, 2, forever) < 0 && errno != EINTR)
            return;
        if ((client.hasPending() || sockets[0].revents) && !copy(client, server))
            return;
        if (sockets[1].revents && !copy(server, client))
            return;
    }
}

// "GET http://host/path HTTP/1.1" becomes "GET /path HTTP/1.1", without the header for proxies.
QByteArray inOriginForm(const QByteArray &request)
{
    const int target = request.indexOf(' ') + 1;
    const int path = request.indexOf('/', request.indexOf("://", target) + 3);
    QByteArray rewritten = request.left(target) + request.mid(path);
    const int header = rewritten.indexOf("\r\nProxy-Connection:");
    if (header >= 0)
        rewritten.remove(header, rewritten.indexOf("\r\n", header + 2) - header);
    return rewritten;
}

} // namespace

Proxy::Proxy(const Authority &authority)
    : Proxy([&authority](const QString &host) { return authority.issue(host); })
{
}

Proxy::Proxy(Issue issue)
    : m_issue(std::move(issue))
    , m_listener([this](Connection &client) { handle(client); })
{
}

void Proxy::route(const QString &host, const QUrl &server)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_ports.insert(host.toLower(), server.port());
}

QStringList Proxy::requestLines() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requestLines;
}

int Proxy::portFor(const QUrl &target) const
{
    if (isLoopback(target))
        return target.port(httpPort);
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_ports.value(target.host(), m_ports.value(QString(), noPort));
}

void Proxy::handle(Connection &client)
{
    QByteArray received;
    const std::optional<HttpRequest> request = readRequest(client, &received);
    if (!request)
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_requestLines << QString::fromLatin1(received.left(received.indexOf("\r\n")));
    }
    pause().unlock(); // waits until there is no pause
    const bool isTunnel = request->method == "CONNECT";
    const QString address = QString::fromLatin1(request->target);
    const QUrl target(isTunnel ? QLatin1String("//") + address : address);
    const int socket = connectToLoopback(portFor(target));
    if (socket < 0) {
        writeResponse(client, *request, {HttpStatus::BadGateway, {}});
        return;
    }
    Connection server(socket, nullptr);
    if (isTunnel ? startTunnel(client, target) : server.write(inOriginForm(received)))
        relay(client, server);
}

bool Proxy::startTunnel(Connection &client, const QUrl &target) const
{
    return client.write("HTTP/1.1 200 Connection established\r\n\r\n")
           && (isLoopback(target) || client.acceptTls(createTls(m_issue(target.host())).get()));
}

} // namespace LocalServices
