// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CGoogleAnalytics.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>

#include <thread>

namespace {

constexpr const char *szCollectHost = "www.google-analytics.com";
constexpr int nTimeLimitMs = 10000;

// One substitution after the other, so a place marker in an identifier counts as one.
QNetworkRequest createRequest(const QString &strCollectUrl, const QString &strMeasurementId,
                              const QString &strApiSecret)
{
    const QString strUrl = QStringLiteral("%1?measurement_id=%2&api_secret=%3")
                               .arg(strCollectUrl)
                               .arg(strMeasurementId)
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

// One request from its sending to its end, in the thread that makes it. The reply goes with it.
class Exchange
{
public:
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
    void wait(const CGoogleAnalytics *pStopper)
    {
        connectTimer();
        QObject::connect(pStopper, SIGNAL(SignalStopRequest()), m_pReply, SLOT(abort()));
        run();
    }

    // To be asked first: an abort by the timer looks cancelled as well.
    bool hasTimedOut() const { return !m_timer.isActive(); }
    QNetworkReply::NetworkError error() const { return m_pReply->error(); }
    QByteArray readAll() { return m_pReply->readAll(); }

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

} // namespace

CGoogleAnalytics::CGoogleAnalytics(QObject *parent)
    : QObject(parent)
    , m_strCollectUrl(QStringLiteral("https://%1/mp/collect").arg(QLatin1String(szCollectHost)))
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
        exchange.wait(this);
        if (exchange.hasTimedOut())
            Q_EMIT SignalRequestTimeout();
        else if (exchange.error() == QNetworkReply::OperationCanceledError)
            Q_EMIT SignalRequestCancel();
        else
            Q_EMIT SignalRequestResult(exchange.readAll());
    }).detach();
}
