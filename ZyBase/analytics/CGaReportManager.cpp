// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CGaReportManager.h"

#include "../files/CJsonReader.h"

#include <QJsonArray>

namespace ZyBase {

CGaReportManager *CGaReportManager::s_instance = nullptr;

CGaReportManager::CGaReportManager(QObject *parent)
    : QObject(parent)
    , m_gaReport(nullptr)
    , m_xdReport(nullptr)
{
}

CGaReportManager::~CGaReportManager() = default;

CGaReportManager *CGaReportManager::getInstance(QObject *parent)
{
    if (!s_instance)
        s_instance = new CGaReportManager(parent);
    return s_instance;
}

void CGaReportManager::ReleaseReport()
{
    if (!s_instance)
        return;
    s_instance->StopGaReport();
    s_instance->StopXdReport();
}

void CGaReportManager::InitGaData(const QString &configPath, const QString &clientId,
                                  const QString &measurementId, const QString &apiSecret)
{
    const QJsonArray events = CJsonReader::ParseJsonFileToArray(configPath);
    for (const QJsonValue &value : events) {
        const QJsonObject event = value.toObject();
        m_mapGaData.insert(event.value(QLatin1String("event_key")).toString(), event);
    }
    m_gaReport.InitData(clientId, measurementId, apiSecret);
}

void CGaReportManager::SendGaReport(const QString &eventKey, const QString &labelOverride, bool sync)
{
    const QJsonObject event = GetGaData(eventKey);
    if (event.isEmpty())
        return;
    const QString strName = event.value(QLatin1String("event_name")).toString();
    const QString strCategory = event.value(QLatin1String("event_category")).toString();
    QString strLabel = event.value(QLatin1String("event_label")).toString();
    if (!labelOverride.isEmpty())
        strLabel = labelOverride;
    if (strName.isEmpty() || strCategory.isEmpty() || strLabel.isEmpty())
        return;
    m_gaReport.ReportGaData(strName, strCategory, strLabel, sync);
}

QJsonObject CGaReportManager::GetGaData(const QString &eventKey)
{
    return m_mapGaData.value(eventKey);
}

void CGaReportManager::InitXdData(const QString &reportUrl, const QString &deviceId, const QString &product,
                                  const QString &version, const QString &qd)
{
    m_xdReport.InitData(reportUrl, deviceId, product, version, qd);
}

void CGaReportManager::SendXdReport(const QString &action, const QString &status)
{
    m_xdReport.ReportXdData(action, status);
}

void CGaReportManager::StopGaReport()
{
    m_gaReport.StopReport();
}

void CGaReportManager::StopXdReport()
{
    m_xdReport.StopReport();
}

} // namespace ZyBase
