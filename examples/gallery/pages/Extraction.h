// SPDX-License-Identifier: 0BSD

#pragma once

#include <QList>
#include <QString>

/** The result of an extraction, from the messages of ZipManager and from the sizes of the files. */
struct Extraction
{
    enum Result { Extracted, Skipped, Failed };
    struct Entry
    {
        QString name;
        Result result;
        QString cause; ///< why the entry failed; empty if unknown
        QString message; ///< of the library
    };

    bool isDone = false;
    QString cause; ///< why it is not done
    QString message; ///< of the library, if it is not done
    QList<Entry> entries;

    int count(Result result) const;
};

/**
 * Extracts the archive; blocks until it is done.
 *
 * ZipManager reports each entry only as a Qt message. The messages of this thread are read meanwhile; those
 * of other threads still reach the previous message handler.
 */
Extraction extract(const QString &archive, const QString &directory, bool overwrite);
