// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ZyBaseExport.h"

#include <log4qt/logger.h>

/**
 * The working object behind ZyBase::LoggerObject, whose functions forward to those of the same name
 * here; what they do is told there. Hosts use the facade. This header is for the one that wants at the
 * log4qt root logger that the log is attached to.
 *
 * **Threads.** **Blocking.** As for the facade.
 */
class ZYBASE_EXPORT LoggerObjectPrivate
{
public:
    /**
     * The one instance, made at the first call and never deleted. One thread at a time may make it.
     *
     * @return never null
     */
    static LoggerObjectPrivate *getInstance();

    /** Makes an object whose log is off. */
    LoggerObjectPrivate();

    /**
     * Attaches a new appender "My Appender" for the file to the root logger, and opens the file.
     *
     * @param pszFileName,pszBaseDir as for ZyBase::LoggerObject::InitLogger()
     */
    void InitLogger(const char *pszFileName, const char *pszBaseDir);

    /** Takes all appenders off the root logger and resets log4qt. Does nothing while the log is off. */
    void ReleaseLogger();

    /** Hands the message to the root logger at level ERROR. @param pszMessage null is an empty one */
    void error(const char *pszMessage);

    /** Hands the message to the root logger at level WARN. @param pszMessage as for error() */
    void warn(const char *pszMessage);

    /** Hands the message to the root logger at level INFO. @param pszMessage as for error() */
    void info(const char *pszMessage);

    /** Hands the message to the root logger at level DEBUG. @param pszMessage as for error() */
    void debug(const char *pszMessage);

    /** What getInstance() returns; null before its first call. */
    static LoggerObjectPrivate *s_pLogger;

    /** log4qt's root logger while the log is on, null while it is off. Not owned. */
    Log4Qt::Logger *m_pRootLogger;
};
