// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QDateTime>
#include <QString>
#include <QTemporaryDir>

class HostProcess;

/** The clock of a HostProcess. The time changes only by set() and advance(). */
class FakeClock
{
public:
    /** Returns false if faketime is not installed. */
    static bool isAvailable();

    explicit FakeClock(const QDateTime &now);

    /** Removes the shared memory that faketime created for processes that have ended. */
    ~FakeClock();

    /** Makes the process use this clock. Call it before the process is started. */
    void install(HostProcess *host) const;
    void set(const QDateTime &now);
    void advance(qint64 seconds);

private:
    Q_DISABLE_COPY(FakeClock)

    QTemporaryDir m_directory;
    QDateTime m_now;
};
