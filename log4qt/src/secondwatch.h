// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>

namespace Log4Qt {
inline namespace zy {

/**
 * Detects when a value that was computed from the local time is out of date.
 *
 * The C library checks the time zone file at every conversion to local time, which takes longer than
 * the rest of a log line. The offset of local time changes only at whole seconds or with the variable TZ.
 * One conversion per second therefore has the same results. Reentrant, not thread-safe.
 */
class SecondWatch
{
public:
    /**
     * Returns true if the second or the time zone differs from that of the previous call.
     *
     * @param timeStamp time in milliseconds since the epoch; negative before 1970
     * @param zone value of the variable TZ; null if it is not set
     * @return true at the first call
     */
    bool turned(qint64 timeStamp, const QByteArray &zone);

    /** Returns the milliseconds from the start of the second of the last call of turned() to @p timeStamp. */
    quint64 sinceSecond(qint64 timeStamp) const { return quint64(timeStamp) - m_second; }

private:
    bool m_hasSecond = false;
    quint64 m_second = 0; // Unsigned: differences do not overflow.
    QByteArray m_zone;
};

} // namespace zy
} // namespace Log4Qt
