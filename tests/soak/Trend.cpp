// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Trend.h"

#include <cmath>

void Trend::add(double seconds, double value)
{
    if (m_count == 0) {
        m_first = value;
        m_firstSeconds = seconds;
    }
    ++m_count;
    m_last = value;
    m_lastSeconds = seconds;
    // Relative to the first value, so that no digits are lost.
    const double x = seconds - m_firstSeconds;
    const double y = value - m_first;
    m_sumX += x;
    m_sumY += y;
    m_sumXX += x * x;
    m_sumXY += x * y;
    m_sumYY += y * y;
}

double Trend::growth() const
{
    return slope() * span();
}

double Trend::growthError() const
{
    constexpr int fittedValues = 2;
    if (m_count <= fittedValues || timeSquares() <= 0)
        return 0;
    const double squares =
        m_sumYY - m_sumY * m_sumY / m_count - slope() * (m_sumXY - m_sumX * m_sumY / m_count);
    return std::sqrt(qMax(0.0, squares) / (m_count - fittedValues) / timeSquares()) * span();
}

double Trend::slope() const
{
    return timeSquares() > 0 ? (m_sumXY - m_sumX * m_sumY / m_count) / timeSquares() : 0;
}

double Trend::timeSquares() const
{
    return m_count > 0 ? m_sumXX - m_sumX * m_sumX / m_count : 0;
}
