// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Trend.h"

#include <algorithm>
#include <cmath>

void Trend::add(double seconds, double value)
{
    if (m_count == 0) {
        m_first = value;
        m_firstSeconds = seconds;
    }
    ++m_count;
    m_last = value;
    m_spanSeconds = seconds - m_firstSeconds;
    // Relative to the first value, so that no digits are lost.
    const double x = m_spanSeconds;
    const double y = value - m_first;
    m_sumX += x;
    m_sumY += y;
    m_sumXX += x * x;
    m_sumXY += x * y;
    m_sumYY += y * y;
}

double Trend::growth() const
{
    const double xx = squares(m_sumXX, m_sumX, m_sumX);
    return xx > 0 ? squares(m_sumXY, m_sumX, m_sumY) / xx * m_spanSeconds : 0;
}

double Trend::growthError() const
{
    constexpr int fittedValues = 2;
    const double xx = squares(m_sumXX, m_sumX, m_sumX);
    if (m_count <= fittedValues || xx <= 0)
        return 0;
    const double xy = squares(m_sumXY, m_sumX, m_sumY);
    const double deviations = std::max(0.0, squares(m_sumYY, m_sumY, m_sumY) - xy * xy / xx);
    return std::sqrt(deviations / (m_count - fittedValues) / xx) * m_spanSeconds;
}

// Returns the sum of the products of two deviations from their means.
double Trend::squares(double sumOfProducts, double firstSum, double secondSum) const
{
    return m_count > 0 ? sumOfProducts - firstSum * secondSum / m_count : 0;
}
