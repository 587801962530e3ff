// SPDX-License-Identifier: 0BSD

#include "RunningRequests.h"

#include <ZyBase/analytics/CGaReportManager.h>
#include <ZyBase/http/CHttpPostRequest.h>

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

using std::chrono::milliseconds;
using ZyBase::CGaReportManager;
using ZyBase::CHttpPostRequest;

namespace {

// A request that has just started misses a stop, so the stop is repeated.
constexpr milliseconds stopInterval(20);

// The request's thread still uses the request for a short time after it has emitted the outcome.
constexpr milliseconds threadEndTime(100);

} // namespace

void RunningRequests::add(CHttpPostRequest *request)
{
    m_running.insert(request);
    const auto remove = [this, request] { m_running.remove(request); };
    connect(request, &CHttpPostRequest::SignalRequestResult, this, remove);
    connect(request, &CHttpPostRequest::SignalRequestResultAndStatusCode, this, remove);
    connect(request, &CHttpPostRequest::SignalRequestTimeout, this, remove);
    connect(request, &CHttpPostRequest::SignalRequestCancel, this, remove);
}

bool RunningRequests::stopAll(milliseconds grace)
{
    const QDeadlineTimer deadline(grace);
    const bool hasReports = CGaReportManager::s_instance != nullptr;
    do {
        for (CHttpPostRequest *const request : qAsConst(m_running))
            Q_EMIT request->SignalStopRequest();
        CGaReportManager::ReleaseReport(); // does nothing if there is no report manager
        runEventLoop(stopInterval);
    } while ((hasReports || !m_running.isEmpty()) && !deadline.hasExpired());
    runEventLoop(threadEndTime);
    return m_running.isEmpty();
}

void RunningRequests::runEventLoop(milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}
