// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ZyBaseExport.h"

#include <log4qt/logger.h>

/**
 * The working object behind ZyBase::LoggerObject, whose functions forward to those of the same name
 * here; what they do and which threads may call them is told there. Hosts use the facade. This header
 * is for the one that wants at the log4qt root logger that the log is attached to.
 */
class ZYBASE_EXPORT LoggerObjectPrivate
{
public:
    /** The one instance, made at the first call and never deleted. One thread at a time may make it. */
    static LoggerObjectPrivate *getInstance();

    /** Makes an object whose log is off. */
    LoggerObjectPrivate();

    /** Attaches a new appender "My Appender" for the file to the root logger, and opens the file. */
    void InitLogger(const char *pszFileName, const char *pszBaseDir);

    /** Takes all appenders off the root logger and resets log4qt. Does nothing while the log is off. */
    void ReleaseLogger();

    void error(const char *pszMessage);
    void warn(const char *pszMessage);
    void info(const char *pszMessage);
    void debug(const char *pszMessage);

    /** What getInstance() returns; null before its first call. */
    static LoggerObjectPrivate *s_pLogger;

    /** log4qt's root logger while the log is on, null while it is off. Not owned. */
    Log4Qt::Logger *m_pRootLogger;
};
