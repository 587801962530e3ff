// SPDX-License-Identifier: LGPL-2.1-or-later

#include "COperateSystem.h"

#include <QDir>

#include <unistd.h>

namespace ZyBase {

namespace {

constexpr const char *pszExecutableLink = "/proc/self/exe";
constexpr int nPathSize = 4096;
constexpr const char *pszFilesDir = "files";

// The path does not end in "/". It is a null string if the link cannot be read.
QString executableDirPath()
{
    char szPath[nPathSize] = {};
    if (readlink(pszExecutableLink, szPath, nPathSize - 1) == -1)
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
    if (strName.contains(QLatin1String(pszFilesDir), Qt::CaseInsensitive) && dir.cdUp())
        strName = dir.dirName();
    return strName.toStdString();
}

} // namespace ZyBase
