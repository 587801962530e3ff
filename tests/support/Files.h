// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/** The whole content of the file; null when it can't be read. */
QByteArray readFile(const QString &path);

/** The lines of a text file without their ends; a last one that lacks its end is shown with "<cut>". */
QStringList readLines(const QString &path);

bool writeFile(const QString &path, const QByteArray &content);
