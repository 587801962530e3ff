// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CJsonReader.h>

#include "ratios.h"

#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using ZyBase::CJsonReader;

namespace {

constexpr int eventCount = 10000;

QTemporaryDir &directory()
{
    static QTemporaryDir instance;
    return instance;
}

QJsonArray createCatalogue()
{
    QJsonArray events;
    for (int i = 0; i < eventCount; ++i) {
        events.append(QJsonObject {{QStringLiteral("event_key"), QStringLiteral("key_%1").arg(i)},
                                   {QStringLiteral("event_name"), QStringLiteral("click")},
                                   {QStringLiteral("event_category"), QStringLiteral("toolbar")},
                                   {QStringLiteral("event_label"), QStringLiteral("button %1").arg(i)}});
    }
    return events;
}

QString catalogueFile()
{
    static const QString path = [] {
        const QString name = directory().filePath(QStringLiteral("events.json"));
        QFile file(name);
        file.open(QIODevice::WriteOnly);
        file.write(QJsonDocument(createCatalogue()).toJson());
        return name;
    }();
    return path;
}

QString savedFile()
{
    return directory().filePath(QStringLiteral("saved.json"));
}

QJsonObject savedObject()
{
    return {{QStringLiteral("events"), createCatalogue()}};
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
    return runWithRatios(
        argc, argv,
        {{"parse a catalogue of 10,000 events, to plain Qt", "parse/CJsonReader", "parse/Qt", 0},
         {"save a catalogue of 10,000 events, to plain Qt", "save/CJsonReader", "save/Qt", 0}});
}
