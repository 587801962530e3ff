// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CSystemUtils.h"

#include "../base/DateFormatting.h"
#include "COperateSystem.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QRandomGenerator>
#include <QSettings>
#include <QStandardPaths>

namespace ZyBase {

namespace {

constexpr int nFirstSuffix = 1;
constexpr int nEndOfSuffixes = 1000;

QString pcidKey()
{
    return QStringLiteral("PCID");
}

QString newUserKey()
{
    return QStringLiteral("NewUser");
}

// The configuration directory can change while the application runs, so it is looked up each time. One call
// of arg() inserts both arguments: a "%2" in the first one is not replaced.
QString deviceFilePath(const QString &dirPrefix, const QString &dirName)
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
           + QStringLiteral("/%1%2/device.conf").arg(dirPrefix, dirName);
}

void storeValue(const QString &strPath, const QString &strKey, const QVariant &value)
{
    QSettings settings(strPath, QSettings::NativeFormat);
    settings.setValue(strKey, value);
}

QString timeAndRandomNumber()
{
    prepareDateFormatting();
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"))
           + QString::number(CSystemUtils::GetRandomNum(nFirstSuffix, nEndOfSuffixes));
}

// Returns the most reliable string that identifies this machine. Never empty.
QString machineString()
{
    QString strIdentifier = QString::fromStdString(COperateSystem::GetSystemUDID()).trimmed();
    if (!strIdentifier.isEmpty())
        return strIdentifier;
    const QString strAddress = getMainMacAddress();
    return strAddress.isEmpty() ? timeAndRandomNumber() : strAddress;
}

} // namespace

QString CSystemUtils::GetStringMd5(const QString &strText)
{
    const QByteArray baDigest = QCryptographicHash::hash(strText.toUtf8(), QCryptographicHash::Md5);
    return QString::fromLatin1(baDigest.toHex());
}

QString CSystemUtils::GetPCID(const QString &dirPrefix, const QString &dirName)
{
    const QString strPath = deviceFilePath(dirPrefix, dirName);
    QString strStored = ReadRegeditValue(strPath, pcidKey()).toString();
    if (!strStored.isEmpty())
        return strStored;
    QString strIdentifier = GetStringMd5(machineString());
    storeValue(strPath, pcidKey(), strIdentifier);
    return strIdentifier;
}

// Unsigned arithmetic, which wraps if the maximum is below the minimum. QRandomGenerator::bounded() does not
// accept such arguments.
int CSystemUtils::GetRandomNum(int nMin, int nMax)
{
    const quint32 nSpan = quint32(nMax) - quint32(nMin);
    const quint64 nProduct = quint64(QRandomGenerator::global()->generate()) * nSpan;
    return int(quint32(nMin) + quint32(nProduct >> 32));
}

bool CSystemUtils::IsNewUser(const QString &dirPrefix, const QString &dirName)
{
    const QString strPath = deviceFilePath(dirPrefix, dirName);
    if (!ReadRegeditValue(strPath, newUserKey()).isNull())
        return false;
    storeValue(strPath, newUserKey(), true);
    return true;
}

QVariant ReadRegeditValue(const QString &strPath, const QString &strKey)
{
    const QSettings settings(strPath, QSettings::NativeFormat);
    return settings.contains(strKey) ? settings.value(strKey) : QVariant();
}

} // namespace ZyBase
