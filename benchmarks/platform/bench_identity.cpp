// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/CSystemUtils.h>

#include "ratios.h"

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using ZyBase::CSystemUtils;

namespace {

const char *const prefix = "maker/";
const char *const name = "reader";

QTemporaryDir &directory()
{
    static QTemporaryDir instance;
    return instance;
}

QString deviceFile()
{
    return directory().filePath(QStringLiteral("maker/reader/device.conf"));
}

// An installation that has run before.
void prepare()
{
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(directory().path()));
    CSystemUtils::IsNewUser(QLatin1String(prefix), QLatin1String(name));
    CSystemUtils::GetPCID(QLatin1String(prefix), QLatin1String(name));
}

void readWithTheLibrary(benchmark::State &state)
{
    prepare();
    const QString first = QLatin1String(prefix);
    const QString second = QLatin1String(name);
    for (auto _ : state)
        benchmark::DoNotOptimize(CSystemUtils::GetPCID(first, second));
}

void askForTheFirstRun(benchmark::State &state)
{
    prepare();
    const QString first = QLatin1String(prefix);
    const QString second = QLatin1String(name);
    for (auto _ : state)
        benchmark::DoNotOptimize(CSystemUtils::IsNewUser(first, second));
}

void readWithQt(benchmark::State &state)
{
    prepare();
    const QString path = deviceFile();
    for (auto _ : state) {
        const QSettings settings(path, QSettings::NativeFormat);
        benchmark::DoNotOptimize(settings.value(QStringLiteral("PCID")).toString());
    }
}

BENCHMARK(readWithTheLibrary)->Name("stored identifier/GetPCID");
BENCHMARK(askForTheFirstRun)->Name("later run/IsNewUser");
BENCHMARK(readWithQt)->Name("one read/QSettings");

} // namespace

int main(int argc, char **argv)
{
    return runWithRatios(
        argc, argv,
        {{"a stored identifier, to one read of QSettings", "stored identifier/GetPCID", "one read/QSettings",
          0},
         {"a later run's mark, to one read of QSettings", "later run/IsNewUser", "one read/QSettings", 0}});
}
