// SPDX-License-Identifier: LGPL-2.1-or-later

#include "services.h"

#include "Report.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QFile>

using ZyBase::CSystemUtils;

namespace {

const char *const prefix = "tour/";
const char *const name = "reader";

QString answer(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QStringList linesOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).trimmed().split(QLatin1Char('\n'));
}

// What a host does when it starts.
bool startHost(Report &report, const QString &run, QString *identifier)
{
    const bool isNew = CSystemUtils::IsNewUser(QLatin1String(prefix), QLatin1String(name));
    *identifier = CSystemUtils::GetPCID(QLatin1String(prefix), QLatin1String(name));
    report.line(run, QStringLiteral("IsNewUser %1, GetPCID %2").arg(answer(isNew), *identifier));
    return isNew;
}

} // namespace

void showIdentity(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("Device identity"), QStringLiteral("ZyBase/platform/CSystemUtils.h"));

    // The tour leaves the user's own configuration alone.
    const QByteArray place = qgetenv("XDG_CONFIG_HOME");
    const QDir config(directory.filePath(QStringLiteral("config")));
    const QString path = config.filePath(QStringLiteral("tour/reader/device.conf"));
    QFile::remove(path);
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(config.path()));

    QString first;
    QString second;
    const bool firstIsNew = startHost(report, QStringLiteral("first run"), &first);
    const bool secondIsNew = startHost(report, QStringLiteral("second run"), &second);
    report.line(QStringLiteral("file"), path);
    report.excerpt(linesOf(path));
    report.promise(QStringLiteral("the first run is told from the second"), firstIsNew && !secondIsNew);
    report.promise(QStringLiteral("the identifier stays"), first == second && first.size() == 32);

    if (place.isNull())
        qunsetenv("XDG_CONFIG_HOME");
    else
        qputenv("XDG_CONFIG_HOME", place);
}
