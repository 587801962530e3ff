// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <localservices/Proxy.h>
#include <localservices/RawServer.h>

#include <QByteArray>
#include <QMap>
#include <QStringList>

#include <memory>

/**
 * While it lives, this process reaches no other host than those that the test makes up. A host that
 * isn't is down. Nobody trusts the certificates that they show.
 */
class World
{
public:
    World();
    ~World();

    /** From now on @p host answers with status 200 and @p body. */
    void answer(const char *host, const QByteArray &body);
    void answer(const char *host, const LocalServices::RawServer::Answer &answer);

    /** What was sent to @p host since its last answer(), each as it stood on the wire. */
    QList<QByteArray> requests(const char *host) const;

    /** What the process asked for first, such as "CONNECT host:443 HTTP/1.1", in its order. */
    QStringList asked() const { return m_proxy->requestLines(); }

private:
    Q_DISABLE_COPY(World)

    LocalServices::Authority m_authority;
    std::unique_ptr<LocalServices::Proxy> m_proxy;
    QMap<QByteArray, std::shared_ptr<LocalServices::RawServer>> m_hosts;
};
