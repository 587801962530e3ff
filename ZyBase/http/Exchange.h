// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

namespace ZyBase {

constexpr int nRequestTimeoutMs = 10000;

// One request and its reply, in the thread that creates it: a GET, or a POST if there is a body. The reply
// is deleted with it.
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

    // Returns when the reply has finished, has failed or was aborted: by the timeout, or by the signal
    // SignalStopRequest() of pStopper.
    void wait(const QObject *pStopper = nullptr)
    {
        QObject::connect(&m_timer, SIGNAL(timeout()), m_pReply, SLOT(abort()));
        if (pStopper)
            QObject::connect(pStopper, SIGNAL(SignalStopRequest()), m_pReply, SLOT(abort()));
        QObject::connect(m_pReply, SIGNAL(finished()), &m_loop, SLOT(quit()));
        m_timer.setSingleShot(true);
        m_timer.start(nRequestTimeoutMs);
        m_loop.exec();
    }

    // Check this before the error: a timeout sets the error of a cancelled request, too.
    bool hasTimedOut() const { return !m_timer.isActive(); }
    QNetworkReply::NetworkError error() const { return m_pReply->error(); }
    int statusCode() const { return m_pReply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(); }
    QByteArray readAll() { return m_pReply->readAll(); }

private:
    QEventLoop m_loop;
    QTimer m_timer;
    QNetworkAccessManager m_manager;
    QNetworkReply *const m_pReply;
};

// Waits for the end of a background request. Emits the signal of the request for a timeout or a cancelled
// request; returns true if the caller has to emit the result.
template <typename Request> bool waitForAnswer(Exchange &exchange, Request &request)
{
    exchange.wait(&request);
    if (exchange.hasTimedOut()) {
        Q_EMIT request.SignalRequestTimeout();
        return false;
    }
    if (exchange.error() == QNetworkReply::OperationCanceledError) {
        Q_EMIT request.SignalRequestCancel();
        return false;
    }
    return true;
}

} // namespace ZyBase
