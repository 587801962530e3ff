// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QList>
#include <QString>

/** An extraction as its messages tell it. */
struct Extraction
{
    enum Fate { Extracted, Kept, Failed };
    struct Entry
    {
        QString name; ///< in the directory; what went wrong for one that failed
        Fate fate;
    };

    bool isDone = false;
    QList<Entry> entries;

    int count(Fate fate) const;
};

/**
 * Extracts the archive in the calling thread, which blocks meanwhile. ZipManager tells what becomes of each
 * entry by Qt's messages alone: those of this thread are taken, all others go on to where they went before.
 */
Extraction extract(const QString &archive, const QString &directory, bool overwrite);
