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

// Replaces the three digits at the end of the string.
void setMilliseconds(QString *text, int milliseconds)
{
    QChar *const end = text->data() + text->size();
    end[-1] = QLatin1Char(char('0' + milliseconds % 10));
    end[-2] = QLatin1Char(char('0' + milliseconds / 10 % 10));
    end[-3] = QLatin1Char(char('0' + milliseconds / 100));
}

} // namespace

TimestampFormat::TimestampFormat(const QString &dateFormat)
    : m_isRelative(dateFormat == QLatin1String("RELATIVE"))
    , m_pattern(toPattern(dateFormat))
    // If the milliseconds are only at the end, the rest of the string is the same for a whole second.
    , m_endsInMilliseconds(m_pattern.endsWith(QLatin1String("zzz")) && m_pattern.count(QLatin1Char('z')) == 3
                           && !m_pattern.contains(QLatin1Char('\'')))
{
}

void TimestampFormat::append(QString *text, const LoggingEvent &event)
{
    const qint64 timeStamp = event.timeStamp();
    if (m_isRelative) {
        *text += QString::number(millisecondsBetween(LoggingEvent::startTime(), timeStamp));
        return;
    }
    if (m_pattern.isEmpty())
        return;
    // Qt has an empty string for some of the earliest times.
    if (m_watch.turned(timeStamp, event.timeZone()) || !m_endsInMilliseconds || m_time.isEmpty())
        m_time = QDateTime::fromMSecsSinceEpoch(timeStamp).toString(m_pattern);
    else
        setMilliseconds(&m_time, int(m_watch.sinceSecond(timeStamp)));
    *text += m_time;
}

} // namespace zy
} // namespace Log4Qt
