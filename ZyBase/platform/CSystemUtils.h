// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QImage>
#include <QSize>
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
    /**
     * The MD5 digest of the text's UTF-8 bytes as 32 lower-case hexadecimal digits. A null text has
     * the digest of an empty one, "d41d8cd98f00b204e9800998ecf8427e".
     *
     * @warning MD5 tells texts apart, it protects nothing: never keep a password in this form.
     */
    static QString GetStringMd5(const QString &strText);

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

    /**
     * The text as a QR code: black on opaque white, with error correction of level Q.
     *
     * @param strText encoded as UTF-8; what fits is 1663 bytes, and more where it is all digits or
     * capitals
     * @param size in pixels; the image is a square of the smaller of its two sides
     * @return an image in QImage::Format_ARGB32; a null one when the text is empty, when it is too long,
     * of which the value of errno in a line to qInfo() is the only word, and when a side of the size is 0
     * or negative
     *
     * @warning The symbol reaches from edge to edge. Scanners want a white margin four modules wide:
     * draw the image onto a white ground.
     *
     * @warning Modules have unequal numbers of pixels unless the side is a multiple of the symbol's
     * width, which is 25 modules for a short text and 177 for the longest. Below three pixels a
     * module a symbol can hardly be read. Ask for some hundred pixels, and let no later scaling blur
     * them.
     *
     * @warning Each image leaves the symbol's modules allocated for good, between 625 bytes and 31
     * kilobytes. Keep an image that is shown again.
     */
    static QImage GenerateQRCode(const QString &strText, const QSize &size);
};

} // namespace ZyBase
