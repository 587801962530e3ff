// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

namespace ZyBase {

/**
 * Starts the tool and waits until it ends, for 30 seconds at most. What became of it the process knows:
 * a tool that is still running has the exit code 0 and ends with the process object.
 */
void runTool(QProcess &process, const char *pszProgram, const QStringList &arguments);

/** What the tool has printed so far, without the white space around it, up to the first NUL byte. */
QString takeOutput(QProcess &process);

} // namespace ZyBase
