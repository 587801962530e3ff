// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QImage>
#include <QSize>
#include <QString>
#include <QVariant>

#include <array>

/**
 * @file
 * Declares ZyBase::CSystemUtils and the function ZyBase::ReadRegeditValue().
 */

namespace ZyBase {

/**
 * Information about the machine and the desktop session, and the identity of this installation.
 *
 * Use it for a statistics identifier, the check for a first run, the name of the distribution, the theme of
 * the desktop, and QR codes.
 *
 * The interface is shared with other platforms. On Linux, several functions do nothing or return a fixed
 * value; their descriptions say so.
 *
 * A host application (the application that loads the library) reads its identity once, at its start:
 * @code
 * const QString prefix = QStringLiteral("example/");   // ends with a slash: a directory of its own
 * const QString name = QStringLiteral("reader");       // ~/.config/example/reader/device.conf
 * const bool firstRun = ZyBase::CSystemUtils::IsNewUser(prefix, name);
 * const QString machine = ZyBase::CSystemUtils::GetPCID(prefix, name);
 * @endcode
 *
 * **Threads.** All functions are thread-safe, from the first call on, except EnableHighDPISupport(). No
 * thread may change the environment of the process during a call. All functions except IsDarkTheme() may be
 * called from the GUI thread. GetPCID() and IsNewUser() can block for seconds if another process writes their
 * file.
 *
 * **Blocking.** The functions block for the time of reading one small file at most, except GetPCID(),
 * IsNewUser(), IsDarkTheme() and GenerateQRCode(). No function runs an event loop.
 *
 * **Failures.** Failures are reported only by the return value. Functions that return void report none. No
 * function throws an exception.
 *
 * **Lifetime.** All functions are static. Do not create objects of this class. No result is cached.
 *
 * @see COperateSystem, CAssocUtils
 * @since 0.1.0
 */
class ZYBASE_EXPORT CSystemUtils
{
public:
    /**
     * Returns the MD5 digest of a string, encoded as UTF-8.
     *
     * The time grows with the length of the string. No file is read.
     *
     * @param strText the string; a null string is treated as empty
     * @return the digest as 32 lower-case hexadecimal digits, never empty; "d41d8cd98f00b204e9800998ecf8427e"
     * for an empty string
     *
     * @warning MD5 is not secure. Do not use it for passwords or signatures. Use QCryptographicHash::Sha256
     * or a cryptographic library instead.
     */
    static QString GetStringMd5(const QString &strText);

    /**
     * Returns an identifier of this machine for statistics, and stores it.
     *
     * The identifier is the key "PCID" of the file "device.conf". The path of the file is
     * QStandardPaths::GenericConfigLocation, usually ~/.config, followed by "/", @p dirPrefix, @p dirName and
     * "/device.conf".
     *
     * A stored identifier is returned unchanged, even if the hardware has changed since. Otherwise a new one
     * is stored: the MD5 digest of the first of these strings that is not empty:
     *
     * 1. COperateSystem::GetSystemUDID()
     * 2. getMainMacAddress()
     * 3. the current time, followed by a random number
     *
     * If the file cannot be read or written, the call still returns an identifier and reports no error. The
     * identifier is then the same at each call, except one made from the time, which is new each time.
     *
     * @param dirPrefix first part of the directory, relative to the configuration directory
     * @param dirName second part of the directory, appended to the first without a separator
     * @return 32 lower-case hexadecimal digits, or the stored string in any form; never empty
     *
     * **Threads.** This function is thread-safe. Concurrent first calls write the same value. If it is made
     * from the time, the last write wins, and the other callers have a value that is not the stored one.
     *
     * **Blocking.** Reads one small file. The first call also writes it, and waits while another process
     * holds the lock file "device.conf.lock": up to about 32 seconds, after which Qt ignores the lock. A lock
     * file that cannot be deleted counts as held, and so does an empty one, which a process leaves that is
     * killed while it creates the file. To keep the window responsive, make the first call in another thread.
     *
     * @warning No separator is inserted between the arguments: "example" and "reader" are the directory
     * "examplereader". For two directory levels, end @p dirPrefix with a slash.
     *
     * @warning Two applications with the same arguments share the identifier and the mark of IsNewUser(). Use
     * arguments that contain the name of your application.
     *
     * @warning The file is not a safe store. If reading it fails once, a new identifier replaces the stored
     * one and the other keys of the file can be lost. If the disk is full, the file can be left empty. Do not
     * store keys of your own in this file, and do not use the identifier as the only reference to user data.
     *
     * @warning All users of a machine, all applications and all copies of a disk image derive the same
     * identifier. Do not use it to identify a person.
     *
     * @see IsNewUser()
     */
    static QString GetPCID(const QString &dirPrefix, const QString &dirName);

    /**
     * Returns a random integer in the range [nMin, nMax).
     *
     * The generator is QRandomGenerator::global(). The function never blocks and cannot fail.
     *
     * @param nMin the lowest possible result
     * @param nMax one more than the highest possible result
     * @return the integer; @p nMin if both arguments are equal
     *
     * @warning The arguments are not checked. If @p nMax is less than @p nMin, the result is nearly any int.
     * Pass the lower number first.
     *
     * @warning Do not use the result for passwords, tokens or keys. Use QRandomGenerator::system() for them.
     */
    static int GetRandomNum(int nMin, int nMax);

    /**
     * Returns true on the first call for this directory and records it.
     *
     * The call stores the key "NewUser" in the file "device.conf" that GetPCID() uses. Later calls, also in
     * later runs of the application, return false.
     *
     * @param dirPrefix first part of the directory, as for GetPCID()
     * @param dirName second part of the directory, as for GetPCID()
     * @return true if the file has no key "NewUser" or cannot be read; false if it has the key with any
     * value, also "false"
     *
     * **Threads.** This function is thread-safe. Concurrent first calls of two threads or processes can all
     * return true.
     *
     * **Blocking.** As GetPCID(): the first call can wait for "device.conf.lock", up to about 32 seconds.
     *
     * @warning If the file cannot be written, every call returns true. Call the function once in each run and
     * keep the result.
     *
     * @see GetPCID()
     */
    static bool IsNewUser(const QString &dirPrefix, const QString &dirName);

    /**
     * Returns three zeros. No monitor is queried.
     *
     * @return {0, 0, 0}; use QScreen::logicalDotsPerInch() for the real values
     */
    static std::array<quint64, 3> GetDpiFromMonitors();

    /**
     * Enables Qt's scaling for high-density screens and high-density pixmaps, for the whole application.
     *
     * Sets Qt::AA_EnableHighDpiScaling and Qt::AA_UseHighDpiPixmaps.
     *
     * @param bEnable not used
     *
     * **Threads.** Not thread-safe. Call it only from the main thread, before the application object is
     * created; later calls do not enable the scaling, and Qt logs a warning.
     *
     * @warning The value @c false enables both attributes too. To leave them disabled, do not call this
     * function.
     */
    static void EnableHighDPISupport(bool bEnable);

    /**
     * Returns true. The system is not queried.
     *
     * @return always true, also on a 32-bit system; use QSysInfo::WordSize for the size of this build
     */
    static bool IsOn64BitSystem();

    /**
     * Returns the name and version of the operating system, for display.
     *
     * @return the string of QSysInfo::prettyProductName(), for example "Debian GNU/Linux 12 (bookworm)"; if
     * the distribution is not known, what Qt returns instead, usually the name of the kernel
     */
    static QString GetSystemVersion();

    /**
     * Returns an empty string. Nothing is encrypted.
     *
     * @param strText not used
     * @param strPublicKey not used
     * @return always an empty, not null string
     *
     * @warning Do not use this function for encryption. Use a cryptographic library instead.
     */
    static QString RsaPublicEncrypt(const QString &strText, const QString &strPublicKey);

    /**
     * Returns an empty string. Nothing is decrypted.
     *
     * @param strText not used
     * @param strPrivateKey not used
     * @return always an empty, not null string
     *
     * @warning Do not use this function for decryption. Use a cryptographic library instead.
     */
    static QString RsaPrivateDecrypt(const QString &strText, const QString &strPrivateKey);

    /** Does nothing. The machine is not suspended. */
    static void SleepComputer();

    /** Does nothing. The machine is not shut down. */
    static void ShutdownComputer();

    /**
     * Does nothing. The session starts the same applications as before.
     *
     * @param bAutoStart not used
     */
    static void SetSelfAutoStart(bool bAutoStart);

    /**
     * Does nothing. The session starts the same applications as before.
     *
     * @param strApp not used
     * @param bAutoStart not used
     */
    static void SetAppAutoStart(const QString &strApp, bool bAutoStart);

    /**
     * Returns true if the user's desktop has a dark theme.
     *
     * Calls COperateSystem::IsDarkTheme(), which describes the order of the settings.
     *
     * @return true for a dark theme; false for a light one, and if no setting decides
     *
     * **Threads.** This function is thread-safe. It should not be called from the GUI thread.
     *
     * **Blocking.** Runs up to eight tools: usually about 10 milliseconds each, at most 240 seconds in all.
     *
     * @warning In the GUI thread, a tool that hangs blocks the window. Call the function in another thread:
     * see @ref guide-blocking-calls-and-the-interface "docs/guide/blocking-calls-and-the-interface.md". To
     * follow changes of the theme, see
     * @ref guide-watching-the-theme "docs/guide/watching-the-theme.md".
     */
    static bool IsDarkTheme();

    /**
     * Returns the name of the package that the running executable belongs to.
     *
     * The result is COperateSystem::GetBundleIdentifier() as a QString. Nothing is logged.
     *
     * @return the name of the executable's directory; if that name contains "files" in any case, the name of
     * the parent directory; "." if the executable is in the root directory or its path cannot be read
     *
     * @warning Every directory whose name contains "files" is skipped, for example "profiles". Install the
     * executable in "<package>/files", or check the result.
     */
    static QString GetBundleIdentifier();

    /**
     * Returns the name of the distribution, for example "Ubuntu" or "Kylin".
     *
     * The name is the value of the first line of /etc/os-release that starts with "NAME=", without its double
     * quotes. The file is read in the encoding of the locale.
     *
     * @return the name; an empty string if the line has no value; "Unknown" if there is no such line or the
     * file cannot be read
     */
    static QString GetLinuxOsInfo();

    /**
     * Returns true if the distribution is Kylin.
     *
     * @return true if GetLinuxOsInfo() contains "Kylin" in any case; false otherwise, and if /etc/os-release
     * cannot be read
     */
    static bool IsKylinOs();

    /**
     * Returns true if the distribution is UOS.
     *
     * @return true if GetLinuxOsInfo() contains "UnionTech" or "UOS" in any case; false otherwise, and if
     * /etc/os-release cannot be read
     *
     * @warning Every name that contains "uos" matches, for example "Virtuoso Linux". To be
     * certain, compare GetLinuxOsInfo() with the full name.
     */
    static bool IsUOS();

    /**
     * Returns true. The system is not queried.
     *
     * @return always true, also on Linux
     *
     * @warning Do not use the result to distinguish systems. Use Q_OS_WIN at compile time.
     */
    static bool IsWindows11OrGreater();

    /**
     * Returns the architecture of the processor.
     *
     * @return the string of QSysInfo::currentCpuArchitecture(), for example "x86_64"; if the system does not
     * report one, the architecture that Qt was built for
     */
    static QString GetHardwareCpuArchitecture();

    /**
     * Returns a string as a QR code: black on opaque white, with error correction level Q.
     *
     * @param strText the string, encoded as UTF-8 up to its first NUL character; at most 1663 bytes, or more
     * if it has only digits or only upper-case letters
     * @param size size in pixels; the image is a square with the smaller of both sides
     * @return an image in QImage::Format_ARGB32, or a null image if
     * - the string is empty, or a side of @p size is 0, negative or too large for an image: nothing
     *   is logged;
     * - the string is too long or starts with a NUL character: the value of errno is logged with
     *   qInfo(), usually 34 (ERANGE) or 22 (EINVAL).
     *
     * **Threads.** This function is thread-safe. It needs no application object.
     *
     * **Blocking.** Uses the processor for less than a millisecond for a short string and some milliseconds
     * for a long one. Large images take longer.
     *
     * @warning The symbol has no margin. Scanners need a white margin that is four modules wide: draw the
     * image on a white background.
     *
     * @warning If the side is not a multiple of the symbol's width, the modules have different sizes. The
     * width is 25 modules for a short string and up to 177 for a long one. Use at least three pixels for each
     * module, and do not scale the image afterwards.
     *
     * @warning Each call leaks between 625 bytes and 31 kilobytes. If you show the same code again, keep the
     * image.
     */
    static QImage GenerateQRCode(const QString &strText, const QSize &size);
};

/**
 * Returns the value of a key of a settings file.
 *
 * The file is read as QSettings::NativeFormat, which is an ini file on Linux. It is not changed.
 *
 * @param strPath path of the file
 * @param strKey the key; for a section other than [General] with the section: "window/width"
 * @return the value, usually a QString, or a QStringList if it contains commas; an invalid QVariant if the
 * file or the key does not exist, or the file cannot be read
 *
 * **Threads.** This function is thread-safe and may be called from the GUI thread. **Blocking.** Blocks while
 * the file is read; it does not wait for a lock file.
 *
 * @warning The value of an ini file has no type: a number or "true" is returned as a QString. Convert it, for
 * example with QVariant::toInt().
 *
 * @since 0.1.0
 */
ZYBASE_EXPORT QVariant ReadRegeditValue(const QString &strPath, const QString &strKey);

} // namespace ZyBase
