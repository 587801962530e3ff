// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

/** A straight line through values over time, fitted by least squares. It stores sums only, so it never grows.
 */
class Trend
{
public:
    void add(double seconds, double value);

    int count() const { return m_count; }
    double first() const { return m_first; }
    double last() const { return m_last; }

    /** Returns the growth of the line from the first to the last time. */
    double growth() const;

    /** Returns the standard error of growth(), if the deviations from the line are independent. */
    double growthError() const;

private:
    double squares(double sumOfProducts, double firstSum, double secondSum) const;

    int m_count = 0;
    double m_first = 0;
    double m_last = 0;
    double m_firstSeconds = 0;
    double m_spanSeconds = 0;
    double m_sumX = 0;
    double m_sumY = 0;
    double m_sumXX = 0;
    double m_sumXY = 0;
    double m_sumYY = 0;
};
