// SPDX-License-Identifier: LGPL-2.1-or-later

#include "secondwatch.h"

namespace Log4Qt {
inline namespace zy {

bool SecondWatch::turned(qint64 timeStamp, const QByteArray &zone)
{
    const qint64 second = timeStamp / 1000 - (timeStamp % 1000 < 0 ? 1 : 0);
    // An empty TZ is UTC; without TZ the time zone of the machine applies.
    if (m_hasSecond && second == m_second && zone == m_zone && zone.isNull() == m_zone.isNull())
        return false;
    m_hasSecond = true;
    m_second = second;
    m_zone = zone;
    return true;
}

} // namespace zy
} // namespace Log4Qt
