// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ChildProcess.h"

namespace ZyBase {

namespace {

constexpr int nToolTimeoutMs = 30000;
constexpr qint64 nNoProcess = -1;

// If the system creates no process, Qt 5.15 can take the process for a running one whose identifier is -1.
// It would wait for it, and the destructor would send SIGKILL to every process of the user.
bool hasNoChild(const QProcess &process)
{
    return process.processId() == nNoProcess;
}

// Only derived classes may set the state. A derived object must not be started in place of a QProcess:
// Qt would then install a handler for SIGCHLD in the application.
struct ProcessState : QProcess
{
    static void reset(QProcess &process) { (process.*&ProcessState::setProcessState)(QProcess::NotRunning); }
};

} // namespace

void ChildProcess::run(const char *pszProgram, const QStringList &arguments)
{
    if (hasNoChild(*m_process))
        m_process.emplace(); // closes the pipes of the failed start
    m_process->start(QLatin1String(pszProgram), arguments, QIODevice::ReadWrite);
    if (hasNoChild(*m_process))
        ProcessState::reset(*m_process);
    m_process->waitForFinished(nToolTimeoutMs);
}

int ChildProcess::exitCode() const
{
    return m_process->exitCode();
}

QString ChildProcess::takeOutput()
{
    return fromUtf8UpToNul(m_process->readAllStandardOutput().trimmed());
}

QString fromUtf8UpToNul(const QByteArray &baUtf8)
{
    return QString::fromUtf8(baUtf8.constData());
}

} // namespace ZyBase
