// SPDX-License-Identifier: LGPL-2.1-or-later

// A first host: it logs, downloads a file, and reports both to the collectors.
//
//     scripts/local-services firsthost    where nothing leaves this machine

#include "DevelopmentServices.h"

#include <ZyBase/ZyBase.h>

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <QTextStream>
#include <QTimer>
#include <QUrl>

namespace {

constexpr int lastMomentMs = 500;

void log(const QString &message)
{
    ZyBase::LoggerObject::info(message.toUtf8().constData());
    QTextStream(stdout) << message << '\n';
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const DevelopmentServices services = useDevelopmentServices();
    if (services.downloads.isEmpty()) {
        QTextStream(stderr) << "Start me by scripts/local-services, or name servers of your own here.\n";
        return 1;
    }

    // The log makes its own folder in here and no more.
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    QDir().mkpath(folder);
    ZyBase::LoggerObject::InitLogger("firsthost.log", folder.toUtf8().constData());
    log(QStringLiteral("Files and log are in ") + folder);

    const QString machine = ZyBase::CSystemUtils::GetPCID(QString(), QStringLiteral("firsthost"));
    auto *const reports = ZyBase::CGaReportManager::getInstance(nullptr);
    reports->InitGaData(QStringLiteral(":/events.json"), machine, QStringLiteral("G-FIRSTHOST"),
                        QStringLiteral("secret"));
    reports->InitXdData(services.statistics, machine, QStringLiteral("firsthost"), QStringLiteral("1.0"),
                        QStringLiteral("home"));
    reports->SendXdReport(QStringLiteral("server_run"), QStringLiteral("start"));

    ZyBase::DownloadManager download;
    QObject::connect(&download, &ZyBase::DownloadManager::signalDownloadFinished, &application,
                     [&](bool bSuccess, const QString &strFilePath) {
                         log(bSuccess ? QStringLiteral("Downloaded ") + strFilePath
                                      : QStringLiteral("The download failed"));
                         reports->SendGaReport(QStringLiteral("download"),
                                               bSuccess ? QString() : QStringLiteral("failed"), false);
                         QTimer::singleShot(lastMomentMs, &application, &QCoreApplication::quit);
                     });
    if (!download.StartDownload(QUrl(services.downloads + QStringLiteral("bytes/1000000/first.bin")), folder))
        return 1;

    QCoreApplication::exec();
    ZyBase::CGaReportManager::ReleaseReport();
    QCoreApplication::processEvents();
    ZyBase::LoggerObject::ReleaseLogger();
    return 0;
}
