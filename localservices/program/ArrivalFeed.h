// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ArrivalStore.h"

#include <chrono>
#include <condition_variable>

/**
 * Reports arrivals to any number of readers. A reader passes the id of its last arrival and receives the
 * later ones from the store; there are no queues. All functions are thread-safe.
 */
class ArrivalFeed
{
public:
    /** The numbers of arrivals since the feed was created, all and good ones. */
    struct Counts
    {
        int events = 0;
        int goodEvents = 0;
        int records = 0;
        int goodRecords = 0;
    };

    explicit ArrivalFeed(ArrivalStore &store);

    /** Stores the arrival and wakes the readers. */
    void add(const Arrival &arrival);

    /** Removes all arrivals and wakes the readers. Returns false if they cannot be removed. */
    bool clear();

    /**
     * Returns the arrivals that the query selects. If there are none, waits for one, for @p time at most or
     * until stop().
     */
    QList<Arrival> waitFor(const ArrivalQuery &query, std::chrono::milliseconds time);

    /** Returns the arrivals that the query selects without waiting. */
    QList<Arrival> find(const ArrivalQuery &query) const { return m_store.find(query); }

    qint64 lastId() const { return m_store.lastId(); }
    Counts counts() const;

    /** Ends all waits, the present ones and later ones. */
    void stop();
    bool isStopped() const;

    /** Returns the arrival as one server-sent event: its id, its kind, and its JSON on one line. */
    static QByteArray toServerSentEvent(const Arrival &arrival);

private:
    Q_DISABLE_COPY(ArrivalFeed)

    void wakeReaders();
    void count(const Arrival &arrival);

    ArrivalStore &m_store;
    mutable std::mutex m_mutex;
    std::condition_variable m_change;
    quint64 m_changes = 0; ///< guarded by m_mutex
    bool m_isStopped = false; ///< guarded by m_mutex
    Counts m_counts; ///< guarded by m_mutex
};
