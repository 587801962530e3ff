// SPDX-License-Identifier: 0BSD

#pragma once

#include <QTextStream>

/** Writes @p line to the standard output, in UTF-8. */
inline void printLine(const QString &line)
{
    QTextStream out(stdout);
    out.setCodec("UTF-8");
    out << line << '\n';
}
