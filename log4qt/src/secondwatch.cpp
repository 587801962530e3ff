// SPDX-License-Identifier: LGPL-2.1-or-later

#include "secondwatch.h"

namespace Log4Qt {
inline namespace zy {

namespace {

constexpr int millisecondsPerSecond = 1000;

// An empty TZ is UTC; without TZ the time zone of the machine applies. Usually TZ is not set, and all null
// arrays have the same address.
bool areEqual(const QByteArray &zone, const QByteArray &other)
{
    return zone.constData() == other.constData() || (zone == other && zone.isNull() == other.isNull());
}

} // namespace

bool SecondWatch::turned(qint64 timeStamp, const QByteArray &zone)
{
    if (m_hasSecond && sinceSecond(timeStamp) < millisecondsPerSecond && areEqual(zone, m_zone))
        return false;
    m_hasSecond = true;
    const qint64 milliseconds = timeStamp % millisecondsPerSecond;
    m_second =
        quint64(timeStamp) - quint64(milliseconds < 0 ? milliseconds + millisecondsPerSecond : milliseconds);
    m_zone = zone;
    return true;
}

} // namespace zy
} // namespace Log4Qt
