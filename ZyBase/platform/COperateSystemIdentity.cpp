// SPDX-License-Identifier: LGPL-2.1-or-later

#include "COperateSystem.h"

#include <QFile>
#include <QNetworkInterface>
#include <QSysInfo>
#include <QTextStream>

namespace ZyBase {

namespace {

constexpr const char *s_pszMachineIdFile = "/etc/machine-id";

bool isOfThisMachineAlone(const QNetworkInterface &interface)
{
    const QNetworkInterface::InterfaceFlags flags = interface.flags();
    return !(flags & (QNetworkInterface::IsLoopBack | QNetworkInterface::IsPointToPoint))
           && (flags & QNetworkInterface::IsUp);
}

} // namespace

std::string COperateSystem::GetSystemUDID()
{
    const QByteArray baIdentifier = QSysInfo::machineUniqueId();
    const QString strIdentifier = QString::fromUtf8(baIdentifier.constData()); // up to the first NUL byte
    return strIdentifier.isEmpty() ? getMachineId().toStdString() : strIdentifier.toStdString();
}

QString getMachineId()
{
    QFile file(QString::fromLatin1(s_pszMachineIdFile));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return QString();
    QTextStream stream(&file);
    return stream.readAll().trimmed();
}

QString getMainMacAddress()
{
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : interfaces) {
        QString strAddress = interface.hardwareAddress();
        if (isOfThisMachineAlone(interface) && !strAddress.isEmpty())
            return strAddress;
    }
    return QString();
}

} // namespace ZyBase
