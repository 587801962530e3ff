// SPDX-License-Identifier: LGPL-2.1-or-later

#include "commands.h"

#include <ZyBase/analytics/CGaReport.h>
#include <ZyBase/analytics/CGoogleAnalytics.h>
#include <ZyBase/analytics/CXdReport.h>
#include <ZyBase/http/CHttpPostRequest.h>

#include <QCoreApplication>

#include <sys/resource.h>

#include <system_error>

namespace {

// Calls the function while no thread can be created. Returns true if it throws std::system_error.
template <typename Call> bool failsToStart(Call call)
{
    const rlimit none {0, RLIM_INFINITY};
    const rlimit all {RLIM_INFINITY, RLIM_INFINITY};
    bool hasFailed = false;
    setrlimit(RLIMIT_AS, &none);
    try {
        call();
    } catch (const std::system_error &) {
        hasFailed = true;
    }
    setrlimit(RLIMIT_AS, &all);
    return hasFailed;
}

// Starts a request in the background while no thread can be created. Returns whether it failed, how many
// request objects remain, and whether a stop signal reaches them.
template <typename Reporter, typename Request, typename Call> QJsonValue startWithoutThreads(Call call)
{
    Reporter reporter;
    const bool hasFailed = failsToStart([&] { call(reporter); });
    bool isStopped = false;
    const QList<Request *> left = reporter.template findChildren<Request *>();
    for (Request *request : left)
        QObject::connect(request, &Request::SignalStopRequest, request, [&] { isStopped = true; });
    reporter.StopReport();
    QCoreApplication::processEvents();
    return QJsonArray {hasFailed, left.size(), isStopped};
}

QJsonValue startEventWithoutThreads(const QJsonArray &)
{
    return startWithoutThreads<CGaReport, CGoogleAnalytics>([](CGaReport &reporter) {
        reporter.ReportGaData(QStringLiteral("n"), QStringLiteral("c"), QStringLiteral("l"), false);
    });
}

QJsonValue startRecordWithoutThreads(const QJsonArray &)
{
    return startWithoutThreads<CXdReport, ZyBase::CHttpPostRequest>(
        [](CXdReport &reporter) { reporter.ReportXdData(QStringLiteral("a"), QStringLiteral("s")); });
}

} // namespace

Commands analyticsCommands()
{
    return {{QStringLiteral("analytics.startEventWithoutThreads"), startEventWithoutThreads},
            {QStringLiteral("analytics.startRecordWithoutThreads"), startRecordWithoutThreads}};
}
