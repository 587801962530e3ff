// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QStringList>

struct HostOptions
{
    double minutes = 1;
    QStringList parts; ///< the usual ones if empty
    bool isControl = false;
    QString logDirectory; ///< a temporary one if empty
    QString logName;
};

/** Prints a line to the standard error stream. */
void print(const QString &line);

/** Runs the parts in turn. Prints the figures. Returns the exit code: 1 if a figure grows or a part fails. */
int runHost(const HostOptions &options);

/** Runs the local services until standard input ends. Writes their description to the directory. */
int runServices(const QString &directory);
