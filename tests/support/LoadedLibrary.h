// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Files.h"

#include <QFileInfo>

/** Returns the path of the library in this process whose file name starts so; null if none is loaded. */
inline QString loadedLibrary(const char *name)
{
    const QStringList maps =
        QString::fromUtf8(readFile(QStringLiteral("/proc/self/maps"))).split(QLatin1Char('\n'));
    for (const QString &line : maps) {
        QString path = line.mid(line.indexOf(QLatin1Char('/')));
        if (QFileInfo(path).fileName().startsWith(QLatin1String(name)))
            return path;
    }
    return QString();
}
