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

/**
 * All loggers of the process.
 *
 * **Threads.** All functions are thread-safe. **Blocking.** Never blocks on a file.
 *
 * @since 0.1.0
 */
class LOG4QT_EXPORT LoggerRepository : public QObject
{
    Q_OBJECT

public:
    /** Returns the only repository. It is never deleted, so logging works until the process ends. */
    static LoggerRepository *instance();

    /** Returns true if the logger with the name @p name was created. The name "" is the root logger. */
    bool exists(const QString &name) const;

    /** Returns true if @p level is below the threshold. */
    bool isDisabled(Level level) const;

    /** Returns the logger with the name @p name and creates it at the first call. */
    Logger *logger(const QString &name);

    /** Returns all loggers, including the root logger, in no particular order. */
    QList<Logger *> loggers() const;

    Logger *rootLogger() const;

    /** Returns the lowest level that is logged; NULL_INT if every level is. */
    Level threshold() const;

    /** Sets the lowest level that any logger logs. NULL_INT, the default, accepts every level. */
    void setThreshold(Level level);

    /**
     * Resets all loggers: no appenders, additive, no level, and DEBUG_INT at the root logger. Keeps the
     * threshold.
     */
    void resetConfiguration();

    /** Same as resetConfiguration(). */
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
