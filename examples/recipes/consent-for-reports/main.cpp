// SPDX-License-Identifier: LGPL-2.1-or-later

// Shows usage reports that are sent while the user allows it and never otherwise.
//
//     scripts/local-services recipe-consent-for-reports
//
// Type "allow", "forbid" and "report", and look at the page of the local services; end by Ctrl+D.

#include "UsageReports.h"

#include "../seeing-what-is-sent/DevelopmentServices.h"

#include <ZyBase/analytics/CGaReportManager.h>

#include <QCoreApplication>
#include <QTemporaryFile>
#include <QTextStream>
#include <QTimer>

#include <thread>

namespace {

constexpr int lastMomentMs = 200;

void say(const QString &line)
{
    QTextStream(stdout) << line << '\n';
}

void choose(UsageReports &reports, bool allowed)
{
    const bool isKept = reports.setAllowed(allowed);
    say(allowed ? QStringLiteral("Reports are sent") : QStringLiteral("No reports are sent"));
    if (!isKept)
        say(QStringLiteral("The choice can't be kept"));
}

void obey(UsageReports &reports, const QString &command)
{
    if (command == QLatin1String("allow") || command == QLatin1String("forbid"))
        return choose(reports, command == QLatin1String("allow"));
    reports.sendEvent(QStringLiteral("open"));
    reports.sendRecord(QStringLiteral("server_run"), QStringLiteral("none"));
    say(QStringLiteral("Something to report"));
}

// Reads on while the event loop runs.
void readCommands(UsageReports &reports)
{
    QTextStream input(stdin);
    for (QString line = input.readLine(); !line.isNull(); line = input.readLine())
        QTimer::singleShot(0, qApp, [&reports, line] { obey(reports, line); });
    QTimer::singleShot(0, qApp, [] {
        ZyBase::CGaReportManager::ReleaseReport();
        QTimer::singleShot(lastMomentMs, qApp, &QCoreApplication::quit);
    });
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Example"));
    QCoreApplication::setApplicationName(QStringLiteral("consent"));
    const DevelopmentServices services = useDevelopmentServices();

    QTemporaryFile catalogue; // a host has it in its resources
    if (!catalogue.open()
        || catalogue.write(R"([{"event_key": "open", "event_name": "open_file", "event_category": "file",
                               "event_label": "pdf"}])")
               < 0)
        return EXIT_FAILURE;
    catalogue.close();

    UsageReports reports({QStringLiteral("consent-recipe"), QStringLiteral("1.0"), catalogue.fileName(),
                          QStringLiteral("G-EXAMPLE"), QStringLiteral("secret"), services.statistics});
    say(reports.isAllowed() ? QStringLiteral("Reports are sent") : QStringLiteral("No reports are sent"));
    std::thread reader([&reports] { readCommands(reports); });
    const int exitCode = QCoreApplication::exec();
    reader.join();
    return exitCode;
}
