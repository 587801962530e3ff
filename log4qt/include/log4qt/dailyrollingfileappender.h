// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "fileappender.h"

#include <memory>

namespace Log4Qt {
inline namespace zy {

class RollOverPeriod;
class SecondWatch;

/**
 * Writes to a file and starts a new one at the first event of each period.
 *
 * The finished file is renamed: its name gets a suffix, for example ".2026-11". Periods are those of the
 * local wall clock. The first period is the one in which activateOptions() is called: a file that remains
 * from an earlier period is continued.
 *
 * If a file with the new name of the finished file exists, it is replaced.
 *
 * **Threads.** All functions are thread-safe.
 *
 * **Failures.** If the finished file cannot be renamed, it is continued, and an error line is written to the
 * standard error stream. If the new file cannot be opened, events are dropped as described in FileAppender.
 *
 * @since 0.1.0
 */
class LOG4QT_EXPORT DailyRollingFileAppender : public FileAppender
{
    Q_OBJECT

public:
    /** Usual periods. */
    enum DatePattern {
        MINUTELY_ROLLOVER = 0, ///< suffix "'.'yyyy-MM-dd-hh-mm"
        HOURLY_ROLLOVER, ///< suffix "'.'yyyy-MM-dd-hh"
        HALFDAILY_ROLLOVER, ///< suffix "'.'yyyy-MM-dd-a"
        DAILY_ROLLOVER, ///< suffix "'.'yyyy-MM-dd"; the default
        WEEKLY_ROLLOVER, ///< suffix "'.'yyyy-ww"; week and year of ISO 8601, from Monday
        MONTHLY_ROLLOVER ///< suffix "'.'yyyy-MM"
    };

    explicit DailyRollingFileAppender(QObject *parent = nullptr);
    ~DailyRollingFileAppender() override;

    /** Returns the pattern of the suffix. */
    QString datePattern() const;

    /** Sets one of the usual periods. Takes effect at activateOptions(). */
    void setDatePattern(DatePattern datePattern);

    /**
     * Sets the pattern of the suffix. Takes effect at activateOptions().
     *
     * @param datePattern as for QDateTime::toString(), and "ww" for the number of the week. The smallest unit
     * in it is the period, from a minute to a month.
     */
    void setDatePattern(const QString &datePattern);

    /** Opens the file. If the pattern has no period, writes an error line and remains inactive. */
    void activateOptions() override;

protected:
    void append(const LoggingEvent &event) override;

private:
    void enterPeriod(qint64 wallTime);
    void rollOver(qint64 wallTime);
    qint64 wallTime(const QByteArray &zone);

    QString m_datePattern;
    std::unique_ptr<RollOverPeriod> m_period;
    std::unique_ptr<SecondWatch> m_watch;
    qint64 m_wallOffset = 0;
    qint64 m_periodEnd = 0;
    QString m_suffix;
};

} // namespace zy
} // namespace Log4Qt
