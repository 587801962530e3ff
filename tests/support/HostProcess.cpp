// SPDX-License-Identifier: LGPL-2.1-or-later

#include "HostProcess.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

// A child that answers later than this hangs.
constexpr int patience = 60000;

} // namespace

QString HostProcess::program()
{
    return QStringLiteral(ZYBASE_TEST_HOST);
}

HostProcess::HostProcess()
    : m_command(program())
    , m_environment(QProcessEnvironment::systemEnvironment())
{
}

HostProcess::~HostProcess()
{
    kill();
}

void HostProcess::setEnvironment(const QString &variable, const QString &value)
{
    if (value.isNull())
        m_environment.remove(variable);
    else
        m_environment.insert(variable, value);
}

bool HostProcess::start(const Sandbox &sandbox)
{
    QStringList command = sandbox.commandLine(m_command);
    const QString executable = command.takeFirst();
    m_process.setProcessEnvironment(m_environment);
    m_process.start(executable, command);
    return m_process.waitForStarted(patience);
}

QJsonValue HostProcess::call(const QString &command, const QJsonArray &arguments)
{
    send(command, arguments);
    return answer();
}

void HostProcess::send(const QString &command, const QJsonArray &arguments)
{
    QJsonArray request = arguments;
    request.prepend(command);
    m_process.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    while (m_process.bytesToWrite() > 0 && m_process.waitForBytesWritten(patience)) {}
}

bool HostProcess::hasAnswer(int timeout)
{
    return m_process.canReadLine() || (m_process.waitForReadyRead(timeout) && m_process.canReadLine());
}

QJsonValue HostProcess::answer()
{
    while (true) {
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(patience))
                return QJsonValue(QJsonValue::Undefined);
        }
        const QByteArray line = m_process.readLine();
        const QJsonArray words = QJsonDocument::fromJson(line).array();
        if (!words.isEmpty())
            return words.first();
        m_standardOutput += line;
    }
}

int HostProcess::quit()
{
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(patience))
        return -1;
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

void HostProcess::kill()
{
    m_process.kill();
    m_process.waitForFinished(patience);
}

QString HostProcess::standardError()
{
    if (m_process.isOpen())
        m_standardError += m_process.readAllStandardError();
    return QString::fromUtf8(m_standardError);
}
