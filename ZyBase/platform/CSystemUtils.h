// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QString>

#include <array>

namespace ZyBase {

/**
 * What a host asks of the machine that it runs on.
 *
 * The class speaks for more platforms than this one. On Linux a good part of it has no work to do:
 * such a function says so below and gives the same result on every machine.
 *
 * Nothing is kept between calls, and no failure is reported but by the result.
 *
 * **Threads.** Any, unless a function says otherwise.
 *
 * **Blocking.** For the time of reading one small file at most, unless a function says otherwise.
 */
class ZYBASE_EXPORT CSystemUtils
{
public:
    /** Three zeros; no monitor is asked. QScreen::logicalDotsPerInch() has the real ones. */
    static std::array<quint64, 3> GetDpiFromMonitors();

    /**
     * Switches on Qt's scaling for screens of high density and its pixmaps of high density, for the
     * whole application. To be called from the main thread before the application object is made.
     *
     * @warning The argument is not read: @c false switches them on as well. To leave them off, don't
     * call it.
     */
    static void EnableHighDPISupport(bool bEnable);

    /** @return true on every machine. QSysInfo::WordSize says what this process was built for. */
    static bool IsOn64BitSystem();

    /** Name and version of the system as a user knows them, such as "Debian GNU/Linux 12 (bookworm)". */
    static QString GetSystemVersion();

    /**
     * @return an empty text, whatever the arguments are
     * @warning Nothing is encrypted. A host that needs it calls a library for cryptography.
     */
    static QString RsaPublicEncrypt(const QString &strText, const QString &strPublicKey);

    /**
     * @return an empty text, whatever the arguments are
     * @warning Nothing is decrypted. A host that needs it calls a library for cryptography.
     */
    static QString RsaPrivateDecrypt(const QString &strText, const QString &strPrivateKey);

    /** Does nothing: the machine stays awake. */
    static void SleepComputer();

    /** Does nothing: the machine keeps running. */
    static void ShutdownComputer();

    /** Does nothing: the session starts what it started before. */
    static void SetSelfAutoStart(bool bAutoStart);

    /** Does nothing: the session starts what it started before. */
    static void SetAppAutoStart(const QString &strApp, bool bAutoStart);

    /**
     * Whether the user's desktop is in a dark theme, as COperateSystem::IsDarkTheme() tells it.
     *
     * @warning Blocks the caller for up to eight child processes, 240 seconds where they hang.
     */
    static bool IsDarkTheme();

    /** What COperateSystem::GetBundleIdentifier() gives. */
    static QString GetBundleIdentifier();

    /**
     * The distribution's name: the value of the first line of /etc/os-release that begins with "NAME=",
     * such as "Ubuntu" or "Kylin", without its double quotes. Read in the encoding of the locale.
     *
     * @return the name; an empty text where the line has no value; "Unknown" where there is no such line
     * or the file can't be read
     */
    static QString GetLinuxOsInfo();

    /** Whether GetLinuxOsInfo() holds "Kylin", in any case. */
    static bool IsKylinOs();

    /**
     * Whether GetLinuxOsInfo() holds "UnionTech" or "UOS", in any case.
     *
     * @warning Any name with these three letters in a row counts, as "Virtuoso Linux" does.
     */
    static bool IsUOS();

    /**
     * @return true on every machine, on Linux too
     * @warning It tells no system from another. Q_OS_WIN does when the host is compiled.
     */
    static bool IsWindows11OrGreater();

    /** The processor's architecture as QSysInfo::currentCpuArchitecture() names it, such as "x86_64". */
    static QString GetHardwareCpuArchitecture();
};

} // namespace ZyBase
