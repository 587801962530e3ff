// SPDX-License-Identifier: 0BSD

// A first application: it logs, downloads a file, and sends usage reports if the user has agreed.
//
//     scripts/local-services firsthost [--allow-reports | --forbid-reports]
//
// scripts/local-services runs all services on this machine; nothing is sent to the internet. Without an
// option and without an earlier "yes", the application asks whether it may send reports.

#include "DevelopmentServices.h"
#include "QuitInTime.h"
#include "RunningRequests.h"
#include "UsageReports.h"

#include <ZyBase/base/LoggerObject.h>
#include <ZyBase/http/DownloadManager.h>

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <QTextStream>
#include <QTimer>
#include <QUrl>

#include <cstdlib>

using namespace std::chrono_literals;

namespace {

constexpr auto timeForReports = 500ms; // the last report is sent in the background
constexpr auto timeToStop = 500ms;
constexpr auto timeToQuit = 2000ms;

void log(const QString &message)
{
    ZyBase::LoggerObject::info(message.toUtf8().constData());
    QTextStream(stdout) << message << '\n';
}

QString makeDataDirectory()
{
    QString directory = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(directory);
    return directory;
}

bool answersYes(const QString &question)
{
    QTextStream out(stdout);
    out << question << " [y/N] ";
    out.flush();
    return QTextStream(stdin).readLine().startsWith(QLatin1Char('y'), Qt::CaseInsensitive);
}

// Consent comes first: before it, nothing is sent and the machine has no identifier.
void obtainConsent(UsageReports &reports)
{
    const QStringList options = QCoreApplication::arguments();
    if (options.contains(QStringLiteral("--forbid-reports")))
        reports.setAllowed(false);
    else if (options.contains(QStringLiteral("--allow-reports")))
        reports.setAllowed(true);
    else if (!reports.isAllowed())
        reports.setAllowed(answersYes(QStringLiteral("May this application send usage reports?")));
    log(reports.isAllowed() ? QStringLiteral("Usage reports are sent")
                            : QStringLiteral("No usage reports are sent"));
}

int runApplication()
{
    const DevelopmentServices services = useDevelopmentServices();
    if (services.downloads.isEmpty()) {
        QTextStream(stderr) << "LOCAL_SERVICES is not set. Start this program with scripts/local-services.\n";
        return EXIT_FAILURE;
    }

    const QString directory = makeDataDirectory();
    ZyBase::LoggerObject::InitLogger("firsthost.log", directory.toUtf8().constData());
    log(QStringLiteral("Files and log are in ") + directory);

    UsageReports reports({QStringLiteral("firsthost"), QStringLiteral("1.0"), QStringLiteral(":/events.json"),
                          QStringLiteral("G-FIRSTHOST"), QStringLiteral("secret"), services.statistics});
    obtainConsent(reports);
    reports.sendRecord(QStringLiteral("server_run"), QStringLiteral("start"));

    ZyBase::DownloadManager download;
    QObject::connect(
        &download, &ZyBase::DownloadManager::signalDownloadFinished, &download,
        [&reports](bool isComplete, const QString &path) {
            log(isComplete ? QStringLiteral("Downloaded ") + path : QStringLiteral("The download failed"));
            reports.sendEvent(QStringLiteral("download"), isComplete ? QString() : QStringLiteral("failed"));
            QTimer::singleShot(timeForReports, qApp, &QCoreApplication::quit);
        });
    const QUrl url(services.downloads + QStringLiteral("bytes/1000000/first.bin"));
    if (!download.StartDownload(url, directory))
        return EXIT_FAILURE;

    const int exitCode = QCoreApplication::exec();
    endProcessAfter(timeToQuit, exitCode);
    ZyBase::LoggerObject::ReleaseLogger();
    RunningRequests().stopAll(timeToStop); // stops reports too
    return exitCode;
}

} // namespace

int main(int argc, char **argv)
{
    int exitCode = 0;
    {
        const QCoreApplication application(argc, argv);
        QCoreApplication::setOrganizationName(QStringLiteral("example"));
        QCoreApplication::setApplicationName(QStringLiteral("firsthost"));
        exitCode = runApplication();
    }
    endProcess(exitCode);
}
