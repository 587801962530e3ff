// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>

namespace Log4Qt {
inline namespace zy {

/**
 * Tells when what was worked out from the local time must be worked out anew.
 *
 * The C library looks at the zone file for every local time that it is asked for, which takes longer
 * than all the rest of a log line. The offset of local time changes at whole seconds only, or with
 * the variable TZ, so one question a second gives the same answers. Not safe for threads.
 */
class SecondWatch
{
public:
    /** True when @p timeStamp (ms since the epoch) lies in another second or @p zone (TZ) differs since the
     * last call. */
    bool turned(qint64 timeStamp, const QByteArray &zone);

private:
    qint64 m_second = -1;
    QByteArray m_zone;
};

} // namespace zy
} // namespace Log4Qt
