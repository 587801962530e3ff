// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Figures.h"

#include "ProcessFigures.h"

#include <QDir>
#include <QFile>

#include <malloc.h>
#include <unistd.h>

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

double residentBytes()
{
    return double(ProcessFigures::residentBytes());
}

double descriptorCount()
{
    return ProcessFigures::openFileCount();
}

double threadCount()
{
    return ProcessFigures::threadCount();
}

double childCount()
{
    int count = 0;
    const QStringList processes =
        QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    for (const QString &process : processes) {
        QFile file(QStringLiteral("/proc/%1/stat").arg(process));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        // "pid (name) state parent ...": the name can contain spaces.
        const QByteArray line = file.readAll();
        const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
        if (fields.value(1).toInt() == ::getpid())
            ++count;
    }
    return count;
}

QString number(double value, bool isMemory)
{
    return isMemory ? QStringLiteral("%1 KiB").arg(value / kibibyte, 0, 'f', 1)
                    : QString::number(value, 'f', 2);
}

} // namespace

Figures::Figures()
    : m_figures {{"heap in use", heapBytes, true, 256 * kibibyte, {}},
                 {"resident memory", residentBytes, true, 4096 * kibibyte, {}},
                 {"descriptors", descriptorCount, false, 1, {}},
                 {"threads", threadCount, false, 1, {}},
                 {"child processes", childCount, false, 1, {}}}
{
}

void Figures::sample(double seconds, double knownGrowthBytes)
{
    for (Figure &figure : m_figures)
        figure.trend.add(seconds, figure.value() - (figure.isMemory ? knownGrowthBytes : 0));
}

QString Figures::table() const
{
    const auto row = [](const QStringList &columns) {
        QString line = columns.first().leftJustified(18);
        for (int i = 1; i < columns.size(); ++i)
            line += columns.at(i).rightJustified(15);
        return line + QLatin1Char('\n');
    };
    QString text = row({QStringLiteral("figure"), QStringLiteral("first"), QStringLiteral("last"),
                        QStringLiteral("growth"), QStringLiteral("error"), QStringLiteral("tolerance")});
    for (const Figure &figure : m_figures) {
        QStringList columns {QString::fromLatin1(figure.name)};
        for (const double value : {figure.trend.first(), figure.trend.last(), figure.trend.growth(),
                                   figure.trend.growthError(), figure.tolerance})
            columns << number(value, figure.isMemory);
        text += row(columns).chopped(1) + QLatin1String(hasGrown(figure) ? "  GROWS\n" : "\n");
    }
    return text;
}

bool Figures::hasGrown() const
{
    return std::any_of(m_figures.begin(), m_figures.end(),
                       [](const Figure &figure) { return hasGrown(figure); });
}

bool Figures::hasGrown(const Figure &figure)
{
    constexpr double standardErrors = 3;
    const double growth = figure.trend.growth();
    return growth > figure.tolerance && growth > standardErrors * figure.trend.growthError();
}
