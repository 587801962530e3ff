// SPDX-License-Identifier: LGPL-2.1-or-later

#include "commands.h"

#include <ZyBase/netinfo/CNetworkUtils.h>

using ZyBase::CNetworkUtils;

namespace {

QJsonValue isOnline(const QJsonArray &)
{
    return CNetworkUtils::IsNetWorkOnline();
}

} // namespace

Commands netCommands()
{
    return {{QStringLiteral("net.isOnline"), isOnline}};
}
