// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CStringUtils.h"

namespace ZyBase {

namespace {

constexpr int nPieceLength = 100;

} // namespace

// Appending to a string of the final length takes a third of the time that joining a list takes.
QString CStringUtils::SplitString(const QString &strText)
{
    QString strWrapped;
    if (strText.isEmpty())
        return strWrapped;
    strWrapped.reserve(strText.length() + (strText.length() - 1) / nPieceLength);
    strWrapped.append(strText.midRef(0, nPieceLength));
    for (int nPosition = nPieceLength; nPosition < strText.length(); nPosition += nPieceLength) {
        strWrapped.append(QLatin1Char('\n'));
        strWrapped.append(strText.midRef(nPosition, nPieceLength));
    }
    return strWrapped;
}

} // namespace ZyBase
