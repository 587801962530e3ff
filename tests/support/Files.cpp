// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"

#include <QFile>

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList readLines(const QString &path)
{
    QStringList lines = QString::fromUtf8(readFile(path)).split(QLatin1Char('\n'));
    const QString rest = lines.takeLast();
    if (!rest.isEmpty())
        lines << rest + QStringLiteral("<cut>");
    return lines;
}

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(content) == content.size();
}
