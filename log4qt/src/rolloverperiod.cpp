// SPDX-License-Identifier: LGPL-2.1-or-later

#include "rolloverperiod.h"

namespace Log4Qt {
inline namespace zy {

namespace {

constexpr int hoursPerHalfDay = 12;
constexpr qint64 secondsPerMinute = 60;
constexpr qint64 secondsPerHour = 3600;

} // namespace

RollOverPeriod::RollOverPeriod(const QString &pattern)
    : m_pattern(pattern)
{
    // The sample is the start of a month, a week and a day, so each period ends at its own end only.
    const QDateTime sample(QDate(1999, 2, 1), QTime(0, 0), Qt::UTC);
    for (const Length length : {Minute, Hour, HalfDay, Day, Week, Month}) {
        m_length = length;
        if (format(next(sample)) != format(sample))
            return;
    }
    m_length = Never;
}

QDateTime RollOverPeriod::start(const QDateTime &time) const
{
    const QDate date = time.date();
    const int hour = time.time().hour();
    const auto at = [](const QDate &day, int hours, int minutes = 0) {
        return QDateTime(day, QTime(hours, minutes), Qt::UTC);
    };
    switch (m_length) {
    case Minute:
        return at(date, hour, time.time().minute());
    case Hour:
        return at(date, hour);
    case HalfDay:
        return at(date, hour - hour % hoursPerHalfDay);
    case Week:
        return at(date.addDays(1 - date.dayOfWeek()), 0);
    case Month:
        return at(QDate(date.year(), date.month(), 1), 0);
    case Day:
    case Never:
        break;
    }
    return at(date, 0);
}

QDateTime RollOverPeriod::next(const QDateTime &time) const
{
    const QDateTime begin = start(time);
    switch (m_length) {
    case Minute:
        return begin.addSecs(secondsPerMinute);
    case Hour:
        return begin.addSecs(secondsPerHour);
    case HalfDay:
        return begin.addSecs(hoursPerHalfDay * secondsPerHour);
    case Week:
        return begin.addDays(7);
    case Month:
        return begin.addMonths(1);
    case Day:
    case Never:
        break;
    }
    return begin.addDays(1);
}

QString RollOverPeriod::suffix(const QDateTime &time) const
{
    const QDateTime begin = start(time);
    // A week is numbered in the year of its Thursday, as ISO 8601 counts.
    return format(m_length == Week ? begin.addDays(Qt::Thursday - Qt::Monday) : begin);
}

QString RollOverPeriod::format(const QDateTime &time) const
{
    // QDateTime::toString() has no week numbers.
    const QString week = QStringLiteral("%1").arg(time.date().weekNumber(), 2, 10, QLatin1Char('0'));
    QString pattern = m_pattern;
    pattern.replace(QLatin1String("ww"), week);
    return time.toString(pattern);
}

} // namespace zy
} // namespace Log4Qt
