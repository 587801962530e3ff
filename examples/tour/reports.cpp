// SPDX-License-Identifier: 0BSD

#include "services.h"

#include "Report.h"
#include "TourNetwork.h"
#include "waiting.h"

#include <ZyBase/analytics/CGaReportManager.h>

#include <localservices/HttpServer.h>

#include <QFile>

#include <algorithm>

using LocalServices::HttpServer;
using ZyBase::CGaReportManager;

namespace {

// A request that is not stopped ends only after ten seconds.
constexpr std::chrono::milliseconds timeToStop(5000);

const QByteArray catalogue = QByteArrayLiteral(R"([
    {"event_key": "open",  "event_name": "open_file",  "event_category": "file", "event_label": "pdf"},
    {"event_key": "print", "event_name": "print_file", "event_category": "file", "event_label": ""}
])");

bool writeCatalogue(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(catalogue) == catalogue.size();
}

void show(Report &report, const QString &receiver, const QList<TourNetwork::Arrival> &arrivals)
{
    for (const TourNetwork::Arrival &arrival : arrivals) {
        report.line(receiver, arrival.target);
        report.excerpt(arrival.body.trimmed().split(QLatin1Char('\n')));
    }
}

bool areGood(const QList<TourNetwork::Arrival> &arrivals)
{
    return std::all_of(arrivals.begin(), arrivals.end(),
                       [](const TourNetwork::Arrival &arrival) { return arrival.isGood; });
}

void showEvents(Report &report, CGaReportManager *manager, const TourNetwork &network, const QDir &directory)
{
    const QString path = directory.filePath(QStringLiteral("events.json"));
    if (!writeCatalogue(path))
        return report.promise(QStringLiteral("The catalogue of events can be written"), false);

    manager->InitGaData(path, QStringLiteral("device"), QStringLiteral("G-TOUR"), QStringLiteral("secret"));
    manager->SendGaReport(QStringLiteral("open"), QString(), true);
    report.promise(QStringLiteral("A synchronous event has arrived when the call returns"),
                   network.events().size() == 1);
    manager->SendGaReport(QStringLiteral("print"), QStringLiteral("laser"), false);
    manager->SendGaReport(QStringLiteral("print"), QString(), false); // has no label
    manager->SendGaReport(QStringLiteral("unknown"), QString(), false);
    waitFor([&network] { return network.events().size() >= 2; });
    const QList<TourNetwork::Arrival> events = network.events();
    show(report, QStringLiteral("an event arrived"), events);
    report.promise(QStringLiteral("Both complete events have arrived and are valid"),
                   events.size() == 2 && areGood(events));
}

void showRecord(Report &report, CGaReportManager *manager, const TourNetwork &network)
{
    manager->InitXdData(network.statisticsUrl(), QStringLiteral("device"), QStringLiteral("tour"),
                        QStringLiteral("1.0"), QStringLiteral("home"));
    manager->SendXdReport(QStringLiteral("install"), QStringLiteral("end"));
    waitFor([&network] { return !network.records().isEmpty(); });
    const QList<TourNetwork::Arrival> records = network.records();
    show(report, QStringLiteral("a record arrived"), records);
    report.promise(QStringLiteral("The record has arrived and its signature is right"),
                   records.size() == 1 && areGood(records));
}

void showStop(Report &report, CGaReportManager *manager)
{
    const HttpServer server;
    manager->InitXdData(server.url(QStringLiteral("/never")).toString(), QStringLiteral("device"),
                        QStringLiteral("tour"), QStringLiteral("1.0"), QStringLiteral("home"));
    manager->SendXdReport(QStringLiteral("install"), QStringLiteral("end"));
    const bool isUnderWay = waitFor([&server] { return server.requests().size() == 1; });
    CGaReportManager::ReleaseReport();
    report.promise(QStringLiteral("ReleaseReport() stops a request that is not answered"),
                   isUnderWay && waitFor([&server] { return server.openConnections() == 0; }, timeToStop));
}

} // namespace

void showReports(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("Usage reports"), QStringLiteral("ZyBase/analytics/CGaReportManager.h"));
    auto *const manager = CGaReportManager::getInstance(nullptr);
    if (manager == nullptr)
        return report.promise(QStringLiteral("The process has a manager of reports"), false);
    {
        const TourNetwork network;
        showEvents(report, manager, network, directory);
        showRecord(report, manager, network);
    }
    showStop(report, manager);
}
