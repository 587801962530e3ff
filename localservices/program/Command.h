// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QProcess>
#include <QStringList>

class Termination;

/** Runs a command on this program's own standard streams, as a shell would. */
class Command
{
public:
    Command(const QStringList &command, const QProcessEnvironment &environment);

    /**
     * Runs it to its end; signals that ask for this program's end are passed on to it.
     *
     * @return its exit code; 128 and the number of the signal that ended it; 127 where it can't be started
     */
    int run(Termination &termination);

private:
    Q_DISABLE_COPY(Command)

    int complain(const QString &problem) const;

    const QStringList m_command;
    QProcess m_process;
};
