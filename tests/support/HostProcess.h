// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Sandbox.h"

#include <QJsonArray>
#include <QJsonValue>
#include <QProcess>
#include <QString>

/**
 * A host application as a child process: the program "testhost", which loads the library and does
 * what it is told, one call at a time. So a test sees a host from outside: what it leaves on disk and
 * on its standard streams, when it is killed, in a sandbox or at another time.
 */
class HostProcess
{
public:
    HostProcess();
    ~HostProcess();

    /** The program as it was built. */
    static QString program();

    /** What start() runs in the place of program(): a copy of it that lies elsewhere. */
    void setCommand(const QStringList &command) { m_command = command; }

    /** To be called before start(). An empty @p value is one; a null one takes the variable away. */
    void setEnvironment(const QString &variable, const QString &value);

    bool start(const Sandbox &sandbox = Sandbox());

    /**
     * Has the host carry out @p command and waits for its answer. A null argument is a null pointer.
     *
     * @return what the host answers; undefined when it died instead
     */
    QJsonValue call(const QString &command, const QJsonArray &arguments = {});

    /** The two halves of call(), for a host that works while the test does something else. */
    void send(const QString &command, const QJsonArray &arguments = {});
    QJsonValue answer();

    /** Waits for the answer for @p timeout ms. */
    bool hasAnswer(int timeout);

    /** Ends the host as a user would; @return its exit code, -1 for a crash. */
    int quit();

    /** Ends the host with SIGKILL. */
    void kill();

    /** All that the host wrote to its standard error stream so far. */
    QString standardError();

    /** What the host wrote to its standard output stream beside its answers, until the last of them. */
    QString standardOutput() const { return QString::fromUtf8(m_standardOutput); }

    qint64 processId() const { return m_process.processId(); }

private:
    Q_DISABLE_COPY(HostProcess)

    QStringList m_command;
    QProcess m_process;
    QProcessEnvironment m_environment;
    QByteArray m_standardError;
    QByteArray m_standardOutput;
};
