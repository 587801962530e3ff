// SPDX-License-Identifier: 0BSD

#include "services.h"

#include "EnvironmentVariable.h"
#include "Report.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QRegularExpression>
#include <QSettings>

using ZyBase::CSystemUtils;

namespace {

struct Start
{
    bool isNewUser;
    QString identifier;
};

// What an application does when it starts.
Start startApplication(Report &report, const QString &run)
{
    const QString prefix = QStringLiteral("tour/");
    const QString name = QStringLiteral("reader");
    const bool isNewUser = CSystemUtils::IsNewUser(prefix, name);
    Start start {isNewUser, CSystemUtils::GetPCID(prefix, name)};
    report.line(run, QStringLiteral("IsNewUser %1").arg(QVariant(start.isNewUser).toString()));
    report.line(QString(), QStringLiteral("GetPCID %1").arg(start.identifier));
    return start;
}

QStringList linesOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).trimmed().split(QLatin1Char('\n'));
}

} // namespace

void showIdentity(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("Device identity"), QStringLiteral("ZyBase/platform/CSystemUtils.h"));

    // The user's own configuration stays unchanged.
    const QDir configuration(directory.filePath(QStringLiteral("config")));
    const EnvironmentVariable variable("XDG_CONFIG_HOME", configuration.path());
    const Start first = startApplication(report, QStringLiteral("first run"));
    const Start second = startApplication(report, QStringLiteral("second run"));
    report.promise(QStringLiteral("Only the first run has a new user"), first.isNewUser && !second.isNewUser);
    report.promise(
        QStringLiteral("The identifier has 32 hexadecimal digits and stays the same"),
        first.identifier == second.identifier
            && QRegularExpression(QStringLiteral("^[0-9a-f]{32}$")).match(first.identifier).hasMatch());

    const QString path = configuration.filePath(QStringLiteral("tour/reader/device.conf"));
    const QSettings settings(path, QSettings::IniFormat);
    report.line(QStringLiteral("file"), directory.relativeFilePath(path));
    report.excerpt(linesOf(path));
    report.promise(QStringLiteral("device.conf keeps the identifier and the mark of the first run"),
                   settings.value(QStringLiteral("PCID")).toString() == second.identifier
                       && settings.contains(QStringLiteral("NewUser")));
}
