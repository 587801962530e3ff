// SPDX-License-Identifier: LGPL-2.1-or-later

#include "timestampformat.h"

#include <log4qt/loggingevent.h>

#include <QDateTime>

#include <limits>

namespace Log4Qt {
inline namespace zy {

namespace {

QString toPattern(const QString &dateFormat)
{
    if (dateFormat == QLatin1String("NONE"))
        return QString();
    if (dateFormat == QLatin1String("ISO8601") || dateFormat.isEmpty())
        return QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz");
    if (dateFormat == QLatin1String("ABSOLUTE"))
        return QStringLiteral("HH:mm:ss.zzz");
    if (dateFormat == QLatin1String("DATE"))
        return QStringLiteral("dd MM yyyy HH:mm:ss.zzz");
    return dateFormat;
}

// The result is limited to the range of qint64.
qint64 millisecondsBetween(qint64 start, qint64 end)
{
    qint64 difference = 0;
    if (!__builtin_sub_overflow(end, start, &difference))
        return difference;
    return end < start ? std::numeric_limits<qint64>::min() : std::numeric_limits<qint64>::max();
}

void appendMilliseconds(QString *text, qint64 timeStamp)
{
    const qint64 remainder = timeStamp % 1000;
    const qint64 milliseconds = remainder < 0 ? remainder + 1000 : remainder;
    for (const qint64 divisor : {100, 10, 1})
        *text += QLatin1Char(char('0' + milliseconds / divisor % 10));
}

} // namespace

TimestampFormat::TimestampFormat(const QString &dateFormat)
    : m_isRelative(dateFormat == QLatin1String("RELATIVE"))
    , m_pattern(toPattern(dateFormat))
{
    const QLatin1String milliseconds("zzz");
    const QLatin1Char quote('\'');
    // If the milliseconds are only at the end, the string before them is the same for a whole second.
    m_endsInMilliseconds = m_pattern.endsWith(milliseconds) && m_pattern.count(QLatin1Char('z')) == 3
                           && !m_pattern.contains(quote);
    if (m_endsInMilliseconds)
        m_pattern.chop(milliseconds.size());
}

void TimestampFormat::append(QString *text, const LoggingEvent &event)
{
    const qint64 timeStamp = event.timeStamp();
    if (m_isRelative) {
        *text += QString::number(millisecondsBetween(LoggingEvent::startTime(), timeStamp));
        return;
    }
    if (m_pattern.isEmpty() && !m_endsInMilliseconds)
        return;
    if (m_watch.turned(timeStamp, event.timeZone()) || !m_endsInMilliseconds)
        m_second = QDateTime::fromMSecsSinceEpoch(timeStamp).toString(m_pattern);
    *text += m_second;
    if (m_endsInMilliseconds)
        appendMilliseconds(text, timeStamp);
}

} // namespace zy
} // namespace Log4Qt
