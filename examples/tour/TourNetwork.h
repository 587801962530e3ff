// SPDX-License-Identifier: 0BSD

#pragma once

#include <QList>
#include <QString>

#include <memory>

/**
 * Routes all requests of this process to services on 127.0.0.1 until it is destroyed. They are those of
 * scripts/local-services if the tour runs under it, otherwise services in this process.
 */
class TourNetwork
{
public:
    /** A request that a collector received. */
    struct Arrival
    {
        QString target;
        QString body;
        bool isGood; ///< passed the collector's validation
    };

    TourNetwork();
    ~TourNetwork();

    /** Returns the address for CGaReportManager::InitXdData(). */
    QString statisticsUrl() const;

    /** Returns the events that have arrived since this object was created. */
    QList<Arrival> events() const;

    /** Returns the records that have arrived since this object was created. */
    QList<Arrival> records() const;

private:
    Q_DISABLE_COPY(TourNetwork)
    class Services;
    class OwnServices;
    class SharedServices;

    std::unique_ptr<Services> m_services;
};
