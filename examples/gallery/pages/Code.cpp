// SPDX-License-Identifier: 0BSD

#include "Code.h"

#include <QFile>
#include <QStringList>

// Between two marks is a part of the code, and then a part that is not shown.
QString codeOf(const char *source)
{
    QFile file(QStringLiteral(":/code/") + QLatin1String(source));
    file.open(QIODevice::ReadOnly);
    const QStringList parts = QString::fromUtf8(file.readAll()).split(QStringLiteral("//! [code]\n"));
    QStringList code;
    for (int part = 1; part < parts.size(); part += 2)
        code << parts.at(part);
    return code.join(QLatin1Char('\n'));
}
