// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Sandbox.h"

#include <QProcess>
#include <QStringList>

/** A recipe's program, run to its end as a user runs it. */
struct RecipeRun
{
    int exitCode = -1; ///< -1 for a crash, and for a run that hangs
    QStringList lines; ///< of the standard output
    QString standardError;

    explicit RecipeRun(const QStringList &command, const Sandbox &sandbox = Sandbox())
    {
        constexpr int patience = 120000;
        QStringList arguments = sandbox.commandLine(command);
        const QString program = arguments.takeFirst();
        QProcess process;
        process.start(program, arguments);
        if (process.waitForFinished(patience) && process.exitStatus() == QProcess::NormalExit)
            exitCode = process.exitCode();
        lines = QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n'));
        lines.removeAll(QString());
        standardError = QString::fromUtf8(process.readAllStandardError());
    }
};
