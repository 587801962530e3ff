// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ratios.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>

namespace {

constexpr const char *repetitions = "--benchmark_repetitions=9";
constexpr const char *interleaving = "--benchmark_enable_random_interleaving=true";

using Seconds = std::vector<double>; // one value for each repetition

double fastest(const Seconds &times)
{
    return *std::min_element(times.begin(), times.end());
}

// Prints the median of each benchmark and stores the times of all repetitions.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    RatioReporter()
        : ConsoleReporter(isatty(STDOUT_FILENO) ? OO_ColorTabular : OO_Tabular)
    {
    }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        std::vector<Run> shown;
        for (const Run &run : runs) {
            if (run.real_accumulated_time <= 0)
                shown.push_back(run); // the reason why it failed
            else if (run.run_type == Run::RT_Iteration)
                m_times[run.run_name.function_name].push_back(run.real_accumulated_time
                                                              / double(run.iterations));
            else if (run.aggregate_name == "median")
                shown.push_back(run);
        }
        if (!shown.empty())
            ConsoleReporter::ReportRuns(shown);
    }

    const Seconds &timesOf(const char *name) const
    {
        static const Seconds none;
        const auto found = m_times.find(name);
        return found == m_times.end() ? none : found->second;
    }

private:
    std::map<std::string, Seconds> m_times;
};

struct Result
{
    double oursSeconds;
    double baselineSeconds;
    double ratio;
    double lowQuartile;
    double highQuartile;
};

std::optional<Result> compare(const Seconds &ours, const Seconds &baseline)
{
    if (ours.empty() || baseline.empty())
        return {};
    std::vector<double> ratios;
    for (size_t i = 0; i < std::min(ours.size(), baseline.size()); ++i)
        ratios.push_back(ours[i] / baseline[i]);
    std::sort(ratios.begin(), ratios.end());
    const size_t quarter = ratios.size() / 4;
    return Result {fastest(ours), fastest(baseline), fastest(ours) / fastest(baseline), ratios[quarter],
                   ratios[ratios.size() - 1 - quarter]};
}

QString ownerOf(const char *benchmark)
{
    return QString::fromUtf8(benchmark).section(QLatin1Char('/'), -1);
}

void print(const Ratio &ratio, const Result &result)
{
    const QString what =
        QStringLiteral("%1, to %2").arg(QString::fromUtf8(ratio.operation), ownerOf(ratio.baseline));
    std::printf("%-64s %6.3f  (%.3f to %.3f)", qUtf8Printable(what), result.ratio, result.lowQuartile,
                result.highQuartile);
    if (ratio.bound > 0)
        std::printf("   at most %.2f: %s", ratio.bound, result.ratio <= ratio.bound ? "kept" : "MISSED");
    std::printf("\n");
}

QByteArray toJson(const Ratio &ratio, const Result &result)
{
    const QJsonObject object {{QStringLiteral("operation"), QString::fromUtf8(ratio.operation)},
                              {QStringLiteral("ours"), ownerOf(ratio.ours)},
                              {QStringLiteral("baseline"), ownerOf(ratio.baseline)},
                              {QStringLiteral("oursSeconds"), result.oursSeconds},
                              {QStringLiteral("baselineSeconds"), result.baselineSeconds},
                              {QStringLiteral("ratio"), result.ratio},
                              {QStringLiteral("lowQuartile"), result.lowQuartile},
                              {QStringLiteral("highQuartile"), result.highQuartile},
                              {QStringLiteral("bound"), ratio.bound}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace

void registerProgram(const std::string &name, const QString &program,
                     const std::function<QStringList()> &arguments)
{
    if (QStandardPaths::findExecutable(program).isEmpty())
        return;
    const auto run = [program, arguments](benchmark::State &state) {
        const QStringList list = arguments();
        for (auto _ : state) {
            QProcess process;
            process.setStandardOutputFile(QProcess::nullDevice());
            process.start(program, list);
            if (!process.waitForFinished(-1) || process.exitCode() != 0)
                state.SkipWithError("the program failed");
        }
    };
    benchmark::RegisterBenchmark(name.c_str(), run)->Unit(benchmark::kMillisecond)->UseRealTime();
}

int runWithRatios(int argc, char **argv, const std::vector<Ratio> &ratios)
{
    // The arguments of the command line come last, so they override these.
    std::vector<std::string> arguments {argv[0], repetitions, interleaving};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    std::vector<char *> pointers;
    for (std::string &argument : arguments)
        pointers.push_back(argument.data());
    int count = int(pointers.size());
    benchmark::Initialize(&count, pointers.data());
    if (benchmark::ReportUnrecognizedArguments(count, pointers.data()))
        return 1;

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    QFile file(qEnvironmentVariable("ZYBASE_BENCHMARK_RESULTS"));
    if (!file.fileName().isEmpty() && !file.open(QIODevice::Append))
        return 1;
    std::printf("\nTime relative to the baseline: fastest repetitions, and the middle half of all\n");
    for (const Ratio &ratio : ratios) {
        const std::optional<Result> result =
            compare(reporter.timesOf(ratio.ours), reporter.timesOf(ratio.baseline));
        if (!result)
            continue; // deselected, or a program that is not installed
        print(ratio, *result);
        if (file.isOpen())
            file.write(toJson(ratio, *result));
    }
    return 0;
}
