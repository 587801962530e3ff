// SPDX-License-Identifier: LGPL-2.1-or-later

#include "COperateSystem.h"

#include "ChildProcess.h"

namespace ZyBase {

namespace {

constexpr const char *s_pszTool = "xdg-mime";
constexpr const char *s_pszEntrySuffix = ".desktop";

} // namespace

bool COperateSystem::IsDefaultLauncher(const QString &strApp, const QString &strMimeType)
{
    QProcess process;
    runTool(process, s_pszTool, {QStringLiteral("query"), QStringLiteral("default"), strMimeType});
    return takeOutput(process).indexOf(strApp, 0, Qt::CaseSensitive) != -1;
}

bool COperateSystem::SetDefaultLauncher(const QString &strApp, const QString &strMimeType, const QString &,
                                        bool)
{
    const QString strEntry = strApp + QLatin1String(s_pszEntrySuffix);
    QProcess process;
    runTool(process, s_pszTool, {QStringLiteral("default"), strEntry, strMimeType});
    return true;
}

bool COperateSystem::ResetDefaultLauncher(const QString &, const QString &)
{
    return true;
}

} // namespace ZyBase
