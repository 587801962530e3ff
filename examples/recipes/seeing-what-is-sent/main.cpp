// SPDX-License-Identifier: 0BSD

// Sends an event and a record to the local services, and prints the address of their web page.
//
//     scripts/local-services recipe-seeing-what-is-sent

#include "../PrintLine.h"
#include "../SampleCatalogue.h"
#include "DevelopmentServices.h"
#include "QuitInTime.h"
#include "RunningRequests.h"

#include <ZyBase/analytics/CGaReportManager.h>

#include <QCoreApplication>
#include <QTimer>

using ZyBase::CGaReportManager;

namespace {

// A record has no outcome to wait for. On the same machine it arrives within a second.
constexpr int recordTimeMs = 1000;
constexpr std::chrono::milliseconds timeToStop(500);

void sendReports(const QString &catalogue, const QString &statistics)
{
    const QString device = QStringLiteral("a development build");
    auto *const manager = CGaReportManager::getInstance(nullptr);
    manager->InitGaData(catalogue, device, QStringLiteral("G-DEVELOPMENT"), QStringLiteral("secret"));
    manager->InitXdData(statistics, device, QStringLiteral("recipe"), QStringLiteral("1.0"),
                        QStringLiteral("home"));
    manager->SendXdReport(QStringLiteral("server_run"), QStringLiteral("none"));
    manager->SendGaReport(QStringLiteral("open"), QString(), true);
}

int run(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const DevelopmentServices services = useDevelopmentServices();
    if (services.statistics.isEmpty()) {
        printLine(QStringLiteral("There are no local services: start this with scripts/local-services"));
        return EXIT_FAILURE;
    }

    const SampleCatalogue catalogue;
    sendReports(catalogue.path(), services.statistics);
    printLine(QStringLiteral("An event and a record were sent; see %1").arg(services.page));
    QTimer::singleShot(recordTimeMs, &application, &QCoreApplication::quit);
    const int exitCode = QCoreApplication::exec();
    RunningRequests().stopAll(timeToStop);
    return exitCode;
}

} // namespace

int main(int argc, char **argv)
{
    endProcess(run(argc, argv));
}
