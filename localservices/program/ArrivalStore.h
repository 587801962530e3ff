// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Arrival.h"

#include <memory>
#include <mutex>

struct sqlite3;

/**
 * Keeps arrivals in an SQLite file, beyond the end of the process: table "arrivals", one row each, with
 * headers and problems as JSON texts. All functions may be called from any thread.
 */
class ArrivalStore
{
public:
    explicit ArrivalStore(const QString &path);
    ~ArrivalStore();

    /** Empty, or why the file can't be used. */
    QString error() const;

    /** @return its id; 0 where it can't be kept */
    qint64 add(const Arrival &arrival);

    /**
     * Removes all, and leaves one arrival of the kind "cleared" in their place: whoever reads on behind an
     * id learns that way that what came before is gone.
     */
    void clear();

    /** The newest @p limit arrivals behind the id, the oldest of them first. */
    QList<Arrival> after(qint64 id, int limit) const;

    /** The newest id; 0 for none. */
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
    std::unique_ptr<sqlite3, Close> m_database; ///< under m_mutex
    QString m_error;
};
