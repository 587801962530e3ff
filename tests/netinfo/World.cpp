// SPDX-License-Identifier: LGPL-2.1-or-later

#include "World.h"

#include "Files.h"

#include <QDir>
#include <QElapsedTimer>
#include <QNetworkProxy>
#include <QThread>

using LocalServices::Proxy;
using LocalServices::RawServer;

namespace {

bool areRequestsUnderWay()
{
    const QDir threads(QStringLiteral("/proc/self/task"));
    const QStringList identifiers = threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &identifier : identifiers) {
        if (readFile(threads.filePath(identifier + QStringLiteral("/comm"))).startsWith("QNetworkAccess"))
            return true;
    }
    return false;
}

// Qt ends the threads of its requests by and by; what they hold would look lost at the process' end.
void waitForRequests()
{
    constexpr int patience = 5000;
    QElapsedTimer timer;
    timer.start();
    while (areRequestsUnderWay() && timer.elapsed() < patience)
        QThread::msleep(1);
}

} // namespace

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
    waitForRequests();
}

void World::answer(const char *host, const QByteArray &body)
{
    answer(host, RawServer::answerWith(body));
}

void World::answer(const char *host, const RawServer::Answer &answer)
{
    const auto server = std::make_shared<RawServer>(answer);
    m_proxy->route(QString::fromLatin1(host), server->url());
    m_hosts.insert(host, server);
}

QList<QByteArray> World::requests(const char *host) const
{
    const std::shared_ptr<RawServer> server = m_hosts.value(host);
    return server ? server->requests() : QList<QByteArray>();
}
