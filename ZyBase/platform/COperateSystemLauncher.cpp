// SPDX-License-Identifier: LGPL-2.1-or-later

#include "COperateSystem.h"

#include "ChildProcess.h"

namespace ZyBase {

namespace {

constexpr const char *pszTool = "xdg-mime";
constexpr const char *pszEntrySuffix = ".desktop";

} // namespace

bool COperateSystem::IsDefaultLauncher(const QString &strApp, const QString &strMimeType)
{
    QProcess process;
    runTool(process, pszTool, {QStringLiteral("query"), QStringLiteral("default"), strMimeType});
    return takeOutput(process).contains(strApp, Qt::CaseSensitive);
}

bool COperateSystem::SetDefaultLauncher(const QString &strApp, const QString &strMimeType, const QString &,
                                        bool)
{
    const QString strEntry = strApp + QLatin1String(pszEntrySuffix);
    QProcess process;
    runTool(process, pszTool, {QStringLiteral("default"), strEntry, strMimeType});
    return true;
}

bool COperateSystem::ResetDefaultLauncher(const QString &, const QString &)
{
    return true;
}

} // namespace ZyBase
