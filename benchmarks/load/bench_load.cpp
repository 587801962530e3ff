// SPDX-License-Identifier: LGPL-2.1-or-later

// What loading the library adds to a process that has loaded Qt, compared with a library without code that
// needs the same libraries. Each load has a process of its own.

#include "ratios.h"

#include <benchmark/benchmark.h>

#include <dlfcn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

namespace {

struct Load
{
    double seconds = 0;
    long touchedPages = 0;
};

long pageFaults()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_minflt + usage.ru_majflt;
}

Load loadHere(const char *path)
{
    using Clock = std::chrono::steady_clock;
    const long faultsBefore = pageFaults();
    const Clock::time_point start = Clock::now();
    if (!dlopen(path, RTLD_LAZY))
        _exit(EXIT_FAILURE);
    return {std::chrono::duration<double>(Clock::now() - start).count(), pageFaults() - faultsBefore};
}

// Returns no time after a failure.
Load loadInProcess(const char *path)
{
    int ends[2];
    if (pipe(ends) != 0)
        return {};
    const pid_t child = fork();
    if (child == 0) {
        const Load load = loadHere(path);
        _exit(write(ends[1], &load, sizeof load) == sizeof load ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    close(ends[1]);
    Load load;
    if (read(ends[0], &load, sizeof load) != sizeof load)
        load = {};
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return load;
}

void measureLoad(benchmark::State &state, const char *path)
{
    long touchedPages = 0;
    for (auto _ : state) {
        const Load load = loadInProcess(path);
        if (load.seconds <= 0)
            state.SkipWithError("the library cannot be loaded");
        state.SetIterationTime(load.seconds);
        touchedPages = load.touchedPages;
    }
    state.counters["touched_pages"] = double(touchedPages);
}

BENCHMARK_CAPTURE(measureLoad, library, ZYBASE_LIBRARY)
    ->Name("load/libZyBase.so")
    ->UseManualTime()
    ->Iterations(50)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measureLoad, empty, EMPTY_LIBRARY)
    ->Name("load/an empty library")
    ->UseManualTime()
    ->Iterations(50)
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    return runWithRatios(argc, argv, {{"load the library", "load/libZyBase.so", "load/an empty library"}});
}
