// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QList>
#include <QNetworkProxy>
#include <QSslConfiguration>
#include <QString>

#include <memory>

/**
 * While it lives, this process meets stand-ins on 127.0.0.1 where it asks for services in the world: those
 * of scripts/local-services where the tour runs under it, and else a set of its own.
 */
class World
{
public:
    /** What a collector got, and whether it found it good. */
    struct Sent
    {
        QString target;
        QString body;
        bool isGood;
    };

    World();
    ~World();

    /** The address for CGaReportManager::InitXdData. */
    QString statistics() const;

    /** What has arrived since the world was made. */
    QList<Sent> events() const;
    QList<Sent> records() const;

private:
    Q_DISABLE_COPY(World)
    class Services;
    class OwnServices;
    class LedServices;

    const QNetworkProxy m_previousProxy;
    const QSslConfiguration m_previousConfiguration;
    std::unique_ptr<Services> m_services;
};
