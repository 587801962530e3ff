// SPDX-License-Identifier: LGPL-2.1-or-later

// Sends an event and a record, and says where to look at them.
//
//     scripts/local-services recipe-seeing-what-is-sent

#include "DevelopmentServices.h"

#include <ZyBase/analytics/CGaReportManager.h>

#include <QCoreApplication>
#include <QTemporaryFile>
#include <QTextStream>
#include <QTimer>

using ZyBase::CGaReportManager;

namespace {

constexpr int lastMomentMs = 1000;

void say(const QString &line)
{
    QTextStream(stdout) << line << '\n';
}

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

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const DevelopmentServices services = useDevelopmentServices();
    if (services.statistics.isEmpty()) {
        say(QStringLiteral("No local services: start this by scripts/local-services"));
        return EXIT_FAILURE;
    }

    QTemporaryFile catalogue;
    if (!catalogue.open()
        || catalogue.write(R"([{"event_key": "open", "event_name": "open_file", "event_category": "file",
                               "event_label": "pdf"}])")
               < 0)
        return EXIT_FAILURE;
    catalogue.close();

    sendReports(catalogue.fileName(), services.statistics);
    say(QStringLiteral("An event and a record are sent; look at %1").arg(services.page));
    QTimer::singleShot(lastMomentMs, &application, &QCoreApplication::quit); // the record is on its way
    return QCoreApplication::exec();
}
