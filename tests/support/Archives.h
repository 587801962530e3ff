// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/** One entry of an archive. The name can be any bytes, not only UTF-8. */
struct ArchiveEntry
{
    QByteArray name;
    QByteArray content;
};

/** Returns false if Python or its module zipfile is not installed. */
bool canMakeArchives();

/** Runs a program in a directory. Returns true if its exit code is 0. */
bool runTool(const QString &program, const QStringList &arguments, const QString &directory);

/** Runs a Python script, whose arguments are in sys.argv[1:]. Returns true if its exit code is 0. */
bool runPython(const char *script, const QStringList &arguments);

/**
 * Creates an archive with these entries in this order, uncompressed. A name may occur twice. Names are marked
 * as UTF-8 if they are UTF-8 and not ASCII.
 */
bool makeArchive(const QString &path, const QList<ArchiveEntry> &entries);
