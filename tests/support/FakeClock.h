// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QDateTime>
#include <QString>
#include <QTemporaryDir>

class HostProcess;

/** The time that a HostProcess sees: it stands still until the test moves it. */
class FakeClock
{
public:
    /** False where faketime isn't installed. */
    static bool isAvailable();

    explicit FakeClock(const QDateTime &now);

    /** Removes what faketime leaves in shared memory for processes that are gone. */
    ~FakeClock();

    /** To be called before the host is started. */
    void install(HostProcess *host) const;
    void set(const QDateTime &now);
    void advance(qint64 seconds);

private:
    Q_DISABLE_COPY(FakeClock)

    QTemporaryDir m_directory;
    QDateTime m_now;
};
