// SPDX-License-Identifier: 0BSD

#include "services.h"

#include "Report.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QCoreApplication>
#include <QSysInfo>
#include <QVariant>

using ZyBase::CSystemUtils;

namespace {

QString nameInOsRelease()
{
    QFile file(QStringLiteral("/etc/os-release"));
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("Unknown");
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("NAME="))
            return QString::fromLocal8Bit(line.mid(5)).remove(QLatin1Char('"'));
    }
    return QStringLiteral("Unknown");
}

// The parent of a directory like /opt/apps/org.example.reader/files has the name of the application.
QString bundleOfThisProgram()
{
    QDir directory(QCoreApplication::applicationDirPath());
    if (directory.dirName().contains(QLatin1String("files"), Qt::CaseInsensitive))
        directory.cdUp();
    return directory.dirName();
}

bool contains(const QString &name, const char *word)
{
    return name.contains(QLatin1String(word), Qt::CaseInsensitive);
}

} // namespace

void showSystem(Report &report, const QDir &)
{
    report.heading(QStringLiteral("Machine"), QStringLiteral("ZyBase/platform/CSystemUtils.h"));

    const QString distribution = CSystemUtils::GetLinuxOsInfo();
    const QString version = CSystemUtils::GetSystemVersion();
    const QString architecture = CSystemUtils::GetHardwareCpuArchitecture();
    const QString bundle = CSystemUtils::GetBundleIdentifier();
    const bool isKylin = CSystemUtils::IsKylinOs();
    const bool isUos = CSystemUtils::IsUOS();
    report.line(QStringLiteral("distribution"), distribution);
    report.line(QStringLiteral("system version"), version);
    report.line(QStringLiteral("Kylin, UOS"),
                QStringLiteral("%1, %2").arg(QVariant(isKylin).toString(), QVariant(isUos).toString()));
    report.line(QStringLiteral("architecture"), architecture);
    report.line(QStringLiteral("bundle"), bundle);

    const QString name = nameInOsRelease();
    report.promise(QStringLiteral("The distribution is that of /etc/os-release"), distribution == name);
    report.promise(QStringLiteral("Kylin and UOS are recognized by the distribution's name"),
                   isKylin == contains(name, "kylin")
                       && isUos == (contains(name, "uniontech") || contains(name, "uos")));
    report.promise(QStringLiteral("Version and architecture are those of QSysInfo"),
                   version == QSysInfo::prettyProductName()
                       && architecture == QSysInfo::currentCpuArchitecture());
    report.promise(QStringLiteral("The bundle is the directory of this program"),
                   bundle == bundleOfThisProgram());
}
