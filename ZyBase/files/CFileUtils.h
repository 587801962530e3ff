// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QString>

namespace ZyBase {

/**
 * Files by their path, and the texts that a host's dialogs and lists show of them.
 *
 * All functions are static and keep nothing between calls but what FormatOpenTime() says. None
 * throws or logs, and none is translated.
 *
 * **Threads.** Any.
 */
class ZYBASE_EXPORT CFileUtils
{
public:
    /** @name Names and display texts */
    ///@{

    /**
     * Whether a file may bear this name on any of the systems that the hosts' files travel to: true
     * when none of the characters \ / : * ? " < > | stands in it.
     *
     * Nothing else is looked at: an empty name passes, and so do control characters, names of any
     * length, "." and "..", blanks and dots at the ends, and reserved device names.
     */
    static bool CheckFileNameValid(const QString &strFileName);

    /**
     * Whether this is a usable path of the form drive letter, colon, separator: true when it is at
     * least 3 characters long, has a colon among the first 3, and none of : * ? " < > | behind them.
     *
     * @warning Made for drive paths only, also on Linux: "/home/user/a.pdf" has no colon and gives
     * false. The first 3 characters may be anything as long as one of them is a colon.
     */
    static bool CheckFilePathValid(const QString &strFilePath);

    /**
     * A moment as a list of recent files shows it: "HH:mm:ss" for one of today, "MM/dd/yyyy" for any
     * other, past or future, in local time. Qt writes it with the digits of the system's locale, which
     * are not 0 to 9 in every one.
     *
     * @param nSeconds since the Unix epoch
     *
     * @warning "Today" is the day on which this function was first called in the process, to its end.
     * In a host that runs past midnight the times of the new day appear as dates and those of the old
     * one as clock times. A host that shows them for days formats them itself.
     */
    static QString FormatOpenTime(long long nSeconds);

    /**
     * A size as text: the number with two decimals and a full stop in every locale, a blank, and B,
     * KB, MB, GB or TB in steps of 1024, e.g. "1.50 KB". Plain bytes have decimals too ("512.00 B").
     *
     * Rounded after the unit was chosen, so that 1048575 gives "1024.00 KB"; above TB the number goes
     * on growing. A negative size is given in bytes.
     */
    static QString FormatFileSize(long long nSize);

    /**
     * The first path of the row dir/name.ext, dir/name(1).ext, dir/name(2).ext … at which nothing
     * exists.
     *
     * Only the last suffix counts as one: for "a.tar.gz" the row goes on with "a.tar(1).gz".
     *
     * @param strFilePath the path wished for. Without a directory the result begins with "./", for a
     *                    file in the root directory with "//".
     * @param strExtension takes the place of the path's own suffix, without a dot; empty for the
     *                     path's own. A file without a suffix gets a dot at its end: "README.".
     *
     * @warning The name is free at the time of the test and not reserved. A host that can't have two
     * programs meet opens the file with QIODevice::NewOnly and asks again when that fails.
     *
     * **Blocking.** One look at the file system for each name that is taken.
     */
    static QString getUniqueFileName(const QString &strFilePath, const QString &strExtension);

    ///@}
};

} // namespace ZyBase
