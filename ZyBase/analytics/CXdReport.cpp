// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CXdReport.h"

#include "../base/DateFormatting.h"
#include "../http/CHttpPostRequest.h"
#include "../platform/CSystemUtils.h"
#include "SigningSecret.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

using ZyBase::CHttpPostRequest;
using ZyBase::CSystemUtils;

namespace {

// The words that backends recognise, for the two arguments of a record. No code reads them. Creating them, in
// this order, is the only work done when the library is loaded.
[[maybe_unused]] const QString strActionInstall = QStringLiteral("install");
[[maybe_unused]] const QString strActionUninstall = QStringLiteral("uninstall");
[[maybe_unused]] const QString strActionUninstallOpt = QStringLiteral("uninstall_opt");
[[maybe_unused]] const QString strActionUpdate = QStringLiteral("update");
[[maybe_unused]] const QString strActionFeedback = QStringLiteral("feedback");
[[maybe_unused]] const QString strActionMfShow = QStringLiteral("mf_show");
[[maybe_unused]] const QString strActionPaymentCompleted = QStringLiteral("payment_completed");
[[maybe_unused]] const QString strActionCrash = QStringLiteral("crash");
[[maybe_unused]] const QString strActionServerRun = QStringLiteral("server_run");
[[maybe_unused]] const QString strStatusStart = QStringLiteral("start");
[[maybe_unused]] const QString strStatusEnd = QStringLiteral("end");
[[maybe_unused]] const QString strStatusCancel = QStringLiteral("cancel");
[[maybe_unused]] const QString strStatusFail = QStringLiteral("fail");
[[maybe_unused]] const QString strStatusNone = QStringLiteral("none");

QString sign(const QString &strTimestamp, const QString &strJson)
{
    const QLatin1String strSecret(ZyBase::pszSigningSecret);
    return CSystemUtils::GetStringMd5(strSecret + QLatin1String("timestamp") + strTimestamp + strJson
                                      + strSecret);
}

} // namespace

CXdReport::CXdReport(QObject *parent)
    : QObject(parent)
    , m_strReportUrl(QStringLiteral(""))
    , m_strDeviceId(QStringLiteral(""))
    , m_strProduct(QStringLiteral(""))
    , m_strVersion(QStringLiteral(""))
    , m_strQd(QStringLiteral("home"))
{
}

CXdReport::~CXdReport() = default;

void CXdReport::InitData(const QString &reportUrl, const QString &deviceId, const QString &product,
                         const QString &version, const QString &qd)
{
    m_strReportUrl = reportUrl;
    m_strDeviceId = deviceId;
    m_strProduct = product;
    m_strVersion = version;
    m_strQd = qd;
}

void CXdReport::ReportXdData(const QString &action, const QString &status)
{
    QString strUrl = m_strReportUrl;
    auto *const pRequest = new CHttpPostRequest(this);
    // Connect before the start, so that no outcome is missed.
    const auto remove = [pRequest] { pRequest->deleteLater(); };
    connect(pRequest, &CHttpPostRequest::SignalRequestTimeout, this, remove);
    connect(pRequest, &CHttpPostRequest::SignalRequestCancel, this, remove);
    connect(pRequest, &CHttpPostRequest::SignalRequestResult, this, remove);
    connect(this, SIGNAL(SignalStopRequest()), pRequest, SIGNAL(SignalStopRequest()));

    ZyBase::prepareDateFormatting();
    const QDateTime day = QDateTime::currentDateTime();
    const QString strTimestamp = QString::number(QDateTime::currentDateTime().toSecsSinceEpoch());
    const QJsonObject record {{QStringLiteral("action"), action},
                              {QStringLiteral("day"), day.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))},
                              {QStringLiteral("device_id"), m_strDeviceId},
                              {QStringLiteral("os"), QStringLiteral("linux")},
                              {QStringLiteral("product"), m_strProduct},
                              {QStringLiteral("qd"), m_strQd},
                              {QStringLiteral("status"), status},
                              {QStringLiteral("version"), m_strVersion}};
    QJsonDocument document;
    document.setObject(record);
    // The request serialises the record again, to the same bytes that are signed here.
    const QString strJson = QString::fromUtf8(document.toJson(QJsonDocument::Compact));
    strUrl +=
        QLatin1String("?sign=") + sign(strTimestamp, strJson) + QLatin1String("&timestamp=") + strTimestamp;
    pRequest->StartRequestAsync(QUrl(strUrl, QUrl::TolerantMode), record, QStringLiteral(""));
}

void CXdReport::StopReport()
{
    Q_EMIT SignalStopRequest();
}
