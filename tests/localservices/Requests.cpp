// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Requests.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

namespace {

constexpr int timeoutMs = 120000;
const QByteArray endOfHead = QByteArrayLiteral("\r\n\r\n");

} // namespace

Answer request(const QByteArray &method, const QUrl &url, const QByteArray &body, const QNetworkProxy &proxy)
{
    QNetworkAccessManager manager;
    manager.setProxy(proxy);
    QNetworkRequest request(url);
    if (!body.isEmpty())
        request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    QNetworkReply *const reply = manager.sendCustomRequest(request, method, body);
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(timeoutMs, reply, &QNetworkReply::abort);
    loop.exec();
    Answer answer;
    answer.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    answer.body = reply->readAll();
    for (const QByteArray &name : reply->rawHeaderList())
        answer.headers.insert(name.toLower(), reply->rawHeader(name));
    delete reply;
    return answer;
}

Answer rawRequest(const QUrl &url, const QByteArray &lines)
{
    QTcpSocket socket;
    socket.setProxy(QNetworkProxy::NoProxy);
    socket.connectToHost(url.host(), quint16(url.port()));
    socket.write(lines + "\r\n");
    while (socket.state() != QAbstractSocket::UnconnectedState && socket.waitForReadyRead(timeoutMs)) {}
    const QByteArray bytes = socket.readAll();
    const int head = bytes.indexOf(endOfHead);
    return {bytes.split(' ').value(1).toInt(), {}, bytes.mid(head + endOfHead.size())};
}

Answer sendRecord(const QUrl &statistics, const QByteArray &secret, const QByteArray &action)
{
    const QByteArray body = "{\"action\":\"" + action
                            + "\",\"day\":\"2026-11-20 17:05:09\",\"device_id\":\"device\",\"os\":\"linux\","
                              "\"product\":\"test\",\"qd\":\"home\",\"status\":\"end\",\"version\":\"1.0\"}";
    const QByteArray time = QByteArray::number(QDateTime::currentSecsSinceEpoch());
    const QByteArray signature =
        QCryptographicHash::hash(secret + "timestamp" + time + body + secret, QCryptographicHash::Md5)
            .toHex();
    QUrl url = statistics;
    url.setQuery(QStringLiteral("sign=%1&timestamp=%2")
                     .arg(QString::fromLatin1(signature), QString::fromLatin1(time)));
    return request("POST", url, body);
}

FeedReader::FeedReader(const QUrl &feed, const QByteArray &lastEventId)
{
    m_socket.setProxy(QNetworkProxy::NoProxy);
    m_socket.connectToHost(feed.host(), quint16(feed.port()));
    m_socket.write("GET " + feed.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority)
                   + " HTTP/1.1\r\nHost: " + feed.authority().toLatin1()
                   + (lastEventId.isEmpty() ? QByteArray() : "\r\nLast-Event-ID: " + lastEventId)
                   + "\r\n\r\n");
    m_socket.waitForBytesWritten(timeoutMs);
}

bool FeedReader::readMore()
{
    if (!m_socket.bytesAvailable() && !m_socket.waitForReadyRead(timeoutMs))
        return false;
    m_bytes += m_socket.readAll();
    return true;
}

QByteArray FeedReader::head()
{
    while (!m_bytes.contains(endOfHead) && readMore()) {}
    return m_bytes.left(m_bytes.indexOf(endOfHead));
}

QByteArray FeedReader::body() const
{
    QByteArray joined;
    int position = m_bytes.indexOf(endOfHead);
    if (position < 0)
        return joined;
    position += endOfHead.size();
    while (true) {
        const int lineEnd = m_bytes.indexOf("\r\n", position);
        const int size = lineEnd < 0 ? 0 : m_bytes.mid(position, lineEnd - position).toInt(nullptr, 16);
        if (size == 0 || m_bytes.size() < lineEnd + 2 + size)
            return joined;
        joined += m_bytes.mid(lineEnd + 2, size);
        position = lineEnd + 2 + size + 2;
    }
}

FeedReader::Event FeedReader::next()
{
    while (true) {
        const QByteArray all = body();
        const int end = all.indexOf("\n\n", m_position);
        if (end < 0) {
            if (!readMore())
                return {};
            continue;
        }
        Event event;
        for (const QByteArray &line : all.mid(m_position, end - m_position).split('\n')) {
            if (line.startsWith("id: "))
                event.id = line.mid(4);
            else if (line.startsWith("event: "))
                event.name = line.mid(7);
            else if (line.startsWith("data: "))
                event.data = line.mid(6);
        }
        m_position = end + 2;
        if (!event.data.isEmpty())
            return event;
    }
}

bool FeedReader::waitForEnd()
{
    while (m_socket.state() != QAbstractSocket::UnconnectedState && readMore()) {}
    return m_socket.state() == QAbstractSocket::UnconnectedState;
}
