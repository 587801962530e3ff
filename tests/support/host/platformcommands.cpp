// SPDX-License-Identifier: LGPL-2.1-or-later

#include "commands.h"

#include <ZyBase/platform/COperateSystem.h>
#include <ZyBase/platform/CSystemUtils.h>

#include <QJsonObject>

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

} // namespace

Commands platformCommands()
{
    return {{QStringLiteral("system.distribution"), distribution},
            {QStringLiteral("system.bundleIdentifier"), bundleIdentifier}};
}
