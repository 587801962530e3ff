// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/** One entry of an archive: its name as bytes, so that it need be no UTF-8, and its content. */
struct ArchiveEntry
{
    QByteArray name;
    QByteArray content;
};

/** Whether archives can be made with Python's zipfile; tests that need it are skipped by name. */
bool canMakeArchives();

/**
 * Runs a tool in a directory; @return whether it is installed and ended well.
 */
bool runTool(const QString &program, const QStringList &arguments, const QString &directory);

/** Has Python run @p script, which finds @p arguments in sys.argv[1:]. */
bool runPython(const char *script, const QStringList &arguments);

/**
 * Makes an archive of these entries in this order, by Python's zipfile, stored. Names are taken as they
 * are, also twice, and not marked as UTF-8 unless they are and have other characters than ASCII.
 */
bool makeArchive(const QString &path, const QList<ArchiveEntry> &entries);
