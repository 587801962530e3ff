// SPDX-License-Identifier: LGPL-2.1-or-later

#include "COperateSystem.h"

#include "ChildProcess.h"

#include <QFile>
#include <QNetworkInterface>
#include <QSysInfo>
#include <QTextStream>

namespace ZyBase {

namespace {

constexpr const char *pszMachineIdFile = "/etc/machine-id";

bool isUpAndNotLocal(const QNetworkInterface &interface)
{
    const QNetworkInterface::InterfaceFlags flags = interface.flags();
    return !(flags & (QNetworkInterface::IsLoopBack | QNetworkInterface::IsPointToPoint))
           && (flags & QNetworkInterface::IsUp);
}

} // namespace

std::string COperateSystem::GetSystemUDID()
{
    const QString strIdentifier = fromUtf8UpToNul(QSysInfo::machineUniqueId());
    return strIdentifier.isEmpty() ? getMachineId().toStdString() : strIdentifier.toStdString();
}

QString getMachineId()
{
    QFile file(QString::fromLatin1(pszMachineIdFile));
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
        if (isUpAndNotLocal(interface) && !strAddress.isEmpty())
            return strAddress;
    }
    return QString();
}

} // namespace ZyBase
