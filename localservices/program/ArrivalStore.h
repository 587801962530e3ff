// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Arrival.h"

#include <limits>
#include <memory>
#include <mutex>

struct sqlite3;

/** Which arrivals to return: the newest of those that meet all conditions. */
struct ArrivalQuery
{
    static constexpr int maximumLimit = 500; ///< that the page server accepts

    qint64 after = 0; ///< only arrivals with a larger id
    int limit = maximumLimit; ///< the maximum number of arrivals
    qint64 before = std::numeric_limits<qint64>::max(); ///< only arrivals with a smaller id
    QString kind = {}; ///< "event", "record", or "problem" for those that are not good; empty for all
    QString text = {}; ///< part of a field; upper and lower case of ASCII letters are the same
};

/**
 * Stores arrivals in an SQLite file, where the next run finds them. The table "arrivals" has one row for
 * each; headers and problems are JSON arrays. All functions are thread-safe.
 */
class ArrivalStore
{
public:
    explicit ArrivalStore(const QString &path);
    ~ArrivalStore();

    /** Returns why the file cannot be used, or an empty string if it can. */
    QString error() const;

    /** Stores the arrival. Returns its id, or 0 after a failure. */
    qint64 add(const Arrival &arrival);

    /**
     * Removes all arrivals and adds one of the kind "cleared". A reader that continues after an id learns
     * from it that earlier arrivals are removed. Returns false after a failure; nothing is removed then.
     */
    bool clear();

    /**
     * Returns the arrivals in the order in which they came. The kind "cleared" meets every condition except
     * those of the id.
     */
    QList<Arrival> find(const ArrivalQuery &query) const;

    /** Returns the newest id, or 0 if there was no arrival yet. */
    qint64 lastId() const;

private:
    Q_DISABLE_COPY(ArrivalStore)

    struct Close
    {
        void operator()(sqlite3 *database) const;
    };

    bool run(const char *statement);
    qint64 insert(const Arrival &arrival);

    mutable std::mutex m_mutex;
    std::unique_ptr<sqlite3, Close> m_database; ///< guarded by m_mutex
    QString m_error;
};
