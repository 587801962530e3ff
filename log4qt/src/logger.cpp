// SPDX-License-Identifier: LGPL-2.1-or-later

#include <log4qt/logger.h>

#include <log4qt/loggerrepository.h>
#include <log4qt/loggingevent.h>

namespace Log4Qt {
inline namespace zy {

Logger::Logger(LoggerRepository *repository, const QString &name, Logger *parent)
    : m_repository(repository)
    , m_name(name)
    , m_parentLogger(parent)
    , m_level(parent ? Level::NULL_INT : Level::DEBUG_INT)
    , m_additivity(true)
{
}

Logger::~Logger() = default;

Logger *Logger::logger(const QString &name)
{
    return LoggerRepository::instance()->logger(name);
}

Logger *Logger::rootLogger()
{
    return LoggerRepository::instance()->rootLogger();
}

bool Logger::additivity() const
{
    return m_additivity;
}

Level Logger::level() const
{
    return m_level.load();
}

Level Logger::effectiveLevel() const
{
    const Logger *logger = this;
    while (logger->m_level == Level::NULL_INT)
        logger = logger->m_parentLogger;
    return logger->m_level.load();
}

bool Logger::isEnabledFor(Level level) const
{
    return !m_repository->isDisabled(level) && level >= effectiveLevel();
}

LoggerRepository *Logger::loggerRepository() const
{
    return m_repository;
}

QString Logger::name() const
{
    return m_name;
}

Logger *Logger::parentLogger() const
{
    return m_parentLogger;
}

void Logger::setAdditivity(bool additivity)
{
    m_additivity = additivity;
}

void Logger::setLevel(Level level)
{
    const bool isRoot = m_parentLogger == nullptr;
    if (isRoot && level == Level::NULL_INT)
        level = Level::DEBUG_INT;
    m_level = static_cast<Level::Value>(level.toInt());
}

void Logger::trace(const QString &message) const
{
    log(Level::TRACE_INT, message);
}

void Logger::debug(const QString &message) const
{
    log(Level::DEBUG_INT, message);
}

void Logger::info(const QString &message) const
{
    log(Level::INFO_INT, message);
}

void Logger::warn(const QString &message) const
{
    log(Level::WARN_INT, message);
}

void Logger::error(const QString &message) const
{
    log(Level::ERROR_INT, message);
}

void Logger::fatal(const QString &message) const
{
    log(Level::FATAL_INT, message);
}

void Logger::log(Level level, const QString &message) const
{
    if (isEnabledFor(level))
        callAppenders(LoggingEvent(this, level, message));
}

void Logger::callAppenders(const LoggingEvent &event) const
{
    // This is a copy of the list, because an appender can change the list while it is called.
    const QList<AppenderSharedPtr> own = appenders();
    for (const AppenderSharedPtr &appender : own)
        appender->doAppend(event);
    if (m_parentLogger && m_additivity)
        m_parentLogger->callAppenders(event);
}

} // namespace zy
} // namespace Log4Qt
