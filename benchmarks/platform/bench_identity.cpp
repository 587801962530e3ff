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

// Stores both keys, as an earlier run of the application does.
void storeKeys()
{
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(directory().path()));
    CSystemUtils::IsNewUser(QLatin1String(prefix), QLatin1String(name));
    CSystemUtils::GetPCID(QLatin1String(prefix), QLatin1String(name));
}

template <typename Function> void callLibrary(benchmark::State &state, const Function &function)
{
    storeKeys();
    const QString dirPrefix = QLatin1String(prefix);
    const QString dirName = QLatin1String(name);
    for (auto _ : state)
        benchmark::DoNotOptimize(function(dirPrefix, dirName));
}

void readWithQt(benchmark::State &state)
{
    storeKeys();
    const QString path = deviceFile();
    for (auto _ : state) {
        const QSettings settings(path, QSettings::NativeFormat);
        benchmark::DoNotOptimize(settings.value(QStringLiteral("PCID")).toString());
    }
}

BENCHMARK_CAPTURE(callLibrary, , &CSystemUtils::GetPCID)->Name("stored identifier/GetPCID");
BENCHMARK_CAPTURE(callLibrary, , &CSystemUtils::IsNewUser)->Name("later run/IsNewUser");
BENCHMARK(readWithQt)->Name("one read/QSettings");

} // namespace

int main(int argc, char **argv)
{
    return runWithRatios(argc, argv,
                         {{"stored identifier", "stored identifier/GetPCID", "one read/QSettings"},
                          {"mark of a later run", "later run/IsNewUser", "one read/QSettings"}});
}
