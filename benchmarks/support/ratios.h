// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <string>
#include <vector>

/** Two benchmarks of one program that do the same work, ours and what it is measured against. */
struct Ratio
{
    const char *what;
    const char *ours;
    const char *baseline;
    double bound; ///< what the ratio should not exceed; 0 for none
};

/**
 * Runs the registered benchmarks, repeated and in random order so that all meet the machine in the
 * same state,, and prints the ratios of their fastest repetitions below Google Benchmark's own table.
 *
 * @return the program's exit code
 */
int runWithRatios(int argc, char **argv, const std::vector<Ratio> &ratios);
