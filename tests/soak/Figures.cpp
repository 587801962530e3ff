// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Figures.h"

#include "ProcessFigures.h"

#include <QStringList>

#include <algorithm>
#include <malloc.h>

namespace {

constexpr double kibibyte = 1024;

// The bytes that the program has allocated and not freed. Unlike resident memory, it has no fragments.
double heapBytes()
{
#if __GLIBC_PREREQ(2, 33)
    const struct mallinfo2 info = ::mallinfo2();
    return double(info.uordblks) + double(info.hblkhd);
#else
    const struct mallinfo info = ::mallinfo();
    return double(unsigned(info.uordblks)) + double(unsigned(info.hblkhd));
#endif
}

template <auto function> double number()
{
    return double(function());
}

QString row(const QStringList &columns)
{
    QString line = columns.first().leftJustified(22);
    for (const QString &column : columns.mid(1))
        line += column.rightJustified(11);
    return line + QLatin1Char('\n');
}

} // namespace

Figures::Figures()
    : m_figures {
        {"heap in use, KiB", heapBytes, kibibyte, 256 * kibibyte, {}},
        {"resident memory, KiB", number<ProcessFigures::residentBytes>, kibibyte, 4096 * kibibyte, {}},
        {"descriptors", number<ProcessFigures::openFileCount>, 1, 1, {}},
        {"threads", number<ProcessFigures::threadCount>, 1, 1, {}},
        {"child processes", number<ProcessFigures::childCount>, 1, 1, {}}}
{
}

void Figures::sample(double seconds, double knownGrowthBytes)
{
    for (Figure &figure : m_figures)
        figure.trend.add(seconds, figure.value() - (figure.unit == kibibyte ? knownGrowthBytes : 0));
}

QString Figures::table() const
{
    QString table = row({QStringLiteral("figure"), QStringLiteral("first"), QStringLiteral("last"),
                         QStringLiteral("growth"), QStringLiteral("error"), QStringLiteral("tolerance")});
    for (const Figure &figure : m_figures) {
        const Trend &trend = figure.trend;
        QStringList columns {QString::fromLatin1(figure.name)};
        for (const double value :
             {trend.first(), trend.last(), trend.growth(), trend.growthError(), figure.tolerance})
            columns << QString::number(value / figure.unit, 'f', 1);
        if (hasGrown(figure))
            columns << QStringLiteral("GROWS");
        table += row(columns);
    }
    return table;
}

bool Figures::haveGrown() const
{
    return std::any_of(m_figures.begin(), m_figures.end(), hasGrown);
}

bool Figures::hasGrown(const Figure &figure)
{
    constexpr int fewValues = 20;
    constexpr double standardErrors = 3;
    const double growth = figure.trend.growth();
    return figure.trend.count() > fewValues && growth > figure.tolerance
           && growth > standardErrors * figure.trend.growthError();
}
