// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CHttpPostRequest.h"

#include "../platform/CSystemUtils.h"

#include <QStringList>

#include <algorithm>
#include <limits>

namespace ZyBase {

namespace {

// The nearest whole number towards zero that 32 bits hold. A plain cast is undefined beyond them.
int toInt32(double dValue)
{
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(qBound(double(Limits::min()), dValue, double(Limits::max())));
}

QString signedText(const QJsonValue &value)
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
    QStringList listKeys = jsonObject.keys();
    std::sort(listKeys.begin(), listKeys.end());

    QStringList listItems;
    listItems.reserve(listKeys.size());
    for (const QString &strKey : qAsConst(listKeys))
        listItems << strKey + QLatin1Char('=') + signedText(jsonObject.value(strKey));
    return CSystemUtils::GetStringMd5(listItems.join(QLatin1Char('&')) + strSecret);
}

} // namespace ZyBase
