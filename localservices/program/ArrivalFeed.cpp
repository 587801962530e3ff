// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ArrivalFeed.h"

#include <QJsonDocument>

ArrivalFeed::ArrivalFeed(ArrivalStore &store)
    : m_store(store)
{
}

void ArrivalFeed::add(const Arrival &arrival)
{
    if (m_store.add(arrival) == 0)
        qWarning("local-services: an arrival cannot be stored in the database");
    count(arrival);
    wakeReaders();
}

bool ArrivalFeed::clear()
{
    const bool isCleared = m_store.clear();
    wakeReaders();
    return isCleared;
}

void ArrivalFeed::count(const Arrival &arrival)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const bool isEvent = arrival.kind == Arrival::event();
    ++(isEvent ? m_counts.events : m_counts.records);
    if (arrival.isGood())
        ++(isEvent ? m_counts.goodEvents : m_counts.goodRecords);
}

void ArrivalFeed::wakeReaders()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_changes;
    m_change.notify_all();
}

QList<Arrival> ArrivalFeed::waitFor(const ArrivalQuery &query, std::chrono::milliseconds time)
{
    const auto deadline = std::chrono::steady_clock::now() + time;
    std::unique_lock<std::mutex> lock(m_mutex);
    bool hasChanged = true;
    while (hasChanged && !m_isStopped) {
        const quint64 changes = m_changes;
        lock.unlock();
        const QList<Arrival> found = find(query);
        if (!found.isEmpty())
            return found;
        // An arrival after the query above has changed the number.
        lock.lock();
        hasChanged = m_change.wait_until(lock, deadline, [&] { return m_changes != changes || m_isStopped; });
    }
    return {};
}

ArrivalFeed::Counts ArrivalFeed::counts() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_counts;
}

void ArrivalFeed::stop()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isStopped = true;
    m_change.notify_all();
}

bool ArrivalFeed::isStopped() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_isStopped;
}

QByteArray ArrivalFeed::toServerSentEvent(const Arrival &arrival)
{
    return "id: " + QByteArray::number(arrival.id) + "\nevent: " + arrival.kind.toLatin1()
           + "\ndata: " + QJsonDocument(arrival.toJson()).toJson(QJsonDocument::Compact) + "\n\n";
}
