// SPDX-License-Identifier: LGPL-2.1-or-later

#include "timestampformat.h"

#include <log4qt/loggingevent.h>

#include <QDateTime>

namespace Log4Qt {
inline namespace zy {

namespace {

QString toPattern(const QString &dateFormat)
{
    if (dateFormat == QLatin1String("NONE"))
        return QString();
    if (dateFormat == QLatin1String("ISO8601"))
        return QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz");
    if (dateFormat == QLatin1String("ABSOLUTE"))
        return QStringLiteral("HH:mm:ss.zzz");
    if (dateFormat == QLatin1String("DATE"))
        return QStringLiteral("dd MMM yyyy HH:mm:ss.zzz");
    return dateFormat;
}

} // namespace

TimestampFormat::TimestampFormat(const QString &dateFormat)
    : m_isRelative(dateFormat == QLatin1String("RELATIVE"))
    , m_pattern(toPattern(dateFormat))
{
    const QLatin1String milliseconds("zzz");
    const QLatin1Char quote('\'');
    const QLatin1Char letter('z');
    // With the milliseconds nowhere but at the end, the text before them holds for a whole second.
    m_endsInMilliseconds =
        m_pattern.endsWith(milliseconds) && m_pattern.count(letter) == 3 && !m_pattern.contains(quote);
    if (m_endsInMilliseconds)
        m_pattern.chop(milliseconds.size());
}

void TimestampFormat::append(QString *text, const LoggingEvent &event)
{
    const qint64 timeStamp = event.timeStamp();
    if (m_isRelative) {
        *text += QString::number(timeStamp - LoggingEvent::startTime());
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

void TimestampFormat::appendMilliseconds(QString *text, qint64 timeStamp) const
{
    const auto digit = [](qint64 value) { return QLatin1Char(char('0' + value % 10)); };
    const qint64 milliseconds = timeStamp % 1000;
    *text += digit(milliseconds / 100);
    *text += digit(milliseconds / 10);
    *text += digit(milliseconds);
}

} // namespace zy
} // namespace Log4Qt
