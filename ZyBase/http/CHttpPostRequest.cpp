// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CHttpPostRequest.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkCookie>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QTimer>

#include <thread>

namespace ZyBase {

namespace {

constexpr int nTimeLimitMs = 10000;

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

// The user agent that the web services answer as they would a browser.
QNetworkRequest createBrowserRequest(const QUrl &url)
{
    QNetworkRequest request = createRequest(url);
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QStringLiteral("Mozilla/5.0 (Windows NT 10.0; Win64; x64) AppleWebKit/537.36 "
                                     "(KHTML, like Gecko) Chrome/60.0.3100.0 Safari/537.36"));
    return request;
}

// One request from its sending, by GET or with a body by POST, to its end, in the thread that makes it. The
// reply goes with it.
class Exchange
{
public:
    explicit Exchange(const QNetworkRequest &request)
        : m_pReply(m_manager.get(request))
    {
    }
    Exchange(const QNetworkRequest &request, const QByteArray &baBody)
        : m_pReply(m_manager.post(request, baBody))
    {
    }

    // Both return when the reply has finished, has failed or was aborted, by the timer or by the stopper.
    void wait()
    {
        connectTimer();
        run();
    }
    void wait(const CHttpPostRequest *pStopper)
    {
        connectTimer();
        QObject::connect(pStopper, SIGNAL(SignalStopRequest()), m_pReply, SLOT(abort()));
        run();
    }

    // To be asked first: an abort by the timer looks cancelled as well.
    bool hasTimedOut() const { return !m_timer.isActive(); }
    bool isCancelled() const { return m_pReply->error() == QNetworkReply::OperationCanceledError; }
    QByteArray readAll() { return m_pReply->readAll(); }
    int statusCode() const { return m_pReply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(); }

private:
    void connectTimer() { QObject::connect(&m_timer, SIGNAL(timeout()), m_pReply, SLOT(abort())); }
    void run()
    {
        QObject::connect(m_pReply, SIGNAL(finished()), &m_loop, SLOT(quit()));
        m_timer.setSingleShot(true);
        m_timer.start(nTimeLimitMs);
        m_loop.exec();
    }

    QEventLoop m_loop;
    QTimer m_timer;
    QNetworkAccessManager m_manager;
    QNetworkReply *const m_pReply;
};

bool waitForResult(Exchange &exchange, QByteArray &baResult)
{
    exchange.wait();
    if (exchange.hasTimedOut())
        return false;
    baResult = exchange.readAll();
    return true;
}

// Tells the two ends that have no answer; true when there is one left to tell.
bool waitForAnswer(Exchange &exchange, CHttpPostRequest *pOwner)
{
    exchange.wait(pOwner);
    if (exchange.hasTimedOut()) {
        Q_EMIT pOwner->SignalRequestTimeout();
        return false;
    }
    if (exchange.isCancelled()) {
        Q_EMIT pOwner->SignalRequestCancel();
        return false;
    }
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
        if (waitForAnswer(exchange, this))
            Q_EMIT SignalRequestResult(exchange.readAll());
    }).detach();
}

void CHttpPostRequest::StartGetRequest(const QUrl &url, const QString &strSession)
{
    std::thread([this, url, strSession] {
        const QNetworkRequest request = createSessionRequest(url, strSession);
        Exchange exchange(request);
        if (waitForAnswer(exchange, this))
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
        if (!waitForAnswer(exchange, this))
            return;
        const int nStatusCode = exchange.statusCode();
        Q_EMIT SignalRequestResultAndStatusCode(exchange.readAll(), nStatusCode);
    }).detach();
}

} // namespace ZyBase
