// SPDX-License-Identifier: 0BSD

#include "FollowedRequest.h"

#include <QNetworkReply>

namespace {

constexpr int maxRedirects = 5;
constexpr int timeLimitMs = 10000;

bool isSafe(const QUrl &from, const QUrl &target)
{
    if (target.scheme() == QLatin1String("https"))
        return true;
    return target.scheme() == QLatin1String("http") && from.scheme() == QLatin1String("http");
}

// After 307 and 308 the same request is sent again; after the others the answer is fetched with GET.
bool keepsOperation(int status)
{
    return status == 307 || status == 308;
}

} // namespace

FollowedRequest::FollowedRequest(QObject *parent)
    : QObject(parent)
{
    m_timer.setSingleShot(true);
}

void FollowedRequest::start(QNetworkAccessManager::Operation operation, const QUrl &url,
                            const QByteArray &json)
{
    m_operation = operation;
    m_json = json;
    m_redirects = 0;
    m_timer.start(timeLimitMs);
    send(url);
}

void FollowedRequest::send(const QUrl &url)
{
    QNetworkReply *const reply = replyFrom(url);
    connect(&m_timer, &QTimer::timeout, reply, &QNetworkReply::abort);
    connect(reply, &QNetworkReply::finished, this, [this, reply] { handle(reply); });
}

QNetworkReply *FollowedRequest::replyFrom(const QUrl &url)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    if (m_operation == QNetworkAccessManager::HeadOperation)
        return m_manager.head(request);
    if (m_operation == QNetworkAccessManager::GetOperation)
        return m_manager.get(request);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    return m_manager.post(request, m_json);
}

void FollowedRequest::handle(QNetworkReply *reply)
{
    reply->deleteLater();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QUrl target = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (!m_timer.isActive())
        return fail(tr("There was no answer within ten seconds"));
    if (!target.isEmpty())
        return follow(reply->url(), status, reply->url().resolved(target));
    if (status == 0)
        return fail(reply->errorString());
    m_timer.stop();
    Q_EMIT answered(reply->url(), status, reply->readAll());
}

void FollowedRequest::follow(const QUrl &from, int status, const QUrl &target)
{
    if (!isSafe(from, target))
        return fail(tr("The redirect to %1 is not followed").arg(target.toDisplayString()));
    if (++m_redirects > maxRedirects)
        return fail(tr("There are more than %1 redirects").arg(maxRedirects));
    if (m_operation == QNetworkAccessManager::PostOperation && !keepsOperation(status))
        m_operation = QNetworkAccessManager::GetOperation;
    send(target);
}

void FollowedRequest::fail(const QString &reason)
{
    m_timer.stop();
    Q_EMIT failed(reason);
}
