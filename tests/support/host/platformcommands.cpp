// SPDX-License-Identifier: LGPL-2.1-or-later

#include "commands.h"

#include <ZyBase/platform/CAssocUtils.h>
#include <ZyBase/platform/COperateSystem.h>
#include <ZyBase/platform/CSystemUtils.h>

#include <QJsonObject>

using ZyBase::CAssocUtils;
using ZyBase::COperateSystem;
using ZyBase::CSystemUtils;

namespace {

QJsonValue distribution(const QJsonArray &)
{
    const QString name = CSystemUtils::GetLinuxOsInfo();
    return QJsonObject {{QStringLiteral("name"), name},
                        {QStringLiteral("isNull"), name.isNull()},
                        {QStringLiteral("isKylin"), CSystemUtils::IsKylinOs()},
                        {QStringLiteral("isUos"), CSystemUtils::IsUOS()}};
}

QJsonValue bundleIdentifier(const QJsonArray &)
{
    return QJsonArray {CSystemUtils::GetBundleIdentifier(),
                       QString::fromStdString(COperateSystem::GetBundleIdentifier())};
}

QJsonValue isDarkTheme(const QJsonArray &)
{
    return CSystemUtils::IsDarkTheme();
}

QJsonValue gnomeTheme(const QJsonArray &)
{
    return ZyBase::getGnomeTheme();
}

QJsonValue isPdfLauncher(const QJsonArray &arguments)
{
    return CAssocUtils::IsPdfLauncher(arguments.at(0).toString());
}

QJsonValue setPdfLauncher(const QJsonArray &arguments)
{
    return CAssocUtils::SetPdfLauncher(arguments.at(0).toString(), QString(), false);
}

} // namespace

Commands platformCommands()
{
    return {{QStringLiteral("system.distribution"), distribution},
            {QStringLiteral("system.bundleIdentifier"), bundleIdentifier},
            {QStringLiteral("theme.isDark"), isDarkTheme},
            {QStringLiteral("theme.gnome"), gnomeTheme},
            {QStringLiteral("assoc.isPdfLauncher"), isPdfLauncher},
            {QStringLiteral("assoc.setPdfLauncher"), setPdfLauncher}};
}
