// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CSystemUtils.h"

#include <QCryptographicHash>

namespace ZyBase {

QString CSystemUtils::GetStringMd5(const QString &strText)
{
    const QByteArray baDigest = QCryptographicHash::hash(strText.toUtf8(), QCryptographicHash::Md5);
    return QString::fromLatin1(baDigest.toHex());
}

} // namespace ZyBase
