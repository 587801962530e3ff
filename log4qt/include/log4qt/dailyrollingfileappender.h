// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "fileappender.h"

#include <memory>

namespace Log4Qt {
inline namespace zy {

class RollOverPeriod;
class SecondWatch;

/**
 * Writes to a file and, at the first event of a new period, keeps the finished period's lines beside
 * it under the plain name and a suffix.
 *
 * Periods are those of the local wall clock. The first one is that in which activateOptions() is
 * called: a file that was left from an earlier period is continued.
 */
class LOG4QT_EXPORT DailyRollingFileAppender : public FileAppender
{
    Q_OBJECT

public:
    enum DatePattern {
        MINUTELY_ROLLOVER = 0,
        HOURLY_ROLLOVER,
        HALFDAILY_ROLLOVER,
        DAILY_ROLLOVER,
        WEEKLY_ROLLOVER,
        MONTHLY_ROLLOVER
    };

    explicit DailyRollingFileAppender(QObject *parent = nullptr);
    ~DailyRollingFileAppender() override;

    /** The suffix as a QDateTime pattern (with "ww" for the week's number); its finest field is the period.
     */
    QString datePattern() const;
    void setDatePattern(DatePattern datePattern);
    void setDatePattern(const QString &datePattern);

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
