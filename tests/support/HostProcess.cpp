// SPDX-License-Identifier: LGPL-2.1-or-later

#include "HostProcess.h"

#include <QJsonDocument>

namespace {

constexpr int endTimeoutMs = 5000;

} // namespace

QString HostProcess::program()
{
    return QStringLiteral(ZYBASE_TEST_HOST);
}

HostProcess::HostProcess()
    : m_process({program()})
{
}

// A process that is killed writes no coverage data.
HostProcess::~HostProcess()
{
    m_process.closeInput();
    m_process.finish(endTimeoutMs);
}

bool HostProcess::start(const Sandbox &sandbox)
{
    m_process.setSandbox(sandbox);
    return m_process.start();
}

bool HostProcess::startInRootDirectory()
{
    const QString path = QStringLiteral("/host");
    Sandbox sandbox;
    sandbox.freshRoot();
    sandbox.replace(path, program());
    setCommand({path});
    return start(sandbox);
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
}

QJsonValue HostProcess::answer()
{
    while (true) {
        const QByteArray line = m_process.readLine();
        if (line.isEmpty())
            return QJsonValue(QJsonValue::Undefined);
        const QJsonArray words = QJsonDocument::fromJson(line).array();
        if (!words.isEmpty())
            return words.first();
        m_standardOutput += line;
    }
}

int HostProcess::quit()
{
    m_process.closeInput();
    return m_process.finish();
}
