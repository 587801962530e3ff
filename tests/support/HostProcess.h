// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ChildProcess.h"

#include <QJsonArray>
#include <QJsonValue>

/**
 * A host application as a child process: the program "testhost", which loads the library and runs one
 * command at a time. Use it to test what an application writes to disk and to its standard streams, in a
 * sandbox, at another time, or after it was killed.
 */
class HostProcess
{
public:
    HostProcess();

    /** Ends the process as quit() does, or kills it if it is in the middle of a command. */
    ~HostProcess();

    /** Returns the path of the program. */
    static QString program();

    /** Replaces program() as the command of start(), for a copy in another directory. */
    void setCommand(const QStringList &command) { m_process.setCommand(command); }

    /** Sets an environment variable. A null value removes it. Call it before start(). */
    void setEnvironment(const QString &variable, const QString &value)
    {
        m_process.setEnvironment(variable, value);
    }

    bool start(const Sandbox &sandbox = Sandbox());

    /** Starts the program as "/host", in the root directory of a sandbox. */
    bool startInRootDirectory();

    /**
     * Runs a command and waits for its result. A null argument is passed as a null pointer.
     *
     * @return the result; undefined if the process ended
     */
    QJsonValue call(const QString &command, const QJsonArray &arguments = {});

    /** Together these do the same as call(). */
    void send(const QString &command, const QJsonArray &arguments = {});
    QJsonValue answer();

    /** Waits for a result. Returns false after the timeout. */
    bool hasAnswer(int timeoutMs) { return m_process.waitForLine(timeoutMs); }

    /** Closes the standard input, waits for the end and returns the exit code; -1 after a crash. */
    int quit();

    /** Ends the process with SIGKILL. */
    void kill() { m_process.kill(); }

    /** Returns the standard error stream so far. */
    QString standardError() { return QString::fromUtf8(standardErrorBytes()); }
    QByteArray standardErrorBytes() { return m_process.standardError(); }

    /** Returns the standard output up to the last result, without the results. */
    QString standardOutput() const { return QString::fromUtf8(m_standardOutput); }

    qint64 processId() const { return m_process.processId(); }

private:
    Q_DISABLE_COPY(HostProcess)

    ChildProcess m_process;
    QByteArray m_standardOutput;
};
