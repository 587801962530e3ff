// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QString>

/**
 * Why the archive should not be extracted, in words for the user; null where nothing speaks against it.
 *
 * @param room the most bytes that its files may have together
 * @param codec how names are decoded that the archive doesn't mark as UTF-8
 */
QString objectionTo(const QString &zipPath, quint64 room, const QByteArray &codec);

/** The codec for these names: "UTF-8" where all of them are valid in it, else @p codecOfOthers. */
QByteArray nameCodec(const QString &zipPath, const QByteArray &codecOfOthers);

/** What of the archive is not in the directory with its check sum; null where all of it is. */
QString lackIn(const QString &directory, const QString &zipPath, const QByteArray &codec);
