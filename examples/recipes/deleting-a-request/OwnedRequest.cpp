// SPDX-License-Identifier: 0BSD

#include "OwnedRequest.h"

#include <QTimer>

using ZyBase::CHttpPostRequest;

namespace {

// The request's thread still uses the request for a moment after it has emitted the outcome.
constexpr int deletionDelayMs = 1000;

} // namespace

CHttpPostRequest *createRequest(const QObject *owner)
{
    auto *const request = new CHttpPostRequest;
    const auto deleteLater = [request] {
        QTimer::singleShot(deletionDelayMs, request, &QObject::deleteLater);
    };
    QObject::connect(request, &CHttpPostRequest::SignalRequestResult, request, deleteLater);
    QObject::connect(request, &CHttpPostRequest::SignalRequestResultAndStatusCode, request, deleteLater);
    QObject::connect(request, &CHttpPostRequest::SignalRequestTimeout, request, deleteLater);
    QObject::connect(request, &CHttpPostRequest::SignalRequestCancel, request, deleteLater);
    QObject::connect(owner, &QObject::destroyed, request, &CHttpPostRequest::SignalStopRequest);
    return request;
}
