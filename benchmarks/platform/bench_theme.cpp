// SPDX-License-Identifier: LGPL-2.1-or-later

// IsDarkTheme() if no setting decides, which takes the longest. The tools of this machine run with an empty
// configuration directory.

#include <ZyBase/platform/COperateSystem.h>

#include "ratios.h"

#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using ZyBase::COperateSystem;

namespace {

void run(const char *program, const QStringList &arguments)
{
    QProcess process;
    process.start(QString::fromLatin1(program), arguments);
    process.waitForFinished();
}

void get(const char *schema, const char *key)
{
    run("gsettings", {QStringLiteral("get"), QString::fromLatin1(schema), QString::fromLatin1(key)});
}

void callLibrary(benchmark::State &state)
{
    for (auto _ : state) {
        if (COperateSystem::IsDarkTheme())
            state.SkipWithError("this machine has a dark theme for all users");
    }
}

void runProcesses(benchmark::State &state)
{
    for (auto _ : state) {
        run("which", {QStringLiteral("gsettings")});
        get("org.gnome.desktop.interface", "gtk-theme");
        get("org.gnome.desktop.interface", "color-scheme");
        run("which", {QStringLiteral("gsettings")});
        get("org.ukui.style", "style-name");
        get("org.ukui.style", "theme-mode");
        get("org.ukui.control-center.personalise", "theme");
        get("org.mate.interface", "gtk-theme");
    }
}

BENCHMARK(callLibrary)->Name("theme/IsDarkTheme")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(runProcesses)->Name("theme/its eight processes")->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path()));
    qputenv("GSETTINGS_BACKEND", "memory");
    for (const char *variable : {"GTK_THEME", "QT_STYLE_OVERRIDE", "DESKTOP_SESSION"})
        qunsetenv(variable);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    return runWithRatios(
        argc, argv,
        {{"theme if no setting decides", "theme/IsDarkTheme", "theme/its eight processes", 1.05}});
}
