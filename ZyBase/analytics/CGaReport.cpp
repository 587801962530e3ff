// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CGaReport.h"

#include "CGoogleAnalytics.h"

CGaReport::CGaReport(QObject *parent)
    : QObject(parent)
    , m_strClientId(QStringLiteral(""))
    , m_strMeasurementId(QStringLiteral(""))
    , m_strApiSecret(QStringLiteral(""))
{
}

CGaReport::~CGaReport() = default;

void CGaReport::InitData(const QString &clientId, const QString &measurementId, const QString &apiSecret)
{
    m_strClientId = clientId;
    m_strMeasurementId = measurementId;
    m_strApiSecret = apiSecret;
}

void CGaReport::ReportGaData(const QString &eventName, const QString &eventCategory,
                             const QString &eventLabel, bool sync)
{
    if (sync) {
        CGoogleAnalytics analytics(this);
        analytics.StartRequestSync(m_strClientId, m_strMeasurementId, m_strApiSecret, eventName,
                                   eventCategory, eventLabel);
        return;
    }
    auto *const pAnalytics = new CGoogleAnalytics(this);
    pAnalytics->StartRequestAsync(m_strClientId, m_strMeasurementId, m_strApiSecret, eventName, eventCategory,
                                  eventLabel);
    connect(pAnalytics, SIGNAL(SignalRequestTimeout()), pAnalytics, SLOT(deleteLater()));
    connect(pAnalytics, SIGNAL(SignalRequestCancel()), pAnalytics, SLOT(deleteLater()));
    connect(pAnalytics, SIGNAL(SignalRequestResult(QByteArray)), pAnalytics, SLOT(deleteLater()));
    connect(this, SIGNAL(SignalStopRequest()), pAnalytics, SIGNAL(SignalStopRequest()), Qt::QueuedConnection);
}

void CGaReport::StopReport()
{
    Q_EMIT SignalStopRequest();
}
