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

    /** Returns true if a figure has grown by more than its tolerance and by more than chance explains. */
    bool hasGrown() const;

private:
    struct Figure
    {
        const char *name;
        double (*value)();
        bool isMemory;
        double tolerance; ///< of the growth in the whole time
        Trend trend;
    };
    static bool hasGrown(const Figure &figure);

    std::vector<Figure> m_figures;
};
