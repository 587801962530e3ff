// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CSystemUtils.h"

#include "COperateSystem.h"

#include <QCoreApplication>
#include <QFile>
#include <QSysInfo>
#include <QTextStream>

namespace ZyBase {

namespace {

constexpr const char *pszOsRelease = "/etc/os-release";
constexpr const char *pszNameKey = "NAME=";
constexpr const char *pszUnknown = "Unknown";

} // namespace

std::array<quint64, 3> CSystemUtils::GetDpiFromMonitors()
{
    return {0, 0, 0};
}

void CSystemUtils::EnableHighDPISupport(bool)
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, true);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, true);
}

bool CSystemUtils::IsOn64BitSystem()
{
    return true;
}

QString CSystemUtils::GetSystemVersion()
{
    return QSysInfo::prettyProductName();
}

QString CSystemUtils::RsaPublicEncrypt(const QString &, const QString &)
{
    return QStringLiteral("");
}

QString CSystemUtils::RsaPrivateDecrypt(const QString &, const QString &)
{
    return QStringLiteral("");
}

void CSystemUtils::SleepComputer()
{
    COperateSystem::SleepComputer();
}

void CSystemUtils::ShutdownComputer()
{
    COperateSystem::ShutdownComputer();
}

void CSystemUtils::SetSelfAutoStart(bool)
{
}

void CSystemUtils::SetAppAutoStart(const QString &, bool)
{
}

bool CSystemUtils::IsDarkTheme()
{
    return COperateSystem::IsDarkTheme();
}

QString CSystemUtils::GetBundleIdentifier()
{
    return QString::fromStdString(COperateSystem::GetBundleIdentifier());
}

QString CSystemUtils::GetLinuxOsInfo()
{
    QFile file(QString::fromLatin1(pszOsRelease));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return QString::fromLatin1(pszUnknown);
    QTextStream stream(&file);
    while (!stream.atEnd()) {
        const QString strLine = stream.readLine();
        if (strLine.startsWith(QLatin1String(pszNameKey)))
            return strLine.section(QLatin1Char('='), 1, -1).remove(QLatin1Char('"'));
    }
    return QString::fromLatin1(pszUnknown);
}

bool CSystemUtils::IsKylinOs()
{
    return GetLinuxOsInfo().contains(QLatin1String("Kylin"), Qt::CaseInsensitive);
}

bool CSystemUtils::IsUOS()
{
    const QString strName = GetLinuxOsInfo();
    return strName.contains(QLatin1String("UnionTech"), Qt::CaseInsensitive)
           || strName.contains(QLatin1String("UOS"), Qt::CaseInsensitive);
}

bool CSystemUtils::IsWindows11OrGreater()
{
    return true;
}

QString CSystemUtils::GetHardwareCpuArchitecture()
{
    return QSysInfo::currentCpuArchitecture();
}

} // namespace ZyBase
