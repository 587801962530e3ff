// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QString>

#include <string>

namespace ZyBase {

/**
 * The work on this platform behind CSystemUtils and CAssocUtils, which hosts call in its place where
 * both have the function.
 *
 * **Threads.** Any. No other thread may change the environment meanwhile.
 *
 * **Blocking.** For the time of reading some small files at most, unless a function says otherwise.
 */
class ZYBASE_EXPORT COperateSystem
{
public:
    /** Does nothing: the machine stays awake. */
    static void SleepComputer();

    /** Does nothing: the machine keeps running. */
    static void ShutdownComputer();

    /**
     * The name of the package that the running executable came with: the last part of the path of its
     * directory, or, where that has "files" in it in any case, the last part of the path above.
     *
     * So "/opt/apps/org.example.reader/files/reader" gives "org.example.reader", and "/usr/bin/reader"
     * gives "bin".
     *
     * @return the name in UTF-8; "." for an executable at the top of the file system and where
     * /proc can't be read
     *
     * @warning Any directory with these letters in a row makes the step up, as "profiles" does: an
     * executable in "/home/user/profiles" gives "user".
     */
    static std::string GetBundleIdentifier();

    /**
     * The machine's identifier: what QSysInfo::machineUniqueId() gives, else what getMachineId() gives.
     *
     * @return the identifier in UTF-8, 32 hexadecimal digits as a rule; empty on a machine without one
     *
     * @warning It tells this machine from all others. Don't send it anywhere: send
     * CSystemUtils::GetPCID(), from which it can't be had back.
     */
    static std::string GetSystemUDID();

    /**
     * Whether the user's desktop is in a dark theme.
     *
     * Desktops keep that in different places, so these are asked in turn, on every desktop alike; the
     * first that knows decides:
     *
     * 1. GNOME: the settings "gtk-theme" and "color-scheme" of org.gnome.desktop.interface
     * 2. KDE: "General/ColorScheme" in kdeglobals, "Theme/name" in plasmarc
     * 3. GTK: "Settings/gtk-theme-name" in gtk-3.0/settings.ini, then in gtk-4.0/settings.ini
     * 4. the environment variables GTK_THEME, QT_STYLE_OVERRIDE and DESKTOP_SESSION
     * 5. UKUI: the settings "style-name" and "theme-mode" of org.ukui.style, and "theme" of
     *    org.ukui.control-center.personalise
     * 6. Kylin: the keys "theme", "style", "mode", "appearance" and "theme-mode" in
     *    ukui/ukui-style.conf, kylin/theme.conf and ukui-style-settings/style.conf
     * 7. MATE: the setting "gtk-theme" of org.mate.interface
     * 8. Qt on Kylin: "style" in QtProject.conf, "Appearance/style" in kylin-qt5/qt5ct.conf
     *
     * Settings are read by the tool gsettings, files in the user's configuration directory. A name
     * tells by the letters of "dark" or "light" anywhere in it, in any case, and dark wins where it has
     * both. What decided, and the values read for 5, 6 and 7, go to qDebug().
     *
     * @return true for dark; false for light and where nothing knows
     *
     * @warning Blocks the caller for up to eight child processes: some ten milliseconds each as a rule,
     * 30 seconds each and 240 in all where they hang. One that hangs counts for what it has printed so
     * far, and is ended. Nothing is remembered: call it from a thread of your own and keep the answer.
     * @code
     * auto *watcher = new QFutureWatcher<bool>(this);
     * connect(watcher, &QFutureWatcher<bool>::finished, this, [=] { setDark(watcher->result()); });
     * watcher->setFuture(QtConcurrent::run(&ZyBase::CSystemUtils::IsDarkTheme));
     * @endcode
     * Qt waits for its threads when the application ends, and so for a tool that hangs. The guide's page on
     * watching the theme asks in a thread that nobody waits for.
     *
     * @warning What a former desktop left behind counts: a GNOME setting wins over KDE's own on a KDE
     * session. KDE writes its scheme to a section [General] of kdeglobals, which QSettings does not
     * give under the key above; there it is plasmarc that tells.
     */
    static bool IsDarkTheme();

    /**
     * Whether @p strApp opens files of the type @p strMimeType by default, as the tool xdg-mime tells.
     *
     * @param strApp the application's desktop entry, such as "org.example.reader" or
     * "org.example.reader.desktop", in its exact case
     * @param strMimeType such as "application/pdf"
     * @return true when the name of the default's entry contains @p strApp; false when it doesn't and
     * when xdg-mime can't tell or is not installed
     *
     * @warning A part of the name is enough, so "read" is true as well, and an empty @p strApp is true
     * always.
     *
     * @warning Blocks the caller until xdg-mime ends, a tenth of a second as a rule and 30 seconds
     * at most.
     */
    static bool IsDefaultLauncher(const QString &strApp, const QString &strMimeType);

    /**
     * Has xdg-mime make @p strApp the application that opens files of the type @p strMimeType for this
     * user.
     *
     * @param strApp the application's desktop entry without the suffix ".desktop", which is always
     * appended: "org.example.reader"
     * @param strMimeType as for IsDefaultLauncher()
     * @param strUnread not read
     * @param bUnread not read
     * @return true always, also when nothing was changed; see IsDefaultLauncher() for what holds after it
     *
     * @warning Unlike IsDefaultLauncher() it takes no name with the suffix: "a.desktop" sets the entry
     * "a.desktop.desktop".
     *
     * @warning Blocks the caller until xdg-mime ends, a tenth of a second as a rule and 30 seconds
     * at most.
     */
    static bool SetDefaultLauncher(const QString &strApp, const QString &strMimeType,
                                   const QString &strUnread, bool bUnread);

    /**
     * Does nothing: there is no former default to go back to.
     *
     * @param strApp,strMimeType not looked at
     * @return true always
     */
    static bool ResetDefaultLauncher(const QString &strApp, const QString &strMimeType);
};

/**
 * What GNOME's settings alone say, the first of the places that COperateSystem::IsDarkTheme() asks.
 * Nothing is logged.
 *
 * @return 1 for dark, 0 for light, 2 where they don't tell or gsettings is not installed
 *
 * **Threads.** As for COperateSystem. **Blocking.** Up to three child processes, 90 seconds where they
 * hang.
 */
ZYBASE_EXPORT int getGnomeTheme();

/**
 * The content of /etc/machine-id without the white space around it, read in the encoding of the locale.
 *
 * @return the content, 32 hexadecimal digits as a rule; a null text where the file can't be opened
 *
 * **Threads.** Any. **Blocking.** For the time of reading one small file.
 */
ZYBASE_EXPORT QString getMachineId();

/**
 * The hardware address of the first network interface that is up, has one, and is neither the loopback
 * nor a point-to-point link, such as "52:54:00:12:34:56".
 *
 * @return the address; a null text where there is no such interface
 *
 * @warning First means first in the order of QNetworkInterface::allInterfaces(): a bridge or a virtual
 * machine's interface counts as well as a card, plugged in or not, and an address of zeros is one. The
 * result may change with each interface that comes or goes.
 *
 * **Threads.** Any. **Blocking.** For the time of asking the kernel.
 */
ZYBASE_EXPORT QString getMainMacAddress();

} // namespace ZyBase
