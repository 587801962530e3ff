// SPDX-License-Identifier: 0BSD

#include "services.h"

#include "EnvironmentVariable.h"
#include "LoggedMessages.h"
#include "Report.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QElapsedTimer>

using ZyBase::CSystemUtils;

namespace {

// The last debug message names the setting that decided.
QString decider(const QStringList &messages)
{
    const QString prefix = QStringLiteral("Detected via ");
    const QString last = messages.isEmpty() ? QString() : messages.last();
    return last.startsWith(prefix) ? last.mid(prefix.size()) : QStringLiteral("default: nothing is set");
}

bool showTheme(Report &report, const QString &desktop)
{
    QElapsedTimer timer;
    timer.start();
    const LoggedMessages messages;
    const bool isDark = CSystemUtils::IsDarkTheme();
    report.line(desktop,
                QStringLiteral("%1, %2 (%3 ms)")
                    .arg(isDark ? QStringLiteral("dark") : QStringLiteral("light"), decider(messages.all()))
                    .arg(timer.elapsed()));
    return isDark;
}

bool writePlasmaTheme(const QDir &directory, const QByteArray &name)
{
    QFile file(directory.filePath(QStringLiteral("plasmarc")));
    return file.open(QIODevice::WriteOnly) && file.write("[Theme]\nname=" + name + '\n') > 0;
}

} // namespace

void showTheme(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("Theme"), QStringLiteral("ZyBase/platform/CSystemUtils.h"));
    showTheme(report, QStringLiteral("this desktop"));

    // A KDE desktop without GNOME's tools, whose settings are in the tour's directory.
    const QDir settings(directory.filePath(QStringLiteral("desktop")));
    settings.mkpath(QStringLiteral("."));
    const EnvironmentVariable configuration("XDG_CONFIG_HOME", settings.path());
    const EnvironmentVariable programs("PATH", settings.path());
    report.promise(QStringLiteral("A dark KDE desktop is dark"),
                   writePlasmaTheme(settings, "breeze-dark")
                       && showTheme(report, QStringLiteral("KDE, set to dark")));
    report.promise(QStringLiteral("A light KDE desktop is light"),
                   writePlasmaTheme(settings, "breeze-light")
                       && !showTheme(report, QStringLiteral("KDE, set to light")));
}
