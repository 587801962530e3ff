// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Report.h"

#include <unistd.h>

#include <cstdio>

namespace {

constexpr const char *bold = "1";
constexpr const char *dim = "2";
constexpr const char *green = "32";
constexpr const char *red = "31";
constexpr int labelWidth = 24;

} // namespace

Report::Report()
    : m_isTerminal(isatty(STDOUT_FILENO) != 0)
{
}

void Report::heading(const QString &service, const QString &header)
{
    print(QString());
    print(coloured(bold, service) + QStringLiteral("  ")
          + coloured(dim, QLatin1Char('<') + header + QLatin1Char('>')));
}

void Report::line(const QString &what, const QString &result)
{
    print(QStringLiteral("  ") + what.leftJustified(labelWidth) + QLatin1Char(' ') + result);
}

void Report::progress(const QString &state)
{
    const QString text = coloured(dim, QStringLiteral("    > ") + state);
    if (!m_isTerminal)
        return print(text);
    std::printf("\r%s\033[K", text.toLocal8Bit().constData());
    std::fflush(stdout);
    m_isLineOpen = true;
}

void Report::excerpt(const QStringList &lines)
{
    for (const QString &line : lines)
        print(coloured(dim, QStringLiteral("    | ") + line));
}

void Report::promise(const QString &what, bool kept)
{
    ++m_promises;
    m_kept += kept ? 1 : 0;
    print(QStringLiteral("  ")
          + (kept ? coloured(green, QStringLiteral("ok ")) : coloured(red, QStringLiteral("NOT")))
          + QLatin1Char(' ') + what);
}

int Report::finish()
{
    const bool allKept = m_kept == m_promises;
    print(QString());
    print(coloured(allKept ? green : red,
                   QStringLiteral("%1 of %2 promises kept.").arg(m_kept).arg(m_promises)));
    return allKept ? 0 : 1;
}

void Report::print(const QString &text)
{
    if (m_isLineOpen)
        std::puts("");
    m_isLineOpen = false;
    std::puts(text.toLocal8Bit().constData());
    std::fflush(stdout);
}

QString Report::coloured(const char *colour, const QString &text) const
{
    if (!m_isTerminal)
        return text;
    return QStringLiteral("\033[%1m%2\033[0m").arg(QLatin1String(colour), text);
}
