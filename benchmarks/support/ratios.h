// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QStringList>

#include <functional>
#include <string>
#include <vector>

/**
 * Compares two benchmarks that do the same work. A benchmark is named "operation/who does it". The first
 * ratio of an operation compares the library with direct calls, the others compare it with other libraries
 * and programs.
 */
struct Ratio
{
    const char *operation; ///< what is measured, with its size
    const char *ours; ///< name of the library's benchmark
    const char *baseline; ///< name of the benchmark that it is compared with
    double bound = 0; ///< the ratio should not be larger; 0 for no bound
};

/** Registers a run of a program as a benchmark, if the program is installed. */
void registerProgram(const std::string &name, const QString &program,
                     const std::function<QStringList()> &arguments);

/**
 * Runs the registered benchmarks and prints their ratios after the table of Google Benchmark. The repetitions
 * run in random order, so that the state of the machine affects all benchmarks.
 *
 * The ratio is that of the fastest repetitions, which other processes disturbed least. The middle half of the
 * ratios of the single repetitions is its spread. If the environment variable ZYBASE_BENCHMARK_RESULTS names
 * a file, a line of JSON for each ratio is added to it.
 *
 * @return the exit code of the program
 */
int runWithRatios(int argc, char **argv, const std::vector<Ratio> &ratios);
