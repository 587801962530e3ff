// SPDX-License-Identifier: LGPL-2.1-or-later

// An application that sends one event and one record to the local services and waits until both arrive.
//
//     reportinghost LABEL [EXIT-CODE]

#include "DevelopmentServices.h"

#include <ZyBase/ZyBase.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QTemporaryFile>

namespace {

constexpr int timeoutMs = 60000;
constexpr int pauseMs = 50;

int arrivals()
{
    const QString page =
        ZyBase::CJsonReader::ParseJsonFile(qEnvironmentVariable("LOCAL_SERVICES"), QStringLiteral("page"))
            .toString();
    QByteArray answer;
    ZyBase::CHttpPostRequest().StartGetRequestSync(QUrl(page + QStringLiteral("arrivals")), answer);
    return QJsonDocument::fromJson(answer).array().size();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const DevelopmentServices services = useDevelopmentServices();

    QTemporaryFile catalogue;
    if (!catalogue.open()
        || catalogue.write("[{\"event_key\":\"open\",\"event_name\":\"open_file\","
                           "\"event_category\":\"file\",\"event_label\":\"\"}]")
               < 0)
        return EXIT_FAILURE;
    catalogue.close();

    auto *const manager = ZyBase::CGaReportManager::getInstance(nullptr);
    manager->InitGaData(catalogue.fileName(), QStringLiteral("device"), QStringLiteral("G-HOST"),
                        QStringLiteral("secret"));
    manager->InitXdData(services.statistics, QStringLiteral("device"), QStringLiteral("host"),
                        QStringLiteral("1.0"), QStringLiteral("home"));
    const int before = arrivals();
    manager->SendGaReport(QStringLiteral("open"), arguments.value(1), true);
    manager->SendXdReport(QStringLiteral("install"), QStringLiteral("end"));
    for (const QDeadlineTimer deadline(timeoutMs); arrivals() < before + 2 && !deadline.hasExpired();)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, pauseMs);
    ZyBase::CGaReportManager::ReleaseReport();
    return arguments.value(2).toInt();
}
