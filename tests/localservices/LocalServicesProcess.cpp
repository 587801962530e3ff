// SPDX-License-Identifier: LGPL-2.1-or-later

#include "LocalServicesProcess.h"

#include "Files.h"
#include "Requests.h"

#include <QJsonDocument>
#include <QTest>

namespace {

constexpr int patienceMs = 60000;

} // namespace

LocalServicesProcess::LocalServicesProcess()
{
    m_process.setProgram(QStringLiteral(LOCAL_SERVICES_PROGRAM));
}

LocalServicesProcess::~LocalServicesProcess()
{
    m_process.kill();
    m_process.waitForFinished(patienceMs);
}

bool LocalServicesProcess::start(const QStringList &options)
{
    m_standardError.clear();
    m_process.setArguments(QStringList {QStringLiteral("--folder"), folder()} + options);
    m_process.start();
    // What lies there before may be that of a run that was killed.
    const bool isOver = QTest::qWaitFor(
        [&] { return standardError().contains("shows up at") || m_process.state() == QProcess::NotRunning; },
        patienceMs);
    m_services = QJsonDocument::fromJson(readFile(filePath(QStringLiteral("services.json")))).object();
    return isOver && m_process.state() == QProcess::Running && !m_services.isEmpty();
}

bool LocalServicesProcess::startCommand(const QStringList &command)
{
    m_process.setArguments(
        QStringList {QStringLiteral("--folder"), folder(), QStringLiteral("--port"), QStringLiteral("0")}
        + command);
    m_process.start();
    return m_process.waitForStarted(patienceMs);
}

int LocalServicesProcess::run(const QStringList &command, const QByteArray &input)
{
    if (!startCommand(command))
        return -1;
    m_process.write(input);
    m_process.closeWriteChannel();
    return waitForExitCode();
}

int LocalServicesProcess::waitForExitCode()
{
    const bool hasEnded = m_process.state() == QProcess::NotRunning || m_process.waitForFinished(patienceMs);
    return hasEnded && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

int LocalServicesProcess::end(int signal)
{
    ::kill(pid_t(m_process.processId()), signal);
    return waitForExitCode();
}

bool LocalServicesProcess::waitForStandardError(const QByteArray &text)
{
    return QTest::qWaitFor([&] { return standardError().contains(text); }, patienceMs);
}

QString LocalServicesProcess::value(const char *key) const
{
    return m_services.value(QLatin1String(key)).toString();
}

QJsonArray LocalServicesProcess::arrivals() const
{
    return QJsonDocument::fromJson(request("GET", page(QStringLiteral("arrivals"))).body).array();
}
