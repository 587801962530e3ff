// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ZyBaseExport.h"

namespace ZyBase {

/**
 * The file log of a host: one for the process, written by log4qt.
 *
 * @code
 * const QByteArray base = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation).toUtf8();
 * QDir().mkpath(QString::fromUtf8(base));     // the log makes its own "log" folder and no more
 * ZyBase::LoggerObject::InitLogger("app.log", base.constData());
 * ZyBase::LoggerObject::info("started");
 * ...
 * ZyBase::LoggerObject::ReleaseLogger();
 * @endcode
 *
 * A line carries the local time, the level, the top of log4qt's diagnostic context and the message:
 *
 *     2026-11-20 07:37:57.106 INFO   - started
 *
 * Each line is in the file when the call returns; a crash of the host loses none. The log is the
 * host's alone: the library writes nothing to it.
 *
 * Texts are NUL-terminated UTF-8; the file is in the encoding of the locale, UTF-8 as a rule. No function
 * reports a failure or throws. A log file that can't be opened costs nothing but the lines: log4qt says so on
 * the standard error stream, once at InitLogger() and once for each line.
 *
 * **Threads.** The first call of any function, InitLogger() and ReleaseLogger() are for one thread
 * at a time and must not overlap any other call. Between the two, error(), warn(), info() and
 * debug() may be called from any thread; lines never interleave.
 *
 * **Blocking.** A message takes one write to the file. While the log is off it takes one test of a
 * pointer.
 */
class ZYBASE_EXPORT LoggerObject
{
public:
    /**
     * Switches the log on. The file is @p pszBaseDir, then "/log/", then @p pszFileName.
     *
     * The order of the arguments is the reverse of that in the path: the file name comes first.
     *
     * An existing file is continued. Once a month, at the first line of the new month, the finished
     * month is kept beside it with the suffix ".yyyy-MM". A host that starts in a new month
     * continues the old file.
     *
     * The folder "log" is made when it is missing; the base directory is not, and without it there
     * is no log file.
     *
     * @param pszFileName the file's name; with a null one no file can be opened
     * @param pszBaseDir an existing directory; a null one means the root of the file system
     *
     * @warning A second call without ReleaseLogger() in between does not replace the log: it attaches
     * a second appender, so every line then stands in both files, or twice in the one file.
     */
    static void InitLogger(const char *pszFileName, const char *pszBaseDir);

    /**
     * Switches the log off; while it is off, this does nothing.
     *
     * @warning It takes down all of log4qt in this process: the root logger loses every appender, the
     * host's own ones included, and every other logger its appenders and level.
     *
     * The file is closed when the event loop of the thread that called InitLogger() runs next.
     */
    static void ReleaseLogger();

    /**
     * Writes a line at level ERROR.
     *
     * @param pszMessage taken as it is; a null one gives an empty line
     */
    static void error(const char *pszMessage);

    /** Writes a line at level WARN. @param pszMessage as for error() */
    static void warn(const char *pszMessage);

    /** Writes a line at level INFO. @param pszMessage as for error() */
    static void info(const char *pszMessage);

    /**
     * Hands the message to log4qt at level DEBUG. It never reaches the log file, which takes INFO and
     * above; appenders that a host attached to the root logger itself do get it.
     *
     * @param pszMessage as for error()
     */
    static void debug(const char *pszMessage);
};

} // namespace ZyBase
