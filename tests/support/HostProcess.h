// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ChildProcess.h"

#include <QJsonArray>
#include <QJsonValue>

/**
 * A host application as a child process: the program "testhost", which loads the library and carries out
 * one command at a time. It shows what an application writes to disk and to its standard streams, also in
 * a sandbox, at another time, or after it was killed.
 */
class HostProcess
{
public:
    HostProcess();

    /** The path of the program. */
    static QString program();

    /** Replaces program() as the command of start(), for a copy in another directory. */
    void setCommand(const QStringList &command) { m_process.setCommand(command); }

    /** Must be called before start(). A null @p value removes the variable. */
    void setEnvironment(const QString &variable, const QString &value)
    {
        m_process.setEnvironment(variable, value);
    }

    bool start(const Sandbox &sandbox = Sandbox());

    /**
     * Calls a command and waits for its answer. A null argument is passed as a null pointer.
     *
     * @return the answer; undefined if the host ended instead
     */
    QJsonValue call(const QString &command, const QJsonArray &arguments = {});

    /** Together these do the same as call(); the test can do something else in between. */
    void send(const QString &command, const QJsonArray &arguments = {});
    QJsonValue answer();

    /** Returns whether an answer arrives within @p timeoutMs. */
    bool hasAnswer(int timeoutMs) { return m_process.waitForLine(timeoutMs); }

    /** Closes the host's input, waits for its end and returns its exit code; -1 after a crash. */
    int quit();

    /** Ends the host with SIGKILL. */
    void kill() { m_process.kill(); }

    /** All that the host wrote to its standard error stream so far. */
    QString standardError() { return QString::fromUtf8(m_process.standardError()); }

    /** What the host wrote to its standard output stream besides its answers, up to the last answer. */
    QString standardOutput() const { return QString::fromUtf8(m_standardOutput); }

    qint64 processId() const { return m_process.processId(); }

private:
    Q_DISABLE_COPY(HostProcess)

    ChildProcess m_process;
    QByteArray m_standardOutput;
};
