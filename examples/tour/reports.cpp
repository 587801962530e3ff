// SPDX-License-Identifier: LGPL-2.1-or-later

#include "services.h"

#include "Report.h"
#include "World.h"

#include <ZyBase/analytics/CGaReportManager.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFile>
#include <QTimer>

#include <algorithm>

using ZyBase::CGaReportManager;

namespace {

constexpr int patienceMs = 10000;
constexpr int lastMomentMs = 200;

const QByteArray catalogue = QByteArrayLiteral(R"([
    {"event_key": "open",  "event_name": "open_file",  "event_category": "file", "event_label": "pdf"},
    {"event_key": "print", "event_name": "print_file", "event_category": "file", "event_label": ""}
])");

template <typename Condition> bool runUntil(Condition condition)
{
    for (const QDeadlineTimer deadline(patienceMs); !condition() && !deadline.hasExpired();)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    return condition();
}

void showSent(Report &report, const QString &receiver, const QList<World::Sent> &list)
{
    for (const World::Sent &sent : list) {
        report.line(receiver, sent.target);
        report.excerpt(sent.body.trimmed().split(QLatin1Char('\n')));
    }
}

bool areGood(const QList<World::Sent> &list)
{
    return std::all_of(list.begin(), list.end(), [](const World::Sent &sent) { return sent.isGood; });
}

void showEvents(Report &report, CGaReportManager *manager, const World &world, const QDir &directory)
{
    const QString path = directory.filePath(QStringLiteral("events.json"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(catalogue) != catalogue.size())
        return report.promise(QStringLiteral("the catalogue can be written"), false);
    file.close();

    manager->InitGaData(path, QStringLiteral("device"), QStringLiteral("G-TOUR"), QStringLiteral("secret"));
    manager->SendGaReport(QStringLiteral("open"), QString(), true);
    manager->SendGaReport(QStringLiteral("print"), QStringLiteral("laser"), false);
    manager->SendGaReport(QStringLiteral("print"), QString(), false); // has no label
    manager->SendGaReport(QStringLiteral("no such event"), QString(), false);
    const bool haveArrived = runUntil([&] { return world.events().size() == 2; });

    showSent(report, QStringLiteral("the collector got"), world.events());
    report.promise(QStringLiteral("one event waited for and one in the background pass the validation"),
                   haveArrived && areGood(world.events()));
}

void showRecord(Report &report, CGaReportManager *manager, const World &world)
{
    manager->InitXdData(world.statistics(), QStringLiteral("device"), QStringLiteral("tour"),
                        QStringLiteral("1.0"), QStringLiteral("home"));
    manager->SendXdReport(QStringLiteral("install"), QStringLiteral("end"));
    if (!runUntil([&] { return !world.records().isEmpty(); }))
        return report.promise(QStringLiteral("the record arrives"), false);
    showSent(report, QStringLiteral("the backend got"), world.records());
    report.promise(QStringLiteral("the backend, which knows the secret, finds the signature right"),
                   areGood(world.records()));
}

} // namespace

void showReports(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("Usage reports"), QStringLiteral("ZyBase/analytics/CGaReportManager.h"));
    auto *const manager = CGaReportManager::getInstance(nullptr);
    const World world;
    showEvents(report, manager, world, directory);
    showRecord(report, manager, world);
    CGaReportManager::ReleaseReport();
    // What is still under way ends in the event loop.
    QEventLoop loop;
    QTimer::singleShot(lastMomentMs, &loop, &QEventLoop::quit);
    loop.exec();
}
