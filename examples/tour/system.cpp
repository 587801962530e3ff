// SPDX-License-Identifier: LGPL-2.1-or-later

#include "services.h"

#include "Report.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QCoreApplication>
#include <QVariant>

using ZyBase::CSystemUtils;

void showSystem(Report &report, const QDir &)
{
    report.heading(QStringLiteral("Machine"), QStringLiteral("ZyBase/platform/CSystemUtils.h"));

    const QString distribution = CSystemUtils::GetLinuxOsInfo();
    report.line(QStringLiteral("distribution"), distribution);
    report.line(QStringLiteral("system version"), CSystemUtils::GetSystemVersion());
    report.line(QStringLiteral("Kylin, UOS"),
                QStringLiteral("%1, %2").arg(QVariant(CSystemUtils::IsKylinOs()).toString(),
                                             QVariant(CSystemUtils::IsUOS()).toString()));
    report.line(QStringLiteral("architecture"), CSystemUtils::GetHardwareCpuArchitecture());
    report.line(QStringLiteral("bundle"), CSystemUtils::GetBundleIdentifier());
    report.promise(QStringLiteral("Kylin is told by the distribution's name"),
                   CSystemUtils::IsKylinOs()
                       == distribution.contains(QLatin1String("kylin"), Qt::CaseInsensitive));
    report.promise(QStringLiteral("the bundle is the folder of this program"),
                   CSystemUtils::GetBundleIdentifier()
                       == QDir(QCoreApplication::applicationDirPath()).dirName());
}
