// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FakeClock.h"

#include "HostProcess.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

#include <cerrno>
#include <csignal>

namespace {

const QLatin1String library(ZYBASE_FAKETIME_LIBRARY);

} // namespace

bool FakeClock::isAvailable()
{
    return QFile::exists(library);
}

FakeClock::FakeClock(const QDateTime &now)
{
    set(now);
}

FakeClock::~FakeClock()
{
    QDir sharedMemory(QStringLiteral("/dev/shm"));
    const QStringList names = sharedMemory.entryList(
        {QStringLiteral("faketime_shm_*"), QStringLiteral("sem.faketime_sem_*")}, QDir::Files | QDir::System);
    for (const QString &name : names) {
        const int processId = name.section(QLatin1Char('_'), -1).toInt();
        if (processId > 0 && ::kill(processId, 0) != 0 && errno == ESRCH)
            sharedMemory.remove(name);
    }
}

void FakeClock::install(HostProcess *host) const
{
    host->setEnvironment(QStringLiteral("LD_PRELOAD"), library);
    host->setEnvironment(QStringLiteral("FAKETIME_TIMESTAMP_FILE"),
                         m_directory.filePath(QStringLiteral("now")));
    host->setEnvironment(QStringLiteral("FAKETIME_FMT"), QStringLiteral("%s"));
    host->setEnvironment(QStringLiteral("FAKETIME_NO_CACHE"), QStringLiteral("1"));
    host->setEnvironment(QStringLiteral("FAKETIME_DONT_FAKE_MONOTONIC"), QStringLiteral("1"));
    // The address sanitizer must normally be loaded first; here faketime is.
    host->setEnvironment(QStringLiteral("ASAN_OPTIONS"),
                         QStringLiteral("verify_asan_link_order=0:detect_leaks=0"));
}

void FakeClock::set(const QDateTime &now)
{
    m_now = now;
    QSaveFile file(m_directory.filePath(QStringLiteral("now")));
    file.open(QIODevice::WriteOnly);
    file.write(QByteArray::number(now.toSecsSinceEpoch()));
    file.commit();
}

void FakeClock::advance(qint64 seconds)
{
    set(m_now.addSecs(seconds));
}
