// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <optional>

namespace ZyBase {

/**
 * Runs command-line tools, one after the other, and waits for each.
 *
 * Use one object for all tools of one task. Destroying the object ends a tool that is still running.
 *
 * The class is reentrant: every thread uses objects of its own. It needs neither an event loop nor an
 * application object. Nothing is reported except by the exit code and the output.
 */
class ChildProcess
{
public:
    /**
     * Starts the tool and waits until it ends, for at most 30 seconds.
     *
     * If an earlier tool is still running, this one is not started; the call waits for the earlier one.
     * If the system creates no process, the call returns at once.
     *
     * @param pszProgram name of the program, which is searched for in PATH; Latin-1
     * @param arguments its arguments, passed unchanged and without a shell
     */
    void run(const char *pszProgram, const QStringList &arguments);

    /**
     * Returns the exit code of the last tool.
     *
     * @return the exit code; the signal's number if the tool crashed; 255 if the program cannot be executed;
     * 0 if the tool is still running or the system created no process
     */
    int exitCode() const;

    /**
     * Returns what the tool has printed to its standard output so far, and removes it.
     *
     * @return the output without the white space around it, up to the first NUL byte; an empty string, never
     * a null one, if there is none
     */
    QString takeOutput();

private:
    std::optional<QProcess> m_process {std::in_place};
};

/** Returns the UTF-8 bytes up to the first NUL byte as a string. */
QString fromUtf8UpToNul(const QByteArray &baUtf8);

} // namespace ZyBase
