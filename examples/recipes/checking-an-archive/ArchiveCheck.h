// SPDX-License-Identifier: 0BSD

#pragma once

#include <QByteArray>
#include <QString>

/**
 * Returns why the archive must not be extracted, as a message for the user; null if it may be extracted.
 *
 * @param spaceBytes the largest total size of the extracted files
 * @param codec decodes the names that the archive does not mark as UTF-8
 */
QString archiveProblem(const QString &zipPath, quint64 spaceBytes, const QByteArray &codec);

/**
 * Returns half of the free space on the disk of the directory @p parentPath, in bytes.
 *
 * If the system does not report the free space, there is no limit: returns the largest number.
 */
quint64 spaceForArchive(const QString &parentPath);

/** Returns "UTF-8" if all names that are not marked are valid UTF-8; otherwise @p otherCodec. */
QByteArray archiveNameCodec(const QString &zipPath, const QByteArray &otherCodec);

/** Returns the first entry that is not in @p directory with its check sum; null if all are. */
QString missingEntry(const QString &directory, const QString &zipPath, const QByteArray &codec);

/**
 * Checks an archive, extracts it to a new directory, and checks what was extracted.
 *
 * Blocks until the archive is extracted. Sets the codec of file names for all archives of this process, so
 * extract one archive at a time.
 *
 * @param directory must not exist yet, and its parent directory must exist
 * @return null if the whole archive is in the directory; otherwise what went wrong, as a message for the user
 */
QString extractArchive(const QString &zipPath, const QString &directory);
