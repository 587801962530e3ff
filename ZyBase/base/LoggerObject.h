// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ZyBaseExport.h"

namespace ZyBase {

/**
 * Writes the log file of the host application (the application that loads the library).
 *
 * The process has one log, which is written with log4qt. The library itself logs nothing in it. If you need
 * other levels, formats or destinations, attach appenders to log4qt's root logger, or use log4qt instead.
 *
 * @code
 * const QString directory = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
 * QDir().mkpath(directory);
 * ZyBase::LoggerObject::InitLogger("app.log", directory.toUtf8().constData());
 * ZyBase::LoggerObject::info("started");
 * const int exitCode = QCoreApplication::exec();
 * ZyBase::LoggerObject::ReleaseLogger();
 * @endcode
 *
 * A line contains the local time, the level, the top of log4qt's diagnostic context and the message:
 *
 *     2026-11-20 07:37:57.106 INFO   - started
 *
 * **Threads.** error(), warn(), info() and debug() are thread-safe between InitLogger() and ReleaseLogger();
 * lines never interleave. InitLogger(), ReleaseLogger() and the first call of any function are not
 * thread-safe: no other function may run at the same time. Every function may be called from the GUI thread.
 *
 * **Blocking.** A message blocks until its line is written to the file, and until messages of other threads
 * are written. Usually this takes microseconds, but a slow disk or a network file system can take seconds.
 * There is no time limit. While the log is off, a message costs one test of a pointer.
 *
 * **Failures.** No function reports a failure or throws. If InitLogger() cannot open the file, log4qt writes
 * an error to the standard error stream, and one more for each line that is lost. If the file cannot be
 * opened at the start of a month, each message tries to open it again. An installed log4qt 1.5.1 crashes in
 * that case, and writes no line after the disk was full; the log4qt of this library does not crash, and
 * continues.
 *
 * **Lifetime.** The log is on from InitLogger() to ReleaseLogger(). A line is in the file when the function
 * returns, so a crash of the application loses no line. If the process is killed during a call, the line of
 * that call is whole, missing or cut. The next process appends its first line directly to a cut one.
 *
 * **Encoding.** Arguments are null-terminated UTF-8 strings; invalid bytes are replaced by U+FFFD. The file
 * has the encoding of the locale, which is usually UTF-8.
 *
 * @see LoggerObjectPrivate
 * @since 0.1.0
 */
class ZYBASE_EXPORT LoggerObject
{
public:
    /**
     * Switches the log on and opens its file: @p pszBaseDir, then "/log/", then @p pszFileName.
     *
     * The file name is the first argument, although it is the last part of the path.
     *
     * An existing file is continued. The first line of a new month starts a new file. The file of the
     * finished month gets the suffix ".yyyy-MM", for example "app.log.2026-11". A process that starts in a
     * new month continues the old file. Lines of the first millisecond of a month are still written to the
     * old file. If several threads log at that moment, a line can be in the file of the other month.
     *
     * The directory "log" is created inside an existing base directory; no other directory is created. Blocks
     * for creating the directory and opening the file.
     *
     * @param pszFileName name of the file; if it is null or empty, no file can be opened
     * @param pszBaseDir existing directory; null or empty for the root directory of the file system
     *
     * @warning A second call without ReleaseLogger() does not replace the log. Each line is then written to
     * both files, or twice to the same file. Call ReleaseLogger() first.
     *
     * @see ReleaseLogger()
     */
    static void InitLogger(const char *pszFileName, const char *pszBaseDir);

    /**
     * Switches the log off. Does nothing while the log is off.
     *
     * Does not wait for the file. The file is closed when the event loop of the thread that called
     * InitLogger() runs next, or when the process ends.
     *
     * @warning Resets all of log4qt in this process: every logger, including the application's own, loses its
     * appenders and its level. Only the threshold of the repository remains. If the application uses log4qt
     * itself, configure it again after this call, or do not call this function.
     *
     * @see InitLogger()
     */
    static void ReleaseLogger();

    /**
     * Writes a line at level ERROR. Does nothing while the log is off.
     *
     * @param pszMessage message, which is written unchanged; it is not a format string. Line feeds in it
     * start new lines in the file. A null message is a complete line with an empty message.
     *
     * @see InitLogger()
     */
    static void error(const char *pszMessage);

    /**
     * Writes a line at level WARN. Does nothing while the log is off.
     *
     * @param pszMessage as for error()
     * @see error()
     */
    static void warn(const char *pszMessage);

    /**
     * Writes a line at level INFO. Does nothing while the log is off.
     *
     * @param pszMessage as for error()
     * @see error()
     */
    static void info(const char *pszMessage);

    /**
     * Passes the message to log4qt at level DEBUG. Does nothing while the log is off.
     *
     * The message is never written to the log file, which contains INFO, WARN and ERROR. Only appenders that
     * the application attached to log4qt's root logger receive it.
     *
     * @param pszMessage as for error()
     * @see error()
     */
    static void debug(const char *pszMessage);
};

} // namespace ZyBase
