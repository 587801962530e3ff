// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Arrival.h"

#include <memory>
#include <mutex>

struct sqlite3;

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
     * from it that earlier arrivals are removed.
     */
    void clear();

    /** Returns the newest @p limit arrivals after the id, in the order in which they came. */
    QList<Arrival> after(qint64 id, int limit) const;

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
