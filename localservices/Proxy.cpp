// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Proxy.h"

#include "Tls.h"

#include <QHostAddress>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace LocalServices {

namespace {

constexpr int nowhere = 0;
constexpr int httpPort = 80;

const QByteArray connectMethod = QByteArrayLiteral("CONNECT");
const QByteArray established = QByteArrayLiteral("HTTP/1.1 200 Connection established\r\n\r\n");
const QByteArray badGateway = QByteArrayLiteral("HTTP/1.1 502 Bad Gateway\r\nContent-Length: 0\r\n"
                                                "Connection: close\r\n\r\n");

bool isLoopback(const QUrl &target)
{
    return QHostAddress(target.host()).isLoopback();
}

int connectTo(int port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(quint16(port));
    if (::connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0)
        return socket;
    ::close(socket);
    return -1;
}

// False when there is nothing more to come.
bool pass(Connection &from, Connection &to)
{
    char buffer[16384];
    const qint64 size = from.read(buffer, sizeof(buffer));
    return size > 0 && to.write(buffer, size);
}

// Passes bytes on in both directions until either side closes.
void relay(Connection &client, Connection &standIn)
{
    while (true) {
        pollfd sockets[] {{client.socket(), POLLIN, 0}, {standIn.socket(), POLLIN, 0}};
        constexpr int forEver = -1;
        if (!client.hasPending() && ::poll(sockets, 2, forEver) < 0 && errno != EINTR)
            return;
        if ((client.hasPending() || sockets[0].revents) && !pass(client, standIn))
            return;
        if (sockets[1].revents && !pass(standIn, client))
            return;
    }
}

// "GET http://host/path HTTP/1.1" becomes "GET /path HTTP/1.1", and the header for proxies goes.
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
    , m_listener([this](Connection &client) { serve(client); })
{
}

void Proxy::route(const QString &host, const QUrl &standIn)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_ports.insert(host.toLower(), standIn.port());
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
    return m_ports.value(target.host(), m_ports.value(QString(), nowhere));
}

void Proxy::serve(Connection &client)
{
    const QByteArray request = client.readRequest();
    if (request.isEmpty())
        return;
    const QByteArray line = request.left(request.indexOf("\r\n"));
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_requestLines << QString::fromLatin1(line);
    }
    const QList<QByteArray> words = line.split(' ');
    const QString asked = QString::fromLatin1(words.value(1));
    if (words.first() == connectMethod)
        tunnel(client, QUrl(QLatin1String("//") + asked));
    else
        forward(client, request, QUrl(asked));
}

void Proxy::tunnel(Connection &client, const QUrl &target)
{
    const int socket = connectTo(portFor(target));
    if (socket < 0) {
        client.write(badGateway);
        return;
    }
    Connection standIn(socket, nullptr);
    if (!client.write(established))
        return;
    if (!isLoopback(target) && !client.acceptTls(createTls(m_issue(target.host())).get()))
        return;
    relay(client, standIn);
}

void Proxy::forward(Connection &client, const QByteArray &request, const QUrl &target)
{
    const int socket = connectTo(portFor(target));
    if (socket < 0) {
        client.write(badGateway);
        return;
    }
    Connection standIn(socket, nullptr);
    if (standIn.write(inOriginForm(request)))
        relay(client, standIn);
}

} // namespace LocalServices
