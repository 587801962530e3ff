// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CHttpPostRequest.h"

#include "Exchange.h"

#include <QJsonDocument>
#include <QNetworkCookie>
#include <QSslConfiguration>

#include <thread>

namespace ZyBase {

namespace {

QByteArray createBody(const QJsonObject &jsonObject)
{
    return QJsonDocument(jsonObject).toJson(QJsonDocument::Compact);
}

QNetworkRequest createRequest(const QUrl &url)
{
    QNetworkRequest request;
    QSslConfiguration configuration = request.sslConfiguration();
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
    configuration.setProtocol(QSsl::TlsV1_2);
    request.setSslConfiguration(configuration);
    request.setUrl(url);
    return request;
}

QNetworkRequest createJsonRequest(const QUrl &url)
{
    QNetworkRequest request = createRequest(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    return request;
}

QNetworkRequest createSessionRequest(const QUrl &url, const QString &strSession)
{
    QNetworkRequest request = createJsonRequest(url);
    if (strSession.isEmpty())
        return request;
    const QNetworkCookie cookie(QByteArrayLiteral("sessionid"), strSession.toLatin1());
    request.setHeader(QNetworkRequest::CookieHeader, QVariant::fromValue(QList<QNetworkCookie> {cookie}));
    return request;
}

// Web services answer this user agent as they answer a browser.
QNetworkRequest createBrowserRequest(const QUrl &url)
{
    QNetworkRequest request = createRequest(url);
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QStringLiteral("Mozilla/5.0 (Windows NT 10.0; Win64; x64) AppleWebKit/537.36 "
                                     "(KHTML, like Gecko) Chrome/60.0.3100.0 Safari/537.36"));
    return request;
}

bool waitForResult(Exchange &exchange, QByteArray &baResult)
{
    exchange.wait();
    if (exchange.hasTimedOut())
        return false;
    baResult = exchange.readAll();
    return true;
}

} // namespace

CHttpPostRequest::CHttpPostRequest(QObject *parent)
    : QObject(parent)
{
}

CHttpPostRequest::~CHttpPostRequest() = default;

bool CHttpPostRequest::StartRequestSync(const QUrl &url, const QJsonObject &jsonObject, QByteArray &baResult)
{
    const QByteArray baBody = createBody(jsonObject);
    const QNetworkRequest request = createJsonRequest(url);
    Exchange exchange(request, baBody);
    return waitForResult(exchange, baResult);
}

void CHttpPostRequest::StartRequestAsync(const QUrl &url, const QJsonObject &jsonObject,
                                         const QString &strSession)
{
    std::thread([this, url, jsonObject, strSession] {
        const QByteArray baBody = createBody(jsonObject);
        const QNetworkRequest request = createSessionRequest(url, strSession);
        Exchange exchange(request, baBody);
        if (waitForAnswer(exchange, *this))
            Q_EMIT SignalRequestResult(exchange.readAll());
    }).detach();
}

void CHttpPostRequest::StartGetRequest(const QUrl &url, const QString &strSession)
{
    std::thread([this, url, strSession] {
        const QNetworkRequest request = createSessionRequest(url, strSession);
        Exchange exchange(request);
        if (waitForAnswer(exchange, *this))
            Q_EMIT SignalRequestResult(exchange.readAll());
    }).detach();
}

bool CHttpPostRequest::StartGetRequestSync(const QUrl &url, QByteArray &baResult)
{
    const QNetworkRequest request = createBrowserRequest(url);
    Exchange exchange(request);
    return waitForResult(exchange, baResult);
}

void CHttpPostRequest::StartGetRequestAndStatusCode(const QUrl &url, const QString &strSession)
{
    std::thread([this, url, strSession] {
        const QNetworkRequest request = createSessionRequest(url, strSession);
        Exchange exchange(request);
        if (!waitForAnswer(exchange, *this))
            return;
        const int nStatusCode = exchange.statusCode();
        Q_EMIT SignalRequestResultAndStatusCode(exchange.readAll(), nStatusCode);
    }).detach();
}

} // namespace ZyBase
