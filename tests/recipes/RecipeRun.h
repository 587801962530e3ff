// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ChildProcess.h"

/** The result of a recipe's program that was run to its end. */
struct RecipeRun
{
    int exitCode = -1; ///< -1 after a crash or a timeout
    QStringList lines; ///< of the standard output, without empty ones
    QString standardError;

    explicit RecipeRun(const QStringList &command, const Sandbox &sandbox = Sandbox())
    {
        ChildProcess process(command);
        process.setSandbox(sandbox);
        process.start();
        exitCode = process.finish();
        lines = QString::fromUtf8(process.standardOutput()).split(QLatin1Char('\n'));
        lines.removeAll(QString());
        standardError = QString::fromUtf8(process.standardError());
    }
};
