// SPDX-License-Identifier: LGPL-2.1-or-later

#include "OwnedRequest.h"

#include <QTimer>

using ZyBase::CHttpPostRequest;

namespace {

// The worker that has told the outcome still takes its last steps out of the signal.
constexpr int lastStepsMs = 1000;

} // namespace

CHttpPostRequest *createRequest(const QObject *owner)
{
    auto *const request = new CHttpPostRequest;
    const auto removeLater = [request] { QTimer::singleShot(lastStepsMs, request, &QObject::deleteLater); };
    QObject::connect(request, &CHttpPostRequest::SignalRequestResult, request, removeLater);
    QObject::connect(request, &CHttpPostRequest::SignalRequestResultAndStatusCode, request, removeLater);
    QObject::connect(request, &CHttpPostRequest::SignalRequestTimeout, request, removeLater);
    QObject::connect(request, &CHttpPostRequest::SignalRequestCancel, request, removeLater);
    QObject::connect(owner, &QObject::destroyed, request, &CHttpPostRequest::SignalStopRequest);
    return request;
}
