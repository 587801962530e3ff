// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CJsonReader.h>

#include "catalogue.h"
#include "ratios.h"

#include <benchmark/benchmark.h>

using ZyBase::CJsonReader;

namespace {

constexpr int eventCount = 10000;

QTemporaryDir &directory()
{
    static QTemporaryDir instance;
    return instance;
}

QString catalogueFile()
{
    static const QString path = writeCatalogue(directory(), eventCount);
    return path;
}

QString savedFile()
{
    return directory().filePath(QStringLiteral("saved.json"));
}

QJsonObject savedObject()
{
    return {{QStringLiteral("events"), createCatalogue(eventCount)}};
}

void parseWithLibrary(benchmark::State &state)
{
    const QString path = catalogueFile();
    for (auto _ : state)
        benchmark::DoNotOptimize(CJsonReader::ParseJsonFileToArray(path));
}

void parseWithQt(benchmark::State &state)
{
    const QString path = catalogueFile();
    for (auto _ : state) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        benchmark::DoNotOptimize(QJsonDocument::fromJson(file.readAll()).array());
    }
}

void saveWithLibrary(benchmark::State &state)
{
    const QJsonObject object = savedObject();
    for (auto _ : state)
        CJsonReader::SaveJsonFile(savedFile(), object);
}

void saveWithQt(benchmark::State &state)
{
    const QJsonObject object = savedObject();
    for (auto _ : state) {
        QFile file(savedFile());
        file.open(QIODevice::WriteOnly | QIODevice::Truncate);
        file.write(QJsonDocument(object).toJson());
    }
}

BENCHMARK(parseWithLibrary)->Name("parse/CJsonReader")->Unit(benchmark::kMillisecond);
BENCHMARK(parseWithQt)->Name("parse/Qt")->Unit(benchmark::kMillisecond);
BENCHMARK(saveWithLibrary)->Name("save/CJsonReader")->Unit(benchmark::kMillisecond);
BENCHMARK(saveWithQt)->Name("save/Qt")->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    return runWithRatios(argc, argv,
                         {{"parse a catalogue of 10,000 events", "parse/CJsonReader", "parse/Qt"},
                          {"save a catalogue of 10,000 events", "save/CJsonReader", "save/Qt"}});
}
