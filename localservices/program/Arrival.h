// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <localservices/GaCollector.h>
#include <localservices/StatisticsBackend.h>

#include <QJsonObject>

/** One thing that a host sent to a collector, and what the collector says of it. */
struct Arrival
{
    /** What stands in a list in the place of all that was cleared from it. */
    static QString cleared() { return QStringLiteral("cleared"); }
    static QString event() { return QStringLiteral("event"); }
    static QString record() { return QStringLiteral("record"); }

    qint64 id = 0; ///< grows with each arrival and is never used again; 0 before it is kept
    QString kind;
    QString time; ///< ISO 8601 in UTC, with milliseconds
    QString name; ///< of the event, or the action of the record
    QString detail; ///< category and label of the event, or the status of the record
    LocalServices::HttpServer::Request request;
    QString signature; ///< "good", or "bad: " and why; empty for what is never signed
    QStringList problems; ///< what else the collector finds

    static Arrival of(const LocalServices::GaCollector::Event &event);
    static Arrival of(const LocalServices::StatisticsBackend::Record &record);

    bool isGood() const;

    QJsonObject toJson() const;
};
