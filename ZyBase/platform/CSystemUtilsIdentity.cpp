// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CSystemUtils.h"

#include "COperateSystem.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QRandomGenerator>
#include <QSettings>
#include <QStandardPaths>

namespace ZyBase {

namespace {

constexpr int s_nSmallestSuffix = 1;
constexpr int s_nBeyondSuffixes = 1000;

QString pcidKey()
{
    return QStringLiteral("PCID");
}

QString newUserKey()
{
    return QStringLiteral("NewUser");
}

// The place may change while a host runs. Both arguments at once: what looks like a place marker in
// the first is text.
QString deviceFilePath(const QString &strDirPrefix, const QString &strDirName)
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
           + QStringLiteral("/%1%2/device.conf").arg(strDirPrefix, strDirName);
}

void writeValue(const QString &strPath, const QString &strKey, const QVariant &value)
{
    QSettings settings(strPath, QSettings::NativeFormat);
    settings.setValue(strKey, value);
}

QString momentAndNumber()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"))
           + QString::number(CSystemUtils::GetRandomNum(s_nSmallestSuffix, s_nBeyondSuffixes));
}

// The best there is to tell this machine from others. Never empty.
QString machineText()
{
    QString strIdentifier = QString::fromStdString(COperateSystem::GetSystemUDID()).trimmed();
    if (!strIdentifier.isEmpty())
        return strIdentifier;
    const QString strAddress = getMainMacAddress();
    return strAddress.isEmpty() ? momentAndNumber() : strAddress;
}

} // namespace

QString CSystemUtils::GetStringMd5(const QString &strText)
{
    const QByteArray baDigest = QCryptographicHash::hash(strText.toUtf8(), QCryptographicHash::Md5);
    return QString::fromLatin1(baDigest.toHex());
}

QString CSystemUtils::GetPCID(const QString &strDirPrefix, const QString &strDirName)
{
    const QString strPath = deviceFilePath(strDirPrefix, strDirName);
    QString strStored = ReadRegeditValue(strPath, pcidKey()).toString();
    if (!strStored.isEmpty())
        return strStored;
    QString strIdentifier = GetStringMd5(machineText());
    writeValue(strPath, pcidKey(), strIdentifier);
    return strIdentifier;
}

// Done in unsigned numbers, which wrap where a maximum below the minimum makes them; Qt's own bounded()
// takes no such arguments.
int CSystemUtils::GetRandomNum(int nMin, int nMax)
{
    const quint32 nSpan = quint32(nMax) - quint32(nMin);
    const quint64 nProduct = quint64(QRandomGenerator::global()->generate()) * nSpan;
    return int(quint32(nMin) + quint32(nProduct >> 32));
}

bool CSystemUtils::IsNewUser(const QString &strDirPrefix, const QString &strDirName)
{
    const QString strPath = deviceFilePath(strDirPrefix, strDirName);
    if (!ReadRegeditValue(strPath, newUserKey()).isNull())
        return false;
    writeValue(strPath, newUserKey(), true);
    return true;
}

QVariant ReadRegeditValue(const QString &strPath, const QString &strKey)
{
    const QSettings settings(strPath, QSettings::NativeFormat);
    return settings.contains(strKey) ? settings.value(strKey) : QVariant();
}

} // namespace ZyBase
