// SPDX-License-Identifier: LGPL-2.1-or-later

#include "COperateSystem.h"

#include <QDir>

#include <unistd.h>

namespace ZyBase {

namespace {

constexpr const char *s_pszExecutableLink = "/proc/self/exe";
constexpr int s_nPathSize = 4096;
constexpr const char *s_pszFilesDir = "files";

// Without the last "/"; empty when the link can't be read.
QString executableDirPath()
{
    char szPath[s_nPathSize] = {};
    if (readlink(s_pszExecutableLink, szPath, s_nPathSize - 1) == -1)
        return QString();
    const std::string strPath(szPath);
    return QString::fromStdString(strPath.substr(0, strPath.rfind('/')));
}

} // namespace

void COperateSystem::SleepComputer()
{
}

void COperateSystem::ShutdownComputer()
{
}

std::string COperateSystem::GetBundleIdentifier()
{
    QDir dir(executableDirPath());
    QString strName = dir.dirName();
    if (strName.indexOf(QLatin1String(s_pszFilesDir), 0, Qt::CaseInsensitive) != -1 && dir.cdUp())
        strName = dir.dirName();
    return strName.toStdString();
}

} // namespace ZyBase
