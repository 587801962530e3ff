// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "level.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>

#include <atomic>
#include <mutex>

namespace Log4Qt {
inline namespace zy {

class Logger;

/** All loggers of the process. Any thread. */
class LOG4QT_EXPORT LoggerRepository : public QObject
{
    Q_OBJECT

public:
    /** The one repository. It is never deleted, so that logging works to the very end of a host. */
    static LoggerRepository *instance();

    bool exists(const QString &name) const;
    bool isDisabled(Level level) const;
    Logger *logger(const QString &name);
    QList<Logger *> loggers() const;
    Logger *rootLogger() const;
    Level threshold() const;

    /** Events below @p level reach no appender of any logger; NULL_INT lets all pass. */
    void setThreshold(Level level);

    /** Takes every logger back to its first state: no appenders, additive, no level, the root at DEBUG_INT.
     */
    void resetConfiguration();
    void shutdown();

private:
    LoggerRepository();
    ~LoggerRepository() override;

    Logger *loggerUnlocked(const QString &name);

    mutable std::mutex m_mutex;
    QHash<QString, Logger *> m_loggers;
    Logger *const m_rootLogger;
    std::atomic<Level::Value> m_threshold;
};

} // namespace zy
} // namespace Log4Qt
