// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Sandbox.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QStringList>

/** A child process of a test. It ends, with all its children, when the object is destroyed. */
class ChildProcess
{
public:
    static constexpr int timeoutMs = 120000;

    explicit ChildProcess(const QStringList &command = {});
    ~ChildProcess();

    void setCommand(const QStringList &command) { m_command = command; }
    void setSandbox(const Sandbox &sandbox) { m_sandbox = sandbox; }

    /** Sets an environment variable. A null value removes it. */
    void setEnvironment(const QString &variable, const QString &value);

    /** Starts the command with additional arguments, and returns whether it was started. */
    bool start(const QStringList &arguments = {});

    void write(const QByteArray &input);
    void closeInput() { m_process.closeWriteChannel(); }

    /** Waits for the end and returns the exit code; -1 after a crash or a timeout. */
    int finish(int limitMs = timeoutMs);

    /** Sends a signal to the process. */
    void sendSignal(int signal);

    /** Ends the process and its children with SIGKILL. */
    void kill();

    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    qint64 processId() const { return m_process.processId(); }

    /** Returns the time from start() to the end of finish(). */
    qint64 durationMs() const { return m_durationMs; }

    /** Returns whether a whole line can be read within @p limitMs. */
    bool waitForLine(int limitMs);

    /** Returns the next line with its end, or an empty array if there is none within the time limit. */
    QByteArray readLine();

    /** Returns the output so far, without the lines that readLine() returned. */
    QByteArray standardOutput();

    /** Returns the complete lines of standardOutput(), without their ends. */
    QStringList lines();

    /** Waits for a line of standardOutput() in an event loop. */
    bool waitForLine(const QString &line);

    QByteArray standardError();

private:
    Q_DISABLE_COPY(ChildProcess)

    /** Puts its child into a new process group, so that the group can be killed. */
    class GroupProcess : public QProcess
    {
    protected:
        void setupChildProcess() override;
    };

    QStringList m_command;
    Sandbox m_sandbox;
    GroupProcess m_process;
    QProcessEnvironment m_environment;
    QByteArray m_standardOutput;
    QByteArray m_standardError;
    QElapsedTimer m_timer;
    qint64 m_durationMs = 0;
    qint64 m_group = 0;
};
