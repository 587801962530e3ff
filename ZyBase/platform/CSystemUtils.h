// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QImage>
#include <QSize>
#include <QString>
#include <QVariant>

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
 * **Blocking.** For the time of reading or writing one small file at most, unless a function says otherwise.
 *
 * The identity of the installation, once at the host's start:
 * @code
 * const QString prefix = QStringLiteral("example/");   // the slash is the host's
 * const QString name = QStringLiteral("reader");       // ~/.config/example/reader/device.conf
 * const bool firstRun = ZyBase::CSystemUtils::IsNewUser(prefix, name);
 * const QString machine = ZyBase::CSystemUtils::GetPCID(prefix, name);
 * @endcode
 */
class ZYBASE_EXPORT CSystemUtils
{
public:
    /**
     * The MD5 digest of the text's UTF-8 bytes.
     *
     * @param strText a null one has the digest of an empty one, "d41d8cd98f00b204e9800998ecf8427e"
     * @return 32 lower-case hexadecimal digits
     *
     * @warning MD5 tells texts apart, it protects nothing: never keep a password in this form.
     */
    static QString GetStringMd5(const QString &strText);

    /**
     * An identifier of this machine for statistics that outlives restarts: the key "PCID" of the file
     * device.conf in the directory that the two arguments name below the user's general configuration
     * directory, ~/.config as a rule.
     *
     * Where the file has none yet, it is made and stored: the digest of what
     * COperateSystem::GetSystemUDID() gives, of getMainMacAddress() where that is empty, and of the
     * time with a random number where both are. What is stored is returned as it stands, whatever
     * became of the machine and whatever the text looks like; nothing is written then.
     *
     * @param dirPrefix what the directory's path below the configuration directory begins with
     * @param dirName what follows straight behind it
     * @return 32 lower-case hexadecimal digits, or what else was stored; never empty
     *
     * @warning No separator is put between the arguments: "example" and "reader" are the directory
     * "examplereader". Give the prefix a slash of its own for two levels.
     *
     * @warning Where the file can't be written nothing tells so. The identifier is the same at each
     * call all the same, except one made from the time, which is a new one each time.
     *
     * @warning All hosts on a machine derive the same value, other users' too, and so does a copy of
     * the machine's disk image.
     *
     * **Threads.** Any. First calls at the same time write the same value; where it is made from the
     * time the last one stays, and another caller holds a value that is not the stored one.
     */
    static QString GetPCID(const QString &dirPrefix, const QString &dirName);

    /**
     * A random number from Qt's process-wide generator.
     *
     * @param nMin the lowest
     * @param nMax one above the highest
     * @return the number; @p nMin for equal arguments
     *
     * @warning The arguments are not put in order: a maximum below the minimum gives nearly any int.
     * @warning Not for secrets: take QRandomGenerator::system() for these.
     */
    static int GetRandomNum(int nMin, int nMax);

    /**
     * Whether this is the first call for the directory. The call itself makes the next one answer false: it
     * sets the key "NewUser" of the file that GetPCID() tells of.
     *
     * @param dirPrefix,dirName as for GetPCID()
     * @return true for the first call; false once the key is there, whatever its value is, so a stored
     * "false" is no new user either
     *
     * @warning Ask once a run and keep the answer. Where the file can't be written the answer is true
     * each time, and two processes that ask first at the same time may both hear true.
     */
    static bool IsNewUser(const QString &dirPrefix, const QString &dirName);

    /** No monitor is asked: QScreen::logicalDotsPerInch() has the real numbers. @return three zeros */
    static std::array<quint64, 3> GetDpiFromMonitors();

    /**
     * Switches on Qt's scaling for screens of high density and its pixmaps of high density, for the
     * whole application. To be called from the main thread before the application object is made.
     *
     * @param bEnable not read
     *
     * @warning A @c false switches them on as well. To leave them off, don't call it.
     */
    static void EnableHighDPISupport(bool bEnable);

    /** No system is asked: QSysInfo::WordSize says what this process was built for. @return true always */
    static bool IsOn64BitSystem();

    /**
     * Name and version of the system as a user knows them: what QSysInfo::prettyProductName() gives.
     *
     * @return such as "Debian GNU/Linux 12 (bookworm)"
     */
    static QString GetSystemVersion();

    /**
     * Encrypts nothing. A host that needs it calls a library for cryptography.
     *
     * @param strText,strPublicKey not read
     * @return an empty text, not null, always
     */
    static QString RsaPublicEncrypt(const QString &strText, const QString &strPublicKey);

    /**
     * Decrypts nothing. A host that needs it calls a library for cryptography.
     *
     * @param strText,strPrivateKey not read
     * @return an empty text, not null, always
     */
    static QString RsaPrivateDecrypt(const QString &strText, const QString &strPrivateKey);

    /** Does nothing: the machine stays awake. */
    static void SleepComputer();

    /** Does nothing: the machine keeps running. */
    static void ShutdownComputer();

    /** Does nothing: the session starts what it started before. @param bAutoStart not read */
    static void SetSelfAutoStart(bool bAutoStart);

    /** Does nothing: the session starts what it started before. @param strApp,bAutoStart not read */
    static void SetAppAutoStart(const QString &strApp, bool bAutoStart);

    /**
     * Whether the user's desktop is in a dark theme, as COperateSystem::IsDarkTheme() tells it.
     *
     * @return true for dark; false for light and where nothing knows
     *
     * @warning Blocks the caller for up to eight child processes, 240 seconds where they hang.
     */
    static bool IsDarkTheme();

    /** What COperateSystem::GetBundleIdentifier() gives. @return the name, as there */
    static QString GetBundleIdentifier();

    /**
     * The distribution's name: the value of the first line of /etc/os-release that begins with "NAME=",
     * such as "Ubuntu" or "Kylin", without its double quotes. Read in the encoding of the locale.
     *
     * @return the name; an empty text where the line has no value; "Unknown" where there is no such line
     * or the file can't be read
     */
    static QString GetLinuxOsInfo();

    /** Whether this is a Kylin. @return whether GetLinuxOsInfo() holds "Kylin", in any case */
    static bool IsKylinOs();

    /**
     * Whether this is a UOS.
     *
     * @return whether GetLinuxOsInfo() holds "UnionTech" or "UOS", in any case
     *
     * @warning Any name with these three letters in a row counts, as "Virtuoso Linux" does.
     */
    static bool IsUOS();

    /**
     * Tells no system from another: Q_OS_WIN does when the host is compiled.
     *
     * @return true on every machine, on Linux too
     */
    static bool IsWindows11OrGreater();

    /**
     * The processor's architecture as QSysInfo::currentCpuArchitecture() names it.
     *
     * @return such as "x86_64"
     */
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

/**
 * The value of a key in a settings file of QSettings' native form, an ini file here.
 *
 * @param strPath the file
 * @param strKey the key, with its section in front where it isn't in [General]: "window/width"
 * @return the value, a text or a list of texts as a rule; an invalid QVariant where the file or the key
 * is lacking or the file can't be read
 *
 * **Threads.** Any. **Blocking.** For the time of reading the file.
 */
ZYBASE_EXPORT QVariant ReadRegeditValue(const QString &strPath, const QString &strKey);

} // namespace ZyBase
