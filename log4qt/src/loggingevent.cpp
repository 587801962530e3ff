// SPDX-License-Identifier: LGPL-2.1-or-later

#include <log4qt/loggingevent.h>

#include <log4qt/logger.h>
#include <log4qt/ndc.h>

#include <QDateTime>
#include <QThread>

namespace Log4Qt {
inline namespace zy {

LoggingEvent::LoggingEvent(const Logger *logger, Level level, const QString &message)
    : LoggingEvent(logger, level, message, QDateTime::currentMSecsSinceEpoch())
{
}

LoggingEvent::LoggingEvent(const Logger *logger, Level level, const QString &message, qint64 timeStamp)
    : m_level(level)
    , m_logger(logger)
    , m_message(message)
    , m_ndc(NDC::peek())
    , m_thread(QThread::currentThread())
    , m_timeStamp(timeStamp)
    , m_timeZone(qgetenv("TZ"))
{
    m_threadObjectName = m_thread->objectName();
}

QString LoggingEvent::threadName() const
{
    if (!m_threadObjectName.isEmpty())
        return m_threadObjectName;
    constexpr int digits = sizeof(quintptr) * 2;
    return QStringLiteral("0x%1").arg(quintptr(m_thread), digits, 16, QLatin1Char('0'));
}

QString LoggingEvent::loggername() const
{
    return m_logger ? m_logger->name() : QString();
}

QString LoggingEvent::loggename() const
{
    return loggername();
}

qint64 LoggingEvent::startTime()
{
    static const qint64 time = QDateTime::currentMSecsSinceEpoch();
    return time;
}

} // namespace zy
} // namespace Log4Qt
