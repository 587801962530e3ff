// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QString>

#include <string>

/**
 * @file
 * Declares ZyBase::COperateSystem and the functions ZyBase::getGnomeTheme(), ZyBase::getMachineId() and
 * ZyBase::getMainMacAddress().
 */

namespace ZyBase {

/**
 * The Linux implementation of CSystemUtils and CAssocUtils.
 *
 * Call CSystemUtils or CAssocUtils instead, if they have the same function. Use this class for the identifier
 * of the machine, and for the default application of a file type other than PDF:
 * @code
 * const QString app = QStringLiteral("org.example.reader");  // of org.example.reader.desktop
 * const QString type = QStringLiteral("text/plain");
 * ZyBase::COperateSystem::SetDefaultLauncher(app, type, QString(), false);
 * const bool isDefault = ZyBase::COperateSystem::IsDefaultLauncher(app, type);
 * @endcode
 *
 * **Threads.** All functions are thread-safe, from the first call on. No thread may change the environment of
 * the process during a call. The functions that run a tool should not be called from the GUI thread:
 * IsDarkTheme(), IsDefaultLauncher() and SetDefaultLauncher(). The others may be.
 *
 * **Blocking.** The functions that run a tool wait up to 30 seconds for each tool. The others block for the
 * time of reading one small file at most. No function runs an event loop.
 *
 * **Failures.** Failures are reported only by the return value. If a tool hangs, Qt logs warnings, for
 * example `QProcess: Destroyed while process ("gsettings") is still running.` No function throws an exception
 * of its own.
 *
 * **Lifetime.** All functions are static. Do not create objects of this class. No result is cached. No tool
 * is left running after a call.
 *
 * @see CSystemUtils, CAssocUtils
 * @since 0.1.0
 */
class ZYBASE_EXPORT COperateSystem
{
public:
    /** Does nothing. The machine is not suspended. */
    static void SleepComputer();

    /** Does nothing. The machine is not shut down. */
    static void ShutdownComputer();

    /**
     * Returns the name of the package that the running executable belongs to.
     *
     * This is the name of the executable's directory. If that name contains "files" in any case, it is the
     * name of the parent directory:
     *
     * | Executable | Result |
     * |---|---|
     * | /opt/apps/org.example.reader/files/reader | org.example.reader |
     * | /usr/bin/reader | bin |
     * | /home/user/profiles/reader | user |
     *
     * @return the name in UTF-8; "." if the executable is in the root directory or /proc cannot be read; the
     * name that contains "files" if the parent directory no longer exists. Nothing is logged.
     *
     * @warning Every directory whose name contains "files" is skipped, for example "profiles". Install the
     * executable in "<package>/files", or check the result.
     *
     * @see CSystemUtils::GetBundleIdentifier()
     */
    static std::string GetBundleIdentifier();

    /**
     * Returns the identifier of the machine.
     *
     * @return the value of QSysInfo::machineUniqueId() up to its first NUL byte, or getMachineId() if it is
     * empty; in UTF-8, usually 32 hexadecimal digits; an empty string if the machine has no identifier
     *
     * @warning The identifier is unique to this machine and must be kept confidential. Do not send it
     * anywhere. Send CSystemUtils::GetPCID() instead, from which it cannot be calculated.
     */
    static std::string GetSystemUDID();

    /**
     * Returns true if the user's desktop has a dark theme.
     *
     * Desktops store the theme in different settings. The function reads these sources in turn, on every
     * desktop. The first that contains "dark" or "light" decides:
     *
     * 1. GNOME: gtk-theme, then color-scheme of org.gnome.desktop.interface
     * 2. KDE: General/ColorScheme in kdeglobals, then Theme/name in plasmarc
     * 3. GTK: Settings/gtk-theme-name in gtk-3.0/settings.ini, then in gtk-4.0/settings.ini
     * 4. the environment: GTK_THEME, then QT_STYLE_OVERRIDE, then DESKTOP_SESSION
     * 5. UKUI: style-name, then theme-mode of org.ukui.style, then theme of
     * org.ukui.control-center.personalise
     * 6. Kylin: the keys theme, style, mode, appearance and theme-mode in ukui/ukui-style.conf, then in
     *    kylin/theme.conf, then in ukui-style-settings/style.conf
     * 7. MATE: gtk-theme of org.mate.interface
     * 8. Qt on Kylin: style in QtProject.conf, then Appearance/style in kylin-qt5/qt5ct.conf
     *
     * The settings of 1, 5 and 7 are read with the tool gsettings. Those of 2, 3, 6 and 8 are read from ini
     * files in the user's configuration directory. A value decides if it contains "dark" or "light" anywhere,
     * in any case; a value with both words is dark. Exceptions:
     *
     * - color-scheme must contain "prefer-dark" or "prefer-light" in lower case.
     * - theme-mode of UKUI must be equal to "dark" or "light", in lower case. "auto" ends source 5 undecided.
     * - In source 6, a value that contains "auto" in any case, but neither "dark" nor "light", ends the
     * source undecided.
     * - Sources 1 and 5 are skipped unless the tool `which` finds gsettings, so also if `which` is not
     * installed.
     *
     * The source that decided is logged with qDebug(). The values read for 5, 6 and 7 are logged, too.
     *
     * @return true for a dark theme; false for a light one, and if no source decides
     *
     * **Blocking.** Runs up to eight tools, one after the other: usually about 10 milliseconds each, at most
     * 30 seconds each and 240 seconds in all. The output of a tool that hangs is used as far as it has been
     * written; the tool is then ended. If the system creates no process, the tool is skipped at once.
     *
     * @warning In the GUI thread, a tool that hangs blocks the window. Call the function in another thread:
     * see @ref guide-blocking-calls-and-the-interface "docs/guide/blocking-calls-and-the-interface.md". To
     * follow changes of the theme, see
     * @ref guide-watching-the-theme "docs/guide/watching-the-theme.md".
     *
     * @warning Settings of a desktop that is no longer in use count too. A GNOME setting overrides those of
     * KDE in a KDE session. If that matters, let the user select the theme in the application.
     *
     * @warning KDE writes ColorScheme to the section [General], which QSettings does not return for the key
     * General/ColorScheme. On KDE it is usually plasmarc that decides.
     *
     * @see CSystemUtils::IsDarkTheme(), getGnomeTheme()
     */
    static bool IsDarkTheme();

    /**
     * Returns true if an application opens files of a type by default, as reported by the tool xdg-mime.
     *
     * @param strApp name of the application's desktop entry, with or without the suffix ".desktop":
     * "org.example.reader"; case-sensitive
     * @param strMimeType the type, for example "application/pdf"
     * @return true if the name of the default entry contains @p strApp; false if it does not, if no default
     * is set, and if xdg-mime fails or is not installed
     *
     * **Blocking.** Waits for xdg-mime: usually a tenth of a second, at most 30 seconds. If it hangs, its
     * output so far is used.
     *
     * @warning A part of the name matches: "read" also returns true. An empty @p strApp always returns true.
     * Pass the full name with ".desktop" to avoid false matches.
     *
     * @see SetDefaultLauncher(), CAssocUtils::IsPdfLauncher()
     */
    static bool IsDefaultLauncher(const QString &strApp, const QString &strMimeType);

    /**
     * Makes an application the default for files of a type, for the current user, with the tool xdg-mime.
     *
     * @param strApp name of the application's desktop entry without the suffix ".desktop", which is always
     * appended: "org.example.reader"
     * @param strMimeType the type, for example "application/pdf"
     * @param strUnread not used
     * @param bUnread not used
     * @return always true, also if nothing was changed; call IsDefaultLauncher() to check the result
     *
     * **Blocking.** Waits for xdg-mime: usually a tenth of a second, at most 30 seconds.
     *
     * @warning Do not pass a name with the suffix. Unlike IsDefaultLauncher(), this function would set the
     * entry "org.example.reader.desktop.desktop", which does not exist.
     *
     * @see IsDefaultLauncher(), CAssocUtils::SetPdfLauncher()
     */
    static bool SetDefaultLauncher(const QString &strApp, const QString &strMimeType,
                                   const QString &strUnread, bool bUnread);

    /**
     * Does nothing. The default application is not changed.
     *
     * @param strApp not used
     * @param strMimeType not used
     * @return always true
     *
     * @warning To restore the previous default, call SetDefaultLauncher() with its name.
     */
    static bool ResetDefaultLauncher(const QString &strApp, const QString &strMimeType);
};

/**
 * Returns the theme according to GNOME's settings.
 *
 * This is the first source of COperateSystem::IsDarkTheme(), by the same rules. Nothing is logged, except
 * Qt's warnings if a tool hangs.
 *
 * @return 1 for dark; 0 for light; 2 if the settings do not decide, or `which` or gsettings is not installed
 *
 * **Threads.** This function is thread-safe. No thread may change the environment of the process during the
 * call. It should not be called from the GUI thread.
 *
 * **Blocking.** Runs up to three tools: usually about 10 milliseconds each, at most 90 seconds in all.
 *
 * @warning The result is not a bool: 2 also converts to true. Compare it with 1.
 *
 * @see COperateSystem::IsDarkTheme()
 * @since 0.1.0
 */
ZYBASE_EXPORT int getGnomeTheme();

/**
 * Returns the content of /etc/machine-id.
 *
 * @return the content without the white space around it, read in the encoding of the locale, usually 32
 * hexadecimal digits; an empty string if the file is empty; a null string if it cannot be opened
 *
 * **Threads.** This function is thread-safe and may be called from the GUI thread. **Blocking.** Blocks while
 * one small file is read.
 *
 * @warning The identifier must be kept confidential. Do not send it anywhere. Send CSystemUtils::GetPCID()
 * instead.
 *
 * @see COperateSystem::GetSystemUDID()
 * @since 0.1.0
 */
ZYBASE_EXPORT QString getMachineId();

/**
 * Returns the hardware address of the main network interface, for example "52:54:00:12:34:56".
 *
 * This is the first interface of QNetworkInterface::allInterfaces() that is up, has a hardware address, and
 * is neither a loopback nor a point-to-point interface.
 *
 * @return the address; a null string if no interface qualifies
 *
 * **Threads.** This function is thread-safe and may be called from the GUI thread. **Blocking.** Blocks while
 * the kernel lists its interfaces; nothing is sent to the network.
 *
 * @warning The result can change when an interface is added or removed. Bridges, interfaces of
 * virtual machines and an address of zeros also count. For a stable identifier, use CSystemUtils::GetPCID().
 *
 * @since 0.1.0
 */
ZYBASE_EXPORT QString getMainMacAddress();

} // namespace ZyBase
