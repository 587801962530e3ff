// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Trend.h"

#include <QString>

#include <vector>

/** Figures of this process over time: heap, resident memory, descriptors, threads and child processes. */
class Figures
{
public:
    Figures();

    /** Adds the present values. @p knownGrowthBytes is subtracted from the memory. */
    void sample(double seconds, double knownGrowthBytes);

    /** Returns a table with the growth of each figure and its tolerance. */
    QString table() const;

    /**
     * Returns true if a figure has grown by more than its tolerance and by more than three standard errors.
     * Always false in a run of a few seconds, whose values are too few to judge.
     */
    bool haveGrown() const;

private:
    struct Figure
    {
        const char *name;
        double (*value)();
        double unit; ///< 1024 for bytes, which are printed in KiB
        double tolerance; ///< of the growth in the whole run
        Trend trend;
    };
    static bool hasGrown(const Figure &figure);

    std::vector<Figure> m_figures;
};
