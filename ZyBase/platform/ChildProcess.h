// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace ZyBase {

/**
 * Starts a command-line tool and waits until it ends, for at most 30 seconds.
 *
 * The outcome is the exit code and the output of @p process:
 *
 * - If the program cannot be executed, the exit code is 255.
 * - If the tool crashed, the exit code is the number of the signal.
 * - If the tool is still running, or the system created no process, the exit code is 0. Destroying @p process
 *   ends a tool that is still running.
 *
 * The function is reentrant: each thread must pass its own process object. It needs neither an event loop nor
 * an application object.
 *
 * @param process runs one or more tools, one after the other; if an earlier tool is still running, the call
 * starts none and waits for the earlier one
 * @param pszProgram name of the program, which is searched for in PATH; Latin-1
 * @param arguments its arguments, passed unchanged and without a shell
 *
 * @warning Do not pass an object of a class derived from QProcess. Qt then installs a handler for SIGCHLD in
 * the application.
 */
void runTool(QProcess &process, const char *pszProgram, const QStringList &arguments);

/**
 * Returns what the tool has printed to its standard output so far, and removes it from @p process.
 *
 * @return the output without the white space around it, up to the first NUL byte; an empty string, never a
 * null one, if there is none
 */
QString takeOutput(QProcess &process);

/** Returns the UTF-8 bytes up to the first NUL byte as a string. */
QString fromUtf8UpToNul(const QByteArray &baUtf8);

} // namespace ZyBase
