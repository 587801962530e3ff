// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <localservices/GaCollector.h>
#include <localservices/StatisticsBackend.h>

#include <QJsonObject>

/** One event or record that an application sent to a collector, and the result of its validation. */
struct Arrival
{
    /** The kind of the entry that replaces all arrivals when the list is cleared. */
    static QString cleared() { return QStringLiteral("cleared"); }
    static QString event() { return QStringLiteral("event"); }
    static QString record() { return QStringLiteral("record"); }

    qint64 id = 0; ///< increases with each arrival and is never reused; 0 before the arrival is stored
    QString kind;
    QString time; ///< ISO 8601 in UTC, with milliseconds
    QString name; ///< of the event, or the action of the record
    QString detail; ///< category and label of the event, or the status of the record
    LocalServices::HttpServer::Request request;
    QString signature; ///< "good", or "bad: " and the reason; empty for events, which have no signature
    QStringList problems; ///< further problems found by the collector

    static Arrival of(const LocalServices::GaCollector::Event &event);
    static Arrival of(const LocalServices::StatisticsBackend::Record &record);

    bool isGood() const;

    QJsonObject toJson() const;
};
