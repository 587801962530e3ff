// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CGoogleAnalytics.h"

#include "../http/Exchange.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <thread>

using ZyBase::Exchange;

namespace {

constexpr const char *pszCollectHost = "www.google-analytics.com";

// The values are inserted one after the other: a "%1" in an identifier is replaced as well.
QNetworkRequest createRequest(const QString &strCollectUrl, const QString &strMeasurementId,
                              const QString &strApiSecret)
{
    const QString strUrl = QStringLiteral("%1?measurement_id=%2&api_secret=%3")
                               .arg(strCollectUrl)
                               .arg(strMeasurementId) // clazy:exclude=qstring-arg
                               .arg(strApiSecret);
    QNetworkRequest request(QUrl(strUrl, QUrl::TolerantMode));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    return request;
}

QByteArray createBody(const QString &strClientId, const QString &strName, const QString &strCategory,
                      const QString &strLabel)
{
    const QJsonObject params {{QStringLiteral("event_category"), strCategory},
                              {QStringLiteral("event_label"), strLabel}};
    const QJsonObject event {{QStringLiteral("name"), strName}, {QStringLiteral("params"), params}};
    const QJsonObject body {{QStringLiteral("client_id"), strClientId},
                            {QStringLiteral("user_id"), strClientId},
                            {QStringLiteral("events"), QJsonArray {event}}};
    return QJsonDocument(body).toJson();
}

} // namespace

CGoogleAnalytics::CGoogleAnalytics(QObject *parent)
    : QObject(parent)
    , m_strCollectUrl(QStringLiteral("https://%1/mp/collect").arg(QLatin1String(pszCollectHost)))
{
}

CGoogleAnalytics::~CGoogleAnalytics()
{
    disconnect();
}

bool CGoogleAnalytics::StartRequestSync(const QString &clientId, const QString &measurementId,
                                        const QString &apiSecret, const QString &eventName,
                                        const QString &eventCategory, const QString &eventLabel)
{
    const QNetworkRequest request = createRequest(m_strCollectUrl, measurementId, apiSecret);
    const QByteArray baBody = createBody(clientId, eventName, eventCategory, eventLabel);
    Exchange exchange(request, baBody);
    exchange.wait();
    return !exchange.hasTimedOut() && exchange.error() == QNetworkReply::NoError;
}

void CGoogleAnalytics::StartRequestAsync(const QString &clientId, const QString &measurementId,
                                         const QString &apiSecret, const QString &eventName,
                                         const QString &eventCategory, const QString &eventLabel)
{
    std::thread([this, clientId, measurementId, apiSecret, eventName, eventCategory, eventLabel] {
        const QNetworkRequest request = createRequest(m_strCollectUrl, measurementId, apiSecret);
        const QByteArray baBody = createBody(clientId, eventName, eventCategory, eventLabel);
        Exchange exchange(request, baBody);
        if (ZyBase::waitForAnswer(exchange, *this))
            Q_EMIT SignalRequestResult(exchange.readAll());
    }).detach();
}
