// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QProcess>
#include <QStringList>

class Termination;

/** Runs a command with the standard streams of this program. */
class Command
{
public:
    Command(const QStringList &command, const QProcessEnvironment &environment);

    /**
     * Runs the command and waits for its end. SIGINT and SIGTERM to this program are sent to the command.
     *
     * @return the exit code of the command, 128 plus the number of the signal that ended it, or 127 if it
     * cannot be started
     */
    int run(Termination &termination);

private:
    Q_DISABLE_COPY(Command)

    int fail(const QString &problem) const;

    const QStringList m_command;
    QProcess m_process;
};
