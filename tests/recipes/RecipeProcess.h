// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ChildProcess.h"

/** A recipe's program, whose environment contains no proxy and no local services. */
class RecipeProcess : public ChildProcess
{
public:
    explicit RecipeProcess(const QString &recipe);

    /** Writes a line to the program's input. */
    void write(const QString &line) { ChildProcess::write(line.toUtf8() + '\n'); }

    qint64 duration() const { return durationMs(); }
    QString standardError() { return QString::fromUtf8(ChildProcess::standardError()); }
};
