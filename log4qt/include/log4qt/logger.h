// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "appenderattachable.h"
#include "level.h"

#include <QObject>
#include <QString>

#include <atomic>

namespace Log4Qt {
inline namespace zy {

class LoggerRepository;
class LoggingEvent;

/**
 * Receives messages and passes them to its own appenders and to those of its parents.
 *
 * Loggers form a tree by their names: "App::Net" is below "App", which is below the root logger. "App.Net" is
 * another spelling of "App::Net".
 *
 * **Threads.** All functions are thread-safe.
 *
 * **Blocking.** A message blocks until every appender has written it.
 *
 * **Lifetime.** A logger exists until the process ends. Never delete it.
 *
 * @since 0.1.0
 */
class LOG4QT_EXPORT Logger
    : public QObject
    , public AppenderAttachable
{
    Q_OBJECT

public:
    /** Returns the logger with the name @p name and creates it at the first call. Empty: the root logger. */
    static Logger *logger(const QString &name);

    /** Returns the root logger. Its name is "root", its first level DEBUG_INT. */
    static Logger *rootLogger();

    /** Returns true if events are also passed to the parent's appenders. */
    bool additivity() const;

    /** Returns the level that was set; NULL_INT if the parent's level is used. */
    Level level() const;

    /** Returns the level of this logger or, if it has none, of the nearest parent that has one. */
    Level effectiveLevel() const;

    /** Returns true if an event of @p level is passed to the appenders. */
    bool isEnabledFor(Level level) const;

    /** Returns the repository of all loggers; never null. */
    LoggerRepository *loggerRepository() const;

    /** Returns the name, with "::" between its parts. */
    QString name() const;

    /** Returns the parent; null for the root logger. */
    Logger *parentLogger() const;

    /** Sets whether events are also passed to the parent's appenders. The default is true. */
    void setAdditivity(bool additivity);

    /** Sets the level. NULL_INT uses the parent's level; at the root logger it means DEBUG_INT. */
    void setLevel(Level level);

    void trace(const QString &message) const;
    void debug(const QString &message) const;
    void info(const QString &message) const;
    void warn(const QString &message) const;
    void error(const QString &message) const;
    void fatal(const QString &message) const;

    /** Logs @p message if isEnabledFor() returns true for @p level. */
    void log(Level level, const QString &message) const;

    /** Passes @p event to the appenders without checking its level. */
    void callAppenders(const LoggingEvent &event) const;

private:
    friend class LoggerRepository;
    Logger(LoggerRepository *repository, const QString &name, Logger *parent);
    ~Logger() override;

    LoggerRepository *const m_repository;
    const QString m_name;
    Logger *const m_parentLogger;
    std::atomic<Level::Value> m_level;
    std::atomic<bool> m_additivity;
};

} // namespace zy
} // namespace Log4Qt
