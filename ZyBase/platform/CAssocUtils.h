// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QString>

namespace ZyBase {

/**
 * Which application opens the user's PDF files.
 *
 * @code
 * const QString app = QStringLiteral("org.example.reader");   // of org.example.reader.desktop
 * if (!ZyBase::CAssocUtils::IsPdfLauncher(app)) {
 *     ZyBase::CAssocUtils::SetPdfLauncher(app, QString(), false);
 *     const bool done = ZyBase::CAssocUtils::IsPdfLauncher(app);
 * }
 * @endcode
 *
 * The tool xdg-mime is asked at each call; nothing is remembered. COperateSystem has the same for any
 * type of file.
 *
 * **Threads.** Any.
 *
 * **Blocking.** A child process: a tenth of a second as a rule, 30 seconds where it hangs.
 * ResetPdfLauncher() returns at once.
 */
class ZYBASE_EXPORT CAssocUtils
{
public:
    /**
     * Whether the application opens PDF files by default.
     *
     * @param strApp the name of its desktop entry, with or without ".desktop", in its exact case
     * @return whether it does; false also when xdg-mime can't tell or is not installed
     *
     * @warning A part of the entry's name is enough, and an empty @p strApp is true always. Pass the
     * full name with ".desktop" to be told from an application whose name contains this one.
     */
    static bool IsPdfLauncher(const QString &strApp);

    /**
     * Makes the application the one that opens PDF files for this user.
     *
     * @param strApp the name of its desktop entry without ".desktop", which is always appended
     * @param strUnread not read
     * @param bUnread not read
     * @return true always: IsPdfLauncher() tells whether it was done
     */
    static bool SetPdfLauncher(const QString &strApp, const QString &strUnread, bool bUnread);

    /**
     * Does nothing: there is no former default to go back to.
     *
     * @param strApp not looked at
     * @return true always
     */
    static bool ResetPdfLauncher(const QString &strApp);
};

} // namespace ZyBase
