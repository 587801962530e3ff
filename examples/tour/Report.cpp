// SPDX-License-Identifier: 0BSD

#include "Report.h"

#include <QImage>

#include <unistd.h>

#include <cstdio>

namespace {

constexpr const char *plain = "0";
constexpr const char *bold = "1";
constexpr const char *dim = "2";
constexpr const char *green = "32";
constexpr const char *red = "31";
constexpr const char *yellow = "33";
constexpr const char *blackOnWhite = "38;5;16;48;5;231";

constexpr int columnsPerLine = 80;
constexpr int labelColumns = 24;
constexpr ushort firstWideCharacter = 0x2e80; // Chinese, Japanese and Korean characters take two columns

int columns(QChar character)
{
    return character.unicode() >= firstWideCharacter ? 2 : 1;
}

QStringList wrap(const QString &text, int width)
{
    QStringList lines {QString()};
    int used = 0;
    for (const QChar character : text) {
        used += columns(character);
        if (used > width) {
            lines << QString();
            used = columns(character);
        }
        lines.last() += character;
    }
    return lines;
}

bool isDark(const QImage &image, int x, int y)
{
    return y < image.height() && qGray(image.pixel(x, y)) < 128;
}

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
    const QString label = QStringLiteral("  ") + what.leftJustified(labelColumns) + QLatin1Char(' ');
    printWrapped(label, QString(label.size(), QLatin1Char(' ')), result, plain);
}

void Report::excerpt(const QStringList &lines)
{
    const QString margin = QStringLiteral("    | ");
    for (const QString &line : lines)
        printWrapped(margin, margin, line, dim);
}

void Report::image(const QImage &image)
{
    const QString blocks = QString::fromUtf8(" ▄▀█");
    for (int y = 0; y < image.height(); y += 2) {
        QString line;
        for (int x = 0; x < image.width(); ++x)
            line += blocks.at((isDark(image, x, y) ? 2 : 0) + (isDark(image, x, y + 1) ? 1 : 0));
        print(QStringLiteral("    ") + coloured(blackOnWhite, line));
    }
}

void Report::promise(const QString &what, bool isKept)
{
    ++(isKept ? m_kept : m_broken);
    const QString mark = isKept ? coloured(green, QStringLiteral("ok")) + QStringLiteral("    ")
                                : coloured(red, QStringLiteral("BROKEN"));
    print(QStringLiteral("  ") + mark + QLatin1Char(' ') + what);
}

void Report::skip(const QString &what, const QString &reason)
{
    ++m_skipped;
    print(QStringLiteral("  ") + coloured(yellow, QStringLiteral("skipped, because ") + reason)
          + QLatin1Char(':'));
    print(QStringLiteral("         ") + what);
}

int Report::finish()
{
    QString summary = QStringLiteral("%1 of %2 promises kept").arg(m_kept).arg(m_kept + m_broken + m_skipped);
    if (m_skipped > 0)
        summary += QStringLiteral(", %1 skipped").arg(m_skipped);
    if (m_broken > 0)
        summary += QStringLiteral(", %1 broken").arg(m_broken);
    print(QString());
    print(coloured(m_broken == 0 ? green : red, summary));
    return m_broken == 0 ? 0 : 1;
}

void Report::printWrapped(const QString &first, const QString &next, const QString &text, const char *colour)
{
    const QStringList lines = wrap(text, columnsPerLine - first.size());
    print(first + coloured(colour, lines.first()));
    for (const QString &line : lines.mid(1))
        print(next + coloured(colour, line));
}

void Report::print(const QString &text)
{
    std::puts(text.toLocal8Bit().constData());
    std::fflush(stdout);
}

QString Report::coloured(const char *colour, const QString &text) const
{
    if (!m_isTerminal)
        return text;
    return QStringLiteral("\033[%1m%2\033[0m").arg(QLatin1String(colour), text);
}
