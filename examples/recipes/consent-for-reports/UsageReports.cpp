// SPDX-License-Identifier: 0BSD

#include "UsageReports.h"

#include <ZyBase/analytics/CGaReportManager.h>
#include <ZyBase/platform/CSystemUtils.h>

#include <QSettings>
#include <QTimer>

#include <utility>

using ZyBase::CGaReportManager;
using ZyBase::CSystemUtils;

namespace {

constexpr const char *choiceKey = "UsageReports/Allowed";

// A request that has just started misses a stop, so the stop is repeated.
constexpr int stopTimesMs[] = {0, 50, 100, 200, 500};

} // namespace

UsageReports::UsageReports(Settings settings)
    : m_settings(std::move(settings))
    , m_hasChosen(QSettings().contains(QLatin1String(choiceKey)))
    , m_isAllowed(QSettings().value(QLatin1String(choiceKey), false).toBool())
{
}

bool UsageReports::isAllowed() const
{
    return m_isAllowed;
}

bool UsageReports::setAllowed(bool allowed)
{
    m_hasChosen = true;
    m_isAllowed = allowed;
    for (const int timeMs : stopTimesMs)
        QTimer::singleShot(timeMs, &m_context, [this] { stopUnlessAllowed(); });
    QSettings choice;
    choice.setValue(QLatin1String(choiceKey), allowed);
    choice.sync();
    return choice.status() == QSettings::NoError;
}

void UsageReports::stopUnlessAllowed()
{
    if (!m_isAllowed)
        CGaReportManager::ReleaseReport();
}

void UsageReports::sendEvent(const QString &key, const QString &label)
{
    if (prepare())
        CGaReportManager::s_instance->SendGaReport(key, label, false);
}

void UsageReports::sendRecord(const QString &action, const QString &status)
{
    if (prepare())
        CGaReportManager::s_instance->SendXdReport(action, status);
}

// Returns whether reports may be sent. The first call with consent creates the identifier.
bool UsageReports::prepare()
{
    if (!m_isAllowed || m_isPrepared)
        return m_isAllowed;
    const QString device = CSystemUtils::GetPCID(QString(), m_settings.product);
    auto *const manager = CGaReportManager::getInstance(nullptr);
    manager->InitGaData(m_settings.catalogue, device, m_settings.measurementId, m_settings.apiSecret);
    manager->InitXdData(m_settings.statistics, device, m_settings.product, m_settings.version,
                        QStringLiteral("home"));
    m_isPrepared = true;
    return true;
}
