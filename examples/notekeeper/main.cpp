// SPDX-License-Identifier: 0BSD

// Note Keeper: a small desktop application that uses the library.
//
//     notekeeper [--updates ADDRESS]    ADDRESS: of the description of the latest version

#include "Log.h"
#include "MainWindow.h"
#include "Reports.h"

#include <DevelopmentServices.h>
#include <LogDirectory.h>
#include <MessagesInLog.h>
#include <QuitInTime.h>
#include <RunningRequests.h>
#include <SystemProxy.h>
#include <TlsSupport.h>

#include <ZyBase/platform/CSystemUtils.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QIcon>
#include <QLockFile>
#include <QMessageBox>
#include <QStandardPaths>
#include <QUrl>

using namespace std::chrono_literals;

namespace {

constexpr auto timeToStop = 500ms;
constexpr auto timeToQuit = 2000ms;
constexpr int keptMonths = 6;

// Before the application object, because the proxy can change environment variables.
DevelopmentServices routeRequests()
{
    DevelopmentServices services = useDevelopmentServices();
    if (services.statistics.isEmpty()) // the services have a proxy of their own
        useSystemProxy();
    return services;
}

void describeApplication()
{
    QApplication::setOrganizationName(QStringLiteral("example"));
    QApplication::setApplicationName(QStringLiteral("notekeeper"));
    QApplication::setApplicationDisplayName(QStringLiteral("Note Keeper"));
    QApplication::setApplicationVersion(QStringLiteral("1.0.0"));
    QApplication::setDesktopFileName(QStringLiteral("notekeeper"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/notekeeper.svg")));
    QApplication::setStyle(QStringLiteral("Fusion")); // uses the colours of a palette, light or dark
}

QUrl updatesOption(const QApplication &application)
{
    const QCommandLineOption updates(
        QStringLiteral("updates"), QStringLiteral("the description of the latest version"),
        QStringLiteral("ADDRESS"), QStringLiteral("https://updates.example.org/notekeeper/version.json"));
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption(updates);
    parser.process(application);
    return QUrl(parser.value(updates));
}

QString makeDataDirectory()
{
    QString directory = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(directory);
    return directory;
}

// Two processes must not write the same log and the same notes.
bool isOnlyProcess(QLockFile *lock)
{
    lock->setStaleLockTime(0); // only the end of the other process makes its lock stale
    return lock->tryLock() || lock->error() != QLockFile::LockFailedError;
}

// Returns why there is no log, as a message for the user; null if there is one.
QString startLog()
{
    const QString fileName = QStringLiteral("notekeeper.log");
    const LogDirectory directory = prepareLogDirectory(fileName, keptMonths);
    if (directory.problem.isNull())
        openLog(fileName, directory.base);
    return directory.problem;
}

int runWindow(const QString &directory, const QUrl &updates, const QString &statistics)
{
    const QStringList problems {startLog(), tlsProblem()};
    UsageReports reports(reportSettings(statistics)); // sends nothing without consent
    MainWindow window(directory, updates, &reports);
    for (const QString &problem : problems)
        window.showProblem(problem);
    qCInfo(notekeeper, "Version %s started", qUtf8Printable(QApplication::applicationVersion()));
    window.show();
    if (reports.hasChosen())
        reportStart(&reports);
    else
        window.askForConsent();
    const int exitCode = QApplication::exec(); // the window saves the notes when it is closed

    endProcessAfter(timeToQuit, exitCode);
    RunningRequests().stopAll(timeToStop); // stops the reports, too
    closeLog();
    return exitCode;
}

int runApplication(int &argc, char **argv)
{
    const DevelopmentServices services = routeRequests();
    const QApplication application(argc, argv);
    describeApplication();
    const QUrl updates = updatesOption(application);

    const QString directory = makeDataDirectory();
    QLockFile lock(directory + QStringLiteral("/lock"));
    if (isOnlyProcess(&lock))
        return runWindow(directory, updates, services.statistics);
    QMessageBox::information(nullptr, QString(),
                             QCoreApplication::translate("main", "Note Keeper is already running."));
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char **argv)
{
    captureMessages();
    ZyBase::CSystemUtils::EnableHighDPISupport(true);
    endProcess(runApplication(argc, argv));
}
