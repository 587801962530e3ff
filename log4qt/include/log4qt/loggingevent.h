// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "level.h"

#include <QByteArray>
#include <QString>

class QThread;

namespace Log4Qt {
inline namespace zy {

class Logger;

/** One message on its way from a logger to its appenders, with what was true when it was raised. */
class LOG4QT_EXPORT LoggingEvent
{
public:
    /** Takes the time, the thread and the diagnostic context of the call. @p logger outlives the event. */
    LoggingEvent(const Logger *logger, Level level, const QString &message);

    /** The same with a given time, in milliseconds since the epoch. */
    LoggingEvent(const Logger *logger, Level level, const QString &message, qint64 timeStamp);

    Level level() const { return m_level; }
    QString message() const { return m_message; }

    /** The top of the raising thread's diagnostic context; empty without one. */
    QString ndc() const { return m_ndc; }

    /** The raising thread's object name, or its address where it has none. */
    QString threadName() const;

    /** Milliseconds since the epoch. */
    qint64 timeStamp() const { return m_timeStamp; }

    /** What the variable TZ held at the call; null where it was not set. */
    QByteArray timeZone() const { return m_timeZone; }

    /** The raising logger's name; empty without a logger. */
    QString loggername() const;

    const Logger *logger() const { return m_logger; }

    /** When the first logger of the process was asked for, in milliseconds since the epoch. */
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
