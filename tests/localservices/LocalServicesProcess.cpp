// SPDX-License-Identifier: LGPL-2.1-or-later

#include "LocalServicesProcess.h"

#include "Files.h"
#include "Requests.h"

#include <QJsonDocument>
#include <QTest>

bool LocalServicesProcess::startProcess(const QStringList &arguments)
{
    m_process = std::make_unique<ChildProcess>(
        QStringList {QStringLiteral(LOCAL_SERVICES_PROGRAM), QStringLiteral("--folder"), folder()});
    return m_process->start(arguments);
}

bool LocalServicesProcess::start(const QStringList &options)
{
    startProcess(options);
    // An older services.json may be that of a run that was killed.
    const bool isOver =
        QTest::qWaitFor([&] { return standardError().contains("shows up at") || !m_process->isRunning(); },
                        ChildProcess::timeoutMs);
    m_services = QJsonDocument::fromJson(readFile(filePath(QStringLiteral("services.json")))).object();
    return isOver && m_process->isRunning() && !m_services.isEmpty();
}

bool LocalServicesProcess::startCommand(const QStringList &command)
{
    return startProcess(QStringList {QStringLiteral("--port"), QStringLiteral("0")} + command);
}

int LocalServicesProcess::run(const QStringList &command, const QByteArray &input)
{
    if (!startCommand(command))
        return -1;
    m_process->write(input);
    m_process->closeInput();
    return waitForExitCode();
}

int LocalServicesProcess::end(int signal)
{
    m_process->sendSignal(signal);
    return waitForExitCode();
}

bool LocalServicesProcess::waitForStandardError(const QByteArray &text)
{
    return QTest::qWaitFor([&] { return standardError().contains(text); }, ChildProcess::timeoutMs);
}

QString LocalServicesProcess::value(const char *key) const
{
    return m_services.value(QLatin1String(key)).toString();
}

QJsonArray LocalServicesProcess::arrivals() const
{
    return QJsonDocument::fromJson(request("GET", page(QStringLiteral("arrivals"))).body).array();
}
