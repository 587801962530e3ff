// SPDX-License-Identifier: 0BSD

// Sends usage reports, but only while the user allows it.
//
//     scripts/local-services recipe-consent-for-reports
//
// Type "allow", "forbid" or "report", and look at the web page of the local services. Ctrl+D quits.

#include "../PrintLine.h"
#include "../SampleCatalogue.h"
#include "DevelopmentServices.h"
#include "QuitInTime.h"
#include "RunningRequests.h"
#include "UsageReports.h"

#include <QCoreApplication>
#include <QTimer>

#include <thread>

namespace {

constexpr std::chrono::milliseconds timeToStop(500);

void printChoice(const UsageReports &reports)
{
    printLine(reports.isAllowed() ? QStringLiteral("Reports are sent")
                                  : QStringLiteral("No reports are sent"));
}

void choose(UsageReports &reports, bool allowed)
{
    const bool isStored = reports.setAllowed(allowed);
    printChoice(reports);
    if (!isStored)
        printLine(QStringLiteral("The choice cannot be stored"));
}

void execute(UsageReports &reports, const QString &command)
{
    if (command == QLatin1String("allow") || command == QLatin1String("forbid"))
        return choose(reports, command == QLatin1String("allow"));
    reports.sendEvent(QStringLiteral("open"));
    reports.sendRecord(QStringLiteral("server_run"), QStringLiteral("none"));
    printLine(QStringLiteral("Something to report"));
}

// Runs in a thread. The commands are executed in the main thread.
void readCommands(UsageReports &reports)
{
    QTextStream input(stdin);
    for (QString line = input.readLine(); !line.isNull(); line = input.readLine())
        QTimer::singleShot(0, qApp, [&reports, line] { execute(reports, line); });
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
}

int run(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("example"));
    QCoreApplication::setApplicationName(QStringLiteral("consent"));
    const DevelopmentServices services = useDevelopmentServices();

    const SampleCatalogue catalogue;
    UsageReports reports({QStringLiteral("consent-recipe"), QStringLiteral("1.0"), catalogue.path(),
                          QStringLiteral("G-EXAMPLE"), QStringLiteral("secret"), services.statistics});
    printChoice(reports);
    std::thread reader([&reports] { readCommands(reports); });
    const int exitCode = QCoreApplication::exec();
    reader.join();
    RunningRequests().stopAll(timeToStop);
    return exitCode;
}

} // namespace

int main(int argc, char **argv)
{
    endProcess(run(argc, argv));
}
