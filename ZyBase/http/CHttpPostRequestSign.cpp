// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CHttpPostRequest.h"

#include "../platform/CSystemUtils.h"

#include <QPair>
#include <QVector>

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

void appendValue(QString *pText, const QJsonValue &value)
{
    if (value.isString())
        *pText += value.toString();
    else if (value.isDouble())
        *pText += QString::number(toInt32(value.toDouble(0.0)));
}

using Member = QPair<QString, QJsonObject::const_iterator>;

// The iterators find the values without a search for each key.
QVector<Member> sortedMembers(const QJsonObject &jsonObject)
{
    QVector<Member> members;
    members.reserve(jsonObject.size());
    for (auto it = jsonObject.constBegin(); it != jsonObject.constEnd(); ++it)
        members.append({it.key(), it});
    std::sort(members.begin(), members.end(),
              [](const Member &left, const Member &right) { return left.first < right.first; });
    return members;
}

} // namespace

QString CHttpPostRequest::SignObject(const QJsonObject &jsonObject, const QString &strSecret)
{
    QString strText;
    const QVector<Member> members = sortedMembers(jsonObject);
    for (const Member &member : members) {
        if (!strText.isEmpty())
            strText += QLatin1Char('&');
        strText += member.first;
        strText += QLatin1Char('=');
        appendValue(&strText, member.second.value());
    }
    return CSystemUtils::GetStringMd5(strText + strSecret);
}

} // namespace ZyBase
