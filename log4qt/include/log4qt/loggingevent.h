// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "level.h"

#include <QByteArray>
#include <QString>

class QThread;

namespace Log4Qt {
inline namespace zy {

class Logger;

/**
 * One message with its level, time, thread and diagnostic context.
 *
 * **Threads.** Reentrant.
 *
 * @since 0.1.0
 */
class LOG4QT_EXPORT LoggingEvent
{
public:
    /**
     * Creates an event with the current time, thread and diagnostic context.
     *
     * @param logger must exist as long as the event; may be null
     * @param level severity
     * @param message message
     */
    LoggingEvent(const Logger *logger, Level level, const QString &message);

    /** Creates an event with the time @p timeStamp, in milliseconds since the epoch; negative before 1970. */
    LoggingEvent(const Logger *logger, Level level, const QString &message, qint64 timeStamp);

    Level level() const { return m_level; }
    QString message() const { return m_message; }

    /** Returns the top of the thread's diagnostic context when the event was created; empty if it had none.
     */
    QString ndc() const { return m_ndc; }

    /** Returns the object name of the thread; its address in hexadecimal digits if the name is empty. */
    QString threadName() const;

    /** Returns the time in milliseconds since the epoch. */
    qint64 timeStamp() const { return m_timeStamp; }

    /** Returns the value of the variable TZ when the event was created; null if it was not set. */
    QByteArray timeZone() const { return m_timeZone; }

    /** Returns the name of the logger; empty if the event has none. */
    QString loggername() const;

    /** Same as loggername(). Use this spelling in code that also compiles with other versions of log4qt. */
    QString loggename() const;

    /** Returns the logger; null if the event has none. */
    const Logger *logger() const { return m_logger; }

    /** Returns the time of the first use of a logger in this process, in milliseconds since the epoch. */
    static qint64 startTime();

private:
    Level m_level;
    const Logger *m_logger;
    QString m_message;
    QString m_ndc;
    QString m_threadObjectName;
    const QThread *m_thread;
    qint64 m_timeStamp;
    QByteArray m_timeZone;
};

} // namespace zy
} // namespace Log4Qt
