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

/**
 * Takes messages and hands them to its own appenders and those of its parents.
 *
 * Loggers form a tree by their names ("App::Net" below "App" below the root) and live to the end of
 * the process. Any thread may log.
 */
class LOG4QT_EXPORT Logger
    : public QObject
    , public AppenderAttachable
{
    Q_OBJECT

public:
    /** The logger named @p name, made at the first call; the root for an empty name. */
    static Logger *logger(const QString &name);

    /** The top of the tree, named "root"; its level is DEBUG_INT from the start. */
    static Logger *rootLogger();

    bool additivity() const;

    /** The level that was set; NULL_INT where it is inherited. */
    Level level() const;

    /** The level of this logger or of its nearest parent that has one. */
    Level effectiveLevel() const;
    bool isEnabledFor(Level level) const;
    LoggerRepository *loggerRepository() const;
    QString name() const;
    Logger *parentLogger() const;

    /** False: events stay with this logger's own appenders. Default true. */
    void setAdditivity(bool additivity);

    /** NULL_INT inherits the parent's; the root takes DEBUG_INT for it. */
    void setLevel(Level level);

    void trace(const QString &message) const;
    void debug(const QString &message) const;
    void info(const QString &message) const;
    void warn(const QString &message) const;
    void error(const QString &message) const;
    void fatal(const QString &message) const;
    void log(Level level, const QString &message) const;

    /** Hands @p event to the appenders without asking for its level. */
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
