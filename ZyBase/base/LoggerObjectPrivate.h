// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ZyBaseExport.h"

#include <log4qt/logger.h>

/**
 * The object that implements ZyBase::LoggerObject.
 *
 * Call ZyBase::LoggerObject instead: its functions call those of the same name here. Use this class only if
 * you need the log4qt root logger that the log uses. It needs the headers of log4qt: link Log4Qt::log4qt.
 *
 * @code
 * Log4Qt::Logger *const logger = LoggerObjectPrivate::getInstance()->m_pRootLogger;
 * if (logger) // the log is on
 *     logger->addAppender(Log4Qt::AppenderSharedPtr(new MyAppender));
 * @endcode
 *
 * **Threads.** As for ZyBase::LoggerObject: error(), warn(), info() and debug() are thread-safe while the log
 * is on. All other functions, and access to the variables, are not thread-safe.
 *
 * **Blocking.** As for ZyBase::LoggerObject: a message blocks until its line is written.
 *
 * **Failures.** As for ZyBase::LoggerObject: no function reports a failure or throws.
 *
 * **Lifetime.** The instance exists until the process ends. Never delete it.
 *
 * @see ZyBase::LoggerObject
 * @since 0.1.0
 */
class ZYBASE_EXPORT LoggerObjectPrivate
{
public:
    /**
     * Returns the only instance and creates it at the first call, with the log off. Does not block.
     *
     * The first call is not thread-safe: make it before other threads log.
     *
     * @return the instance, never null. Do not delete it.
     * @see s_pLogger
     */
    static LoggerObjectPrivate *getInstance();

    /**
     * Creates an object whose log is off. Does not block and cannot fail.
     *
     * @warning An object of your own is not the log of ZyBase::LoggerObject, and its destructor does not
     * switch its log off. Use getInstance().
     *
     * @see getInstance()
     */
    LoggerObjectPrivate();

    /**
     * Switches the log on.
     *
     * Opens the file, attaches a new appender with the name "My Appender" to the root logger, and sets the
     * level of the root logger to DEBUG.
     *
     * Not thread-safe. Blocks for creating the directory and opening the file. A failure is not reported:
     * m_pRootLogger is set in any case.
     *
     * @param pszFileName name of the file, as for ZyBase::LoggerObject::InitLogger()
     * @param pszBaseDir existing directory, as for ZyBase::LoggerObject::InitLogger()
     *
     * @warning A second call attaches a second appender, and each line is written twice. Call ReleaseLogger()
     * first.
     *
     * @see ReleaseLogger()
     */
    void InitLogger(const char *pszFileName, const char *pszBaseDir);

    /**
     * Switches the log off. Does nothing while the log is off.
     *
     * Removes all appenders from the root logger and resets all loggers of log4qt. Only the threshold of the
     * repository remains.
     *
     * Not thread-safe. Does not wait for the file, which is closed when the event loop runs next.
     *
     * @warning Every logger of the process loses its appenders and its level, including the application's
     * own. Configure log4qt again after this call if the application uses it.
     *
     * @see InitLogger()
     */
    void ReleaseLogger();

    /**
     * Logs at level ERROR. Thread-safe while the log is on; blocks until the line is written. Does nothing
     * while the log is off, and reports no failure.
     *
     * @param pszMessage message in UTF-8, as for ZyBase::LoggerObject::error(); null is an empty message
     * @see ZyBase::LoggerObject::error()
     */
    void error(const char *pszMessage);

    /**
     * Logs at level WARN. Otherwise as error().
     *
     * @param pszMessage message in UTF-8; null is an empty message
     * @see error()
     */
    void warn(const char *pszMessage);

    /**
     * Logs at level INFO. Otherwise as error().
     *
     * @param pszMessage message in UTF-8; null is an empty message
     * @see error()
     */
    void info(const char *pszMessage);

    /**
     * Logs at level DEBUG, which is never written to the log file. Otherwise as error().
     *
     * @param pszMessage message in UTF-8; null is an empty message
     * @see ZyBase::LoggerObject::debug()
     */
    void debug(const char *pszMessage);

    /** The instance that getInstance() returns; null before its first call. Do not change it. */
    static LoggerObjectPrivate *s_pLogger;

    /** log4qt's root logger while the log is on, null while it is off. Not owned. Do not change it. */
    Log4Qt::Logger *m_pRootLogger;
};
