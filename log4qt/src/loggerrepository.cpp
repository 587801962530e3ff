// SPDX-License-Identifier: LGPL-2.1-or-later

#include <log4qt/loggerrepository.h>

#include <log4qt/logger.h>
#include <log4qt/loggingevent.h>

namespace Log4Qt {
inline namespace zy {

namespace {

const QLatin1String nameSeparator("::");

} // namespace

LoggerRepository::LoggerRepository()
    : m_rootLogger(new Logger(this, QStringLiteral("root"), nullptr))
    , m_threshold(Level::NULL_INT)
{
    m_loggers.insert(QString(), m_rootLogger);
    LoggingEvent::startTime();
}

LoggerRepository::~LoggerRepository() = default;

LoggerRepository *LoggerRepository::instance()
{
    static auto *const repository = new LoggerRepository;
    return repository;
}

bool LoggerRepository::exists(const QString &name) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_loggers.contains(name);
}

bool LoggerRepository::isDisabled(Level level) const
{
    return level < threshold();
}

Logger *LoggerRepository::logger(const QString &name)
{
    QString cppName = name;
    cppName.replace(QLatin1Char('.'), nameSeparator);
    const std::lock_guard<std::mutex> lock(m_mutex);
    return loggerUnlocked(cppName);
}

QList<Logger *> LoggerRepository::loggers() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_loggers.values();
}

Logger *LoggerRepository::rootLogger() const
{
    return m_rootLogger;
}

Level LoggerRepository::threshold() const
{
    return m_threshold.load();
}

void LoggerRepository::setThreshold(Level level)
{
    m_threshold = static_cast<Level::Value>(level.toInt());
}

void LoggerRepository::resetConfiguration()
{
    const QList<Logger *> all = loggers();
    for (Logger *logger : all) {
        logger->removeAllAppenders();
        logger->setAdditivity(true);
        logger->setLevel(Level::NULL_INT);
    }
}

void LoggerRepository::shutdown()
{
    resetConfiguration();
}

Logger *LoggerRepository::loggerUnlocked(const QString &name)
{
    if (Logger *existing = m_loggers.value(name))
        return existing;
    const int separator = name.lastIndexOf(nameSeparator);
    auto *const logger = new Logger(this, name, loggerUnlocked(name.left(qMax(0, separator))));
    m_loggers.insert(name, logger);
    return logger;
}

} // namespace zy
} // namespace Log4Qt
