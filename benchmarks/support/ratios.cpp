// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ratios.h"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <map>

namespace {

constexpr const char *repetitions = "--benchmark_repetitions=9";
constexpr const char *interleaving = "--benchmark_enable_random_interleaving=true";

// Prints the median of each benchmark and stores its fastest repetition, which other processes disturbed
// least.
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
            if (run.run_type == Run::RT_Iteration)
                keepFastest(run);
            else if (run.aggregate_name == "median")
                shown.push_back(run);
        }
        if (!shown.empty())
            ConsoleReporter::ReportRuns(shown);
    }

    void print(const Ratio &ratio) const
    {
        const auto ours = m_fastest.find(ratio.ours);
        const auto baseline = m_fastest.find(ratio.baseline);
        if (ours == m_fastest.end() || baseline == m_fastest.end()) {
            std::printf("%-64s not run\n", ratio.what);
            return;
        }
        const double value = ours->second / baseline->second;
        std::printf("%-64s %6.3f", ratio.what, value);
        if (ratio.bound > 0)
            std::printf("   at most %.2f: %s", ratio.bound, value <= ratio.bound ? "kept" : "MISSED");
        std::printf("\n");
    }

private:
    void keepFastest(const Run &run)
    {
        const double time = run.GetAdjustedRealTime();
        const auto known = m_fastest.emplace(run.run_name.function_name, time).first;
        known->second = std::min(known->second, time);
    }

    std::map<std::string, double> m_fastest;
};

} // namespace

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
    std::printf("\nTime relative to the baseline, fastest repetitions\n");
    for (const Ratio &ratio : ratios)
        reporter.print(ratio);
    return 0;
}
