// SPDX-License-Identifier: LGPL-2.1-or-later

#include "World.h"

#include <QNetworkProxy>

using LocalServices::Proxy;
using LocalServices::RawServer;

World::World()
    : m_proxy(std::make_unique<Proxy>(m_authority))
{
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), m_proxy->port()));
}

World::~World()
{
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    m_proxy.reset(); // with its connections, before the hosts that they lead to
}

void World::answer(const char *host, const QByteArray &body)
{
    answer(host, RawServer::answerWith(body));
}

void World::answer(const char *host, const RawServer::Answer &answer)
{
    const auto server = std::make_shared<RawServer>(answer);
    m_proxy->lead(QString::fromLatin1(host), server->url());
    m_hosts.insert(host, server);
}

QList<QByteArray> World::requests(const char *host) const
{
    const std::shared_ptr<RawServer> server = m_hosts.value(host);
    return server ? server->requests() : QList<QByteArray>();
}
