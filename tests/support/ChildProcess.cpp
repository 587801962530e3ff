// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ChildProcess.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

#include <csignal>
#include <unistd.h>

void ChildProcess::GroupProcess::setupChildProcess()
{
    ::setpgid(0, 0);
}

ChildProcess::ChildProcess(const QStringList &command)
    : m_command(command)
    , m_environment(QProcessEnvironment::systemEnvironment())
{
}

ChildProcess::~ChildProcess()
{
    kill();
}

void ChildProcess::setEnvironment(const QString &variable, const QString &value)
{
    if (value.isNull())
        m_environment.remove(variable);
    else
        m_environment.insert(variable, value);
}

bool ChildProcess::start(const QStringList &arguments)
{
    QStringList command = m_sandbox.commandLine(m_command + arguments);
    const QString program = command.takeFirst();
    m_process.setProcessEnvironment(m_environment);
    m_timer.start();
    m_process.start(program, command);
    const bool isStarted = m_process.waitForStarted(timeoutMs);
    m_group = m_process.processId();
    return isStarted;
}

void ChildProcess::write(const QByteArray &input)
{
    m_process.write(input);
    while (m_process.bytesToWrite() > 0 && m_process.waitForBytesWritten(timeoutMs)) {}
}

int ChildProcess::finish(int limitMs)
{
    const bool hasEnded = !isRunning() || m_process.waitForFinished(limitMs);
    m_durationMs = m_timer.elapsed();
    return hasEnded && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

void ChildProcess::sendSignal(int signal)
{
    ::kill(pid_t(processId()), signal);
}

void ChildProcess::kill()
{
    if (m_group > 0)
        ::kill(pid_t(-m_group), SIGKILL);
    m_group = 0;
    m_process.kill();
    m_process.waitForFinished(timeoutMs);
}

bool ChildProcess::waitForLine(int limitMs)
{
    const QDeadlineTimer deadline(limitMs);
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(int(deadline.remainingTime())))
            return false;
    }
    return true;
}

QByteArray ChildProcess::readLine()
{
    return waitForLine(timeoutMs) ? m_process.readLine() : QByteArray();
}

QByteArray ChildProcess::standardOutput()
{
    if (m_process.isOpen())
        m_standardOutput += m_process.readAllStandardOutput();
    return m_standardOutput;
}

QStringList ChildProcess::lines()
{
    QStringList lines = QString::fromUtf8(standardOutput()).split(QLatin1Char('\n'));
    lines.removeLast(); // what follows the last line end
    return lines;
}

bool ChildProcess::waitForLine(const QString &line)
{
    for (const QDeadlineTimer deadline(timeoutMs); !lines().contains(line); QThread::msleep(1)) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents();
    }
    return true;
}

QByteArray ChildProcess::standardError()
{
    if (m_process.isOpen())
        m_standardError += m_process.readAllStandardError();
    return m_standardError;
}
