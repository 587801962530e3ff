// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CAssocUtils.h"

#include "COperateSystem.h"

namespace ZyBase {

namespace {

QString pdfMimeType()
{
    return QStringLiteral("application/pdf");
}

} // namespace

bool CAssocUtils::IsPdfLauncher(const QString &strApp)
{
    return COperateSystem::IsDefaultLauncher(strApp, pdfMimeType());
}

bool CAssocUtils::SetPdfLauncher(const QString &strApp, const QString &, bool bUnread)
{
    return COperateSystem::SetDefaultLauncher(strApp, pdfMimeType(), QStringLiteral(""), bUnread);
}

bool CAssocUtils::ResetPdfLauncher(const QString &strApp)
{
    return COperateSystem::ResetDefaultLauncher(strApp, pdfMimeType());
}

} // namespace ZyBase
