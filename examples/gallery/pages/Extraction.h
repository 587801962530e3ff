// SPDX-License-Identifier: 0BSD

#pragma once

#include <QList>
#include <QString>

/** The result of an extraction, read from the messages of ZipManager. */
struct Extraction
{
    enum Result { Extracted, Skipped, Failed };
    struct Entry
    {
        QString name; ///< relative to the directory; the message if the entry failed
        Result result;
    };

    bool isDone = false;
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
