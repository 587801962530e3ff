// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ArrivalStore.h"

#include <chrono>
#include <condition_variable>

/**
 * What arrives, as it arrives, for any number of readers that each know the last arrival they have seen.
 * Nothing is queued for a reader: the store has it all. All functions may be called from any thread.
 */
class ArrivalFeed
{
public:
    /** How many of those that it missed a reader is given at most. */
    static constexpr int newest = 500;

    /** How many came since the feed was made, and how many of them were good. */
    struct Counts
    {
        int events = 0;
        int goodEvents = 0;
        int records = 0;
        int goodRecords = 0;
    };

    explicit ArrivalFeed(ArrivalStore &store);

    /** Keeps it and wakes the readers. */
    void add(const Arrival &arrival);

    /** Removes all that came so far; the readers are told. */
    void clear();

    /** The arrivals behind the id; waits for one until the time has passed or the feed is stopped. */
    QList<Arrival> waitAfter(qint64 id, std::chrono::milliseconds time);

    /** The same without a wait. */
    QList<Arrival> after(qint64 id) const { return m_store.after(id, newest); }

    qint64 lastId() const { return m_store.lastId(); }
    Counts counts() const;

    /** From now on nobody waits. */
    void stop();
    bool isStopped() const;

    /** The arrival as one server-sent event: its id, its kind, and its JSON on one line. */
    static QByteArray toServerSentEvent(const Arrival &arrival);

private:
    Q_DISABLE_COPY(ArrivalFeed)

    void wakeReaders();
    void count(const Arrival &arrival);

    ArrivalStore &m_store;
    mutable std::mutex m_mutex;
    std::condition_variable m_change;
    quint64 m_changes = 0; ///< under m_mutex
    bool m_isStopped = false; ///< under m_mutex
    Counts m_counts; ///< under m_mutex
};
