// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <string>
#include <vector>

/** Compares two benchmarks of one program that do the same work. */
struct Ratio
{
    const char *what; ///< what is compared, for the output
    const char *ours; ///< name of the benchmark of the library
    const char *baseline; ///< name of the benchmark that it is compared with
    double bound; ///< the ratio should not be larger; 0 for no bound
};

/**
 * Runs the registered benchmarks and prints the ratios of their fastest repetitions after the table of Google
 * Benchmark. The repetitions run in random order, so that the state of the machine affects all benchmarks.
 *
 * @return the exit code of the program
 */
int runWithRatios(int argc, char **argv, const std::vector<Ratio> &ratios);
