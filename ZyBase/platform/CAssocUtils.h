// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QString>

/**
 * @file
 * Declares ZyBase::CAssocUtils.
 */

namespace ZyBase {

/**
 * Reads and sets the default application for PDF files.
 *
 * The functions run the tool xdg-mime for the type "application/pdf". For other types, use
 * COperateSystem::IsDefaultLauncher() and COperateSystem::SetDefaultLauncher().
 *
 * @code
 * const QString app = QStringLiteral("org.example.reader");   // of org.example.reader.desktop
 * if (!ZyBase::CAssocUtils::IsPdfLauncher(app)) {
 *     ZyBase::CAssocUtils::SetPdfLauncher(app, QString(), false);
 *     const bool done = ZyBase::CAssocUtils::IsPdfLauncher(app);
 * }
 * @endcode
 *
 * **Threads.** All functions are thread-safe, from the first call on. No thread may change the environment of
 * the process during a call. IsPdfLauncher() and SetPdfLauncher() should not be called from the GUI thread,
 * because they run no event loop and block the window: see
 * @ref guide-blocking-calls-and-the-interface "docs/guide/blocking-calls-and-the-interface.md".
 *
 * **Blocking.** IsPdfLauncher() and SetPdfLauncher() wait for xdg-mime: usually a tenth of a second, at most
 * 30 seconds. ResetPdfLauncher() never blocks.
 *
 * **Failures.** Failures are reported only by the return value. If xdg-mime hangs, it is ended, and Qt logs a
 * warning: `QProcess: Destroyed while process ("xdg-mime") is still running.` No function throws an exception
 * of its own.
 *
 * **Lifetime.** All functions are static. Do not create objects of this class. No result is cached.
 *
 * @see COperateSystem
 * @since 0.1.0
 */
class ZYBASE_EXPORT CAssocUtils
{
public:
    /**
     * Returns true if an application opens PDF files by default.
     *
     * @param strApp name of the application's desktop entry, with or without the suffix ".desktop":
     * "org.example.reader"; case-sensitive
     * @return true if the name of the default entry contains @p strApp; false if it does not, if no default
     * is set, and if xdg-mime fails or is not installed
     *
     * @warning A part of the name matches: "read" also returns true. An empty @p strApp always returns true.
     * Pass the full name with ".desktop" to avoid false matches.
     *
     * @see SetPdfLauncher()
     */
    static bool IsPdfLauncher(const QString &strApp);

    /**
     * Makes an application the default for PDF files, for the current user.
     *
     * @param strApp name of the application's desktop entry without the suffix ".desktop", which is always
     * appended: "org.example.reader"
     * @param strUnread not used
     * @param bUnread not used
     * @return always true, also if nothing was changed; call IsPdfLauncher() to check the result
     *
     * @warning Do not pass a name with the suffix. Unlike IsPdfLauncher(), this function would set the entry
     * "org.example.reader.desktop.desktop", which does not exist.
     *
     * @see IsPdfLauncher()
     */
    static bool SetPdfLauncher(const QString &strApp, const QString &strUnread, bool bUnread);

    /**
     * Does nothing. The default application is not changed.
     *
     * @param strApp not used
     * @return always true
     *
     * @warning To restore the previous default, call SetPdfLauncher() with its name.
     */
    static bool ResetPdfLauncher(const QString &strApp);
};

} // namespace ZyBase
