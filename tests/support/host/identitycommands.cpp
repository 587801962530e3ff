// SPDX-License-Identifier: LGPL-2.1-or-later

#include "commands.h"

#include <ZyBase/platform/COperateSystem.h>
#include <ZyBase/platform/CSystemUtils.h>

#include <QJsonObject>

using ZyBase::COperateSystem;
using ZyBase::CSystemUtils;

namespace {

// Distinguishes null strings from empty ones.
QJsonValue toJson(const QString &text)
{
    return text.isNull() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

QJsonValue sources(const QJsonArray &)
{
    return QJsonObject {{QStringLiteral("system"), QString::fromStdString(COperateSystem::GetSystemUDID())},
                        {QStringLiteral("file"), toJson(ZyBase::getMachineId())},
                        {QStringLiteral("address"), toJson(ZyBase::getMainMacAddress())}};
}

// The arguments are both of GetPCID() and the number of calls. Returns all results.
QJsonValue pcid(const QJsonArray &arguments)
{
    QJsonArray results;
    for (int i = 0; i < arguments.at(2).toInt(1); ++i)
        results << CSystemUtils::GetPCID(arguments.at(0).toString(), arguments.at(1).toString());
    return results;
}

QJsonValue isNewUser(const QJsonArray &arguments)
{
    return CSystemUtils::IsNewUser(arguments.at(0).toString(), arguments.at(1).toString());
}

} // namespace

Commands identityCommands()
{
    return {{QStringLiteral("identity.sources"), sources},
            {QStringLiteral("identity.pcid"), pcid},
            {QStringLiteral("identity.isNewUser"), isNewUser}};
}
