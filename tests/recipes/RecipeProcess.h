// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Sandbox.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QStringList>

/** A recipe's program as a user runs it, without any proxy or local services but those of the test. */
class RecipeProcess
{
public:
    explicit RecipeProcess(const QString &recipe);
    ~RecipeProcess();

    /** These are to be called before start(). */
    void setEnvironment(const QString &variable, const QString &value);
    void setSandbox(const Sandbox &sandbox) { m_sandbox = sandbox; }

    bool start(const QStringList &arguments = {});

    void write(const QString &line);
    void closeInput() { m_process.closeWriteChannel(); }

    /** Lets events of the test be delivered meanwhile. */
    bool waitForLine(const QString &line);

    /** Waits for its end; @return the exit code, -1 for a crash or when it hangs */
    int finish();

    /** From start() to finish(), in milliseconds. */
    qint64 duration() const { return m_duration; }

    /** What it has printed so far. */
    QStringList lines();
    QString standardError() { return QString::fromUtf8(m_process.readAllStandardError()); }

private:
    Q_DISABLE_COPY(RecipeProcess)

    const QString m_program;
    Sandbox m_sandbox;
    QProcess m_process;
    QProcessEnvironment m_environment;
    QByteArray m_output;
    QElapsedTimer m_timer;
    qint64 m_duration = 0;
};
