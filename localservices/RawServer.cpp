// SPDX-License-Identifier: LGPL-2.1-or-later

#include "RawServer.h"

#include "Http.h"

namespace LocalServices {

RawServer::Answer RawServer::answerWith(const QByteArray &body)
{
    return [body](Connection &client) {
        client.write("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: "
                     + QByteArray::number(body.size()) + "\r\n\r\n" + body);
    };
}

RawServer::RawServer(Answer answer, const Certificate &certificate)
    : m_scheme(certificate.certificate.isEmpty() ? QStringLiteral("http") : QStringLiteral("https"))
    , m_listener(
          [this, answer = std::move(answer)](Connection &client) {
              QByteArray request;
              if (!readRequest(client, &request))
                  return;
              {
                  const std::lock_guard<std::mutex> lock(m_mutex);
                  m_requests.append(request);
              }
              answer(client);
          },
          certificate)
{
}

QUrl RawServer::url(const QString &pathAndQuery) const
{
    return QUrl(QStringLiteral("%1://127.0.0.1:%2%3").arg(m_scheme).arg(m_listener.port()).arg(pathAndQuery));
}

QList<QByteArray> RawServer::requests() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

} // namespace LocalServices
