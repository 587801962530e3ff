// SPDX-License-Identifier: LGPL-2.1-or-later

#include "RunningRequests.h"

#include <ZyBase/analytics/CGaReportManager.h>
#include <ZyBase/http/CHttpPostRequest.h>

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

using std::chrono::milliseconds;
using ZyBase::CHttpPostRequest;

namespace {

// A worker that has told its outcome is on its last steps: so long it may still use its request.
constexpr milliseconds lastSteps(100);

// A request that has only just started hears no stop, so it is told again and again.
constexpr milliseconds stopInterval(20);

} // namespace

CHttpPostRequest *RunningRequests::create()
{
    auto *const request = new CHttpPostRequest(this);
    m_running.insert(request);
    const auto end = [this, request] { noteEnd(request); };
    connect(request, &CHttpPostRequest::SignalRequestResult, this, end);
    connect(request, &CHttpPostRequest::SignalRequestResultAndStatusCode, this, end);
    connect(request, &CHttpPostRequest::SignalRequestTimeout, this, end);
    connect(request, &CHttpPostRequest::SignalRequestCancel, this, end);
    return request;
}

void RunningRequests::noteEnd(CHttpPostRequest *request)
{
    m_running.remove(request);
    QTimer::singleShot(1000, request, &QObject::deleteLater);
}

bool RunningRequests::stopAll(milliseconds grace)
{
    const QDeadlineTimer deadline(grace);
    do {
        for (CHttpPostRequest *const request : qAsConst(m_running))
            Q_EMIT request->SignalStopRequest();
        ZyBase::CGaReportManager::ReleaseReport(); // does nothing in a host that reports nothing
        runEventLoop(stopInterval);
    } while (!m_running.isEmpty() && !deadline.hasExpired());
    runEventLoop(lastSteps);
    return m_running.isEmpty();
}

void RunningRequests::runEventLoop(milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}
