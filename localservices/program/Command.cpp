// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Command.h"

#include "Termination.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QStandardPaths>

#include <csignal>
#include <cstdio>

namespace {

constexpr int notFound = 127;
constexpr int endedBySignal = 128;

// Called before the fork. After a fork in a process with threads, a child that cannot start its program may
// deadlock in Qt's error handling.
bool isExecutable(const QString &program)
{
    const QFileInfo file(program);
    if (program.contains(QLatin1Char('/')))
        return file.isFile() && file.isExecutable();
    return !QStandardPaths::findExecutable(program).isEmpty();
}

} // namespace

Command::Command(const QStringList &command, const QProcessEnvironment &environment)
    : m_command(command)
{
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.setInputChannelMode(QProcess::ForwardedInputChannel);
}

int Command::fail(const QString &problem) const
{
    std::fprintf(stderr, "local-services: %s: %s\n", m_command.first().toLocal8Bit().constData(),
                 problem.toLocal8Bit().constData());
    return notFound;
}

int Command::run(Termination &termination)
{
    QEventLoop loop;
    QObject::connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &loop,
                     &QEventLoop::quit);
    if (!isExecutable(m_command.first()))
        return fail(QStringLiteral("not found"));
    m_process.start(m_command.first(), m_command.mid(1));
    constexpr int forever = -1;
    if (!m_process.waitForStarted(forever))
        return fail(m_process.errorString());
    termination.setHandler([this](int signal, bool isFromTerminal) {
        if (!isFromTerminal)
            ::kill(pid_t(m_process.processId()), signal);
    });
    if (m_process.state() != QProcess::NotRunning)
        loop.exec();
    termination.setHandler({});
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode()
                                                          : endedBySignal + m_process.exitCode();
}
