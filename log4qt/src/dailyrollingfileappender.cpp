// SPDX-License-Identifier: LGPL-2.1-or-later

#include <log4qt/dailyrollingfileappender.h>

#include "errorstream.h"
#include "rolloverperiod.h"
#include "secondwatch.h"

#include <log4qt/loggingevent.h>

#include <QDateTime>
#include <QFile>

#include <cstdio>

namespace Log4Qt {
inline namespace zy {

namespace {

constexpr qint64 msecsPerSecond = 1000;

QString toPattern(DailyRollingFileAppender::DatePattern datePattern)
{
    switch (datePattern) {
    case DailyRollingFileAppender::MINUTELY_ROLLOVER:
        return QStringLiteral("'.'yyyy-MM-dd-hh-mm");
    case DailyRollingFileAppender::HOURLY_ROLLOVER:
        return QStringLiteral("'.'yyyy-MM-dd-hh");
    case DailyRollingFileAppender::HALFDAILY_ROLLOVER:
        return QStringLiteral("'.'yyyy-MM-dd-a");
    case DailyRollingFileAppender::DAILY_ROLLOVER:
        break;
    case DailyRollingFileAppender::WEEKLY_ROLLOVER:
        return QStringLiteral("'.'yyyy-ww");
    case DailyRollingFileAppender::MONTHLY_ROLLOVER:
        return QStringLiteral("'.'yyyy-MM");
    }
    return QStringLiteral("'.'yyyy-MM-dd");
}

QDateTime fromWallTime(qint64 wallTime)
{
    return QDateTime::fromMSecsSinceEpoch(wallTime, Qt::UTC);
}

// Replaces an existing file, unlike QFile::rename(). Changes neither file if it fails.
bool replaceFile(const QString &from, const QString &to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace

DailyRollingFileAppender::DailyRollingFileAppender(QObject *parent)
    : FileAppender(parent)
    , m_datePattern(toPattern(DAILY_ROLLOVER))
    , m_watch(std::make_unique<SecondWatch>())
{
}

DailyRollingFileAppender::~DailyRollingFileAppender() = default;

QString DailyRollingFileAppender::datePattern() const
{
    const Lock lock(m_mutex);
    return m_datePattern;
}

void DailyRollingFileAppender::setDatePattern(DatePattern datePattern)
{
    setDatePattern(toPattern(datePattern));
}

void DailyRollingFileAppender::setDatePattern(const QString &datePattern)
{
    const Lock lock(m_mutex);
    m_datePattern = datePattern;
}

void DailyRollingFileAppender::activateOptions()
{
    const Lock lock(m_mutex);
    m_period = std::make_unique<RollOverPeriod>(m_datePattern);
    if (!m_period->isValid()) {
        reportError(
            QStringLiteral("appender '%1': the date pattern '%2' has no period").arg(name(), m_datePattern));
        return;
    }
    enterPeriod(wallTime(qgetenv("TZ")));
    FileAppender::activateOptions();
}

void DailyRollingFileAppender::append(const LoggingEvent &event)
{
    const qint64 now = wallTime(event.timeZone());
    if (now > m_periodEnd)
        rollOver(now);
    FileAppender::append(event);
}

void DailyRollingFileAppender::enterPeriod(qint64 wallTime)
{
    const QDateTime time = fromWallTime(wallTime);
    m_periodEnd = m_period->next(time).toMSecsSinceEpoch();
    m_suffix = m_period->suffix(time);
}

void DailyRollingFileAppender::rollOver(qint64 wallTime)
{
    const QString finished = file() + m_suffix;
    enterPeriod(wallTime);
    closeFile();
    if (!replaceFile(file(), finished))
        reportError(QStringLiteral("appender '%1' can't rename '%2' to '%3'").arg(name(), file(), finished));
    // FileAppender::append() opens the file again, and continues a file that could not be renamed.
}

qint64 DailyRollingFileAppender::wallTime(const QByteArray &zone)
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    if (m_watch->turned(now, zone))
        m_wallOffset = QDateTime::fromMSecsSinceEpoch(now).offsetFromUtc() * msecsPerSecond;
    return now + m_wallOffset;
}

} // namespace zy
} // namespace Log4Qt
