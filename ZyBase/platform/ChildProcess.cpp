// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ChildProcess.h"

namespace ZyBase {

namespace {

constexpr int nToolTimeoutMs = 30000;
constexpr qint64 nNoProcess = -1;

// Only derived classes may set the state.
struct ProcessState : QProcess
{
    static void reset(QProcess &process) { (process.*&ProcessState::setProcessState)(QProcess::NotRunning); }
};

} // namespace

void runTool(QProcess &process, const char *pszProgram, const QStringList &arguments)
{
    process.start(QLatin1String(pszProgram), arguments, QIODevice::ReadWrite);
    // If the system creates no process, Qt 5.15 can treat it as a running one with the identifier -1. It
    // would wait for it, and the destructor would send SIGKILL to every process of the user.
    if (process.processId() == nNoProcess)
        ProcessState::reset(process);
    process.waitForFinished(nToolTimeoutMs);
}

QString takeOutput(QProcess &process)
{
    return fromUtf8UpToNul(process.readAllStandardOutput().trimmed());
}

QString fromUtf8UpToNul(const QByteArray &baUtf8)
{
    return QString::fromUtf8(baUtf8.constData());
}

} // namespace ZyBase
