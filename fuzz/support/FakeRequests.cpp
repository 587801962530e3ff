// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FakeRequests.h"

#include "Fuzzing.h"

#include <ZyBase/analytics/CGoogleAnalytics.h>
#include <ZyBase/http/CHttpPostRequest.h>

namespace {

QByteArray currentAnswer;

} // namespace

void FakeRequests::setAnswer(const QByteArray &answer)
{
    currentAnswer = answer;
}

namespace ZyBase {

CHttpPostRequest::CHttpPostRequest(QObject *parent)
    : QObject(parent)
{
}

CHttpPostRequest::~CHttpPostRequest() = default;

bool CHttpPostRequest::StartRequestSync(const QUrl &, const QJsonObject &, QByteArray &baResult)
{
    baResult = currentAnswer;
    return true;
}

bool CHttpPostRequest::StartGetRequestSync(const QUrl &, QByteArray &baResult)
{
    baResult = currentAnswer;
    return true;
}

void CHttpPostRequest::StartRequestAsync(const QUrl &, const QJsonObject &, const QString &)
{
}

} // namespace ZyBase

CGoogleAnalytics::CGoogleAnalytics(QObject *parent)
    : QObject(parent)
{
}

CGoogleAnalytics::~CGoogleAnalytics() = default;

bool CGoogleAnalytics::StartRequestSync(const QString &, const QString &, const QString &,
                                        const QString &eventName, const QString &eventCategory,
                                        const QString &eventLabel)
{
    FUZZ_VERIFY(!eventName.isEmpty() && !eventCategory.isEmpty() && !eventLabel.isEmpty());
    return true;
}

void CGoogleAnalytics::StartRequestAsync(const QString &clientId, const QString &measurementId,
                                         const QString &apiSecret, const QString &eventName,
                                         const QString &eventCategory, const QString &eventLabel)
{
    StartRequestSync(clientId, measurementId, apiSecret, eventName, eventCategory, eventLabel);
}
