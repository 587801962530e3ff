// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CHttpPostRequest.h"

#include "../platform/CSystemUtils.h"

#include <QStringList>

#include <algorithm>
#include <limits>

namespace ZyBase {

namespace {

// Truncates toward zero and limits the value to 32 bits: a plain cast outside that range is undefined.
int toInt32(double dValue)
{
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(qBound(double(Limits::min()), dValue, double(Limits::max())));
}

QString memberString(const QJsonValue &value)
{
    if (value.isString())
        return value.toString();
    if (value.isDouble())
        return QStringLiteral("%1").arg(toInt32(value.toDouble(0.0)), 0, 10, QLatin1Char(' '));
    return QString();
}

} // namespace

QString CHttpPostRequest::SignObject(const QJsonObject &jsonObject, const QString &strSecret)
{
    QStringList keys = jsonObject.keys();
    std::sort(keys.begin(), keys.end());

    QStringList items;
    items.reserve(keys.size());
    for (const QString &strKey : qAsConst(keys))
        items << strKey + QLatin1Char('=') + memberString(jsonObject.value(strKey));
    return CSystemUtils::GetStringMd5(items.join(QLatin1Char('&')) + strSecret);
}

} // namespace ZyBase
