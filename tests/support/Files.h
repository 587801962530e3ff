// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/** Returns the content of the file; a null array if it cannot be read. */
QByteArray readFile(const QString &path);

/** Returns the lines of a file without their ends. If the last line has no end, "<cut>" is appended to it. */
QStringList readLines(const QString &path);

/** Creates or replaces the file. Returns false after a failure. */
bool writeFile(const QString &path, const QByteArray &content);
