// SPDX-License-Identifier: 0BSD

#include "ServicesLauncher.h"

#include <QFile>

#include <csignal>
#include <sys/prctl.h>

namespace {

constexpr int searchIntervalMs = 50;
constexpr int endLimitMs = 3000;

} // namespace

QString brokenDescription()
{
    const QString path = qEnvironmentVariable("LOCAL_SERVICES");
    return path.isEmpty() || describesServices(path) ? QString() : path;
}

ServicesLauncher::ServicesLauncher(const QString &folder, QObject *parent)
    : QObject(parent)
    , m_folder(folder)
{
    m_search.setInterval(searchIntervalMs);
    connect(&m_search, &QTimer::timeout, this, &ServicesLauncher::findDescription);
    connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &ServicesLauncher::reportEnd);
    connect(&m_process, &QProcess::errorOccurred, this, &ServicesLauncher::reportEnd);
}

ServicesLauncher::~ServicesLauncher()
{
    m_process.disconnect(this);
    m_process.terminate();
    m_process.waitForFinished(endLimitMs);
}

void ServicesLauncher::ChildProcess::setupChildProcess()
{
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
}

void ServicesLauncher::start()
{
    QFile::remove(m_folder + QStringLiteral("/services.json")); // left by services that were killed
    m_search.start();
    m_process.start(QStringLiteral(LOCAL_SERVICES_PROGRAM), {QStringLiteral("--folder"), m_folder});
}

// The file is written when the services run.
void ServicesLauncher::findDescription()
{
    const QString description = m_folder + QStringLiteral("/services.json");
    if (!QFile::exists(description))
        return;
    m_search.stop();
    qputenv("LOCAL_SERVICES", QFile::encodeName(description));
    Q_EMIT started(useDevelopmentServices());
}

void ServicesLauncher::reportEnd()
{
    m_search.stop();
    const QString message = QString::fromLocal8Bit(m_process.readAllStandardError()).trimmed();
    Q_EMIT failed(message.isEmpty() ? m_process.errorString() : message);
}
