// SPDX-License-Identifier: LGPL-2.1-or-later

#include "commands.h"

#include <ZyBase/files/CFileUtils.h>

using ZyBase::CFileUtils;

namespace {

// As text: a JSON number can't hold all of a long long.
QJsonValue formatOpenTime(const QJsonArray &arguments)
{
    return CFileUtils::FormatOpenTime(arguments.at(0).toString().toLongLong());
}

} // namespace

Commands fileCommands()
{
    return {{QStringLiteral("files.formatOpenTime"), formatOpenTime}};
}
