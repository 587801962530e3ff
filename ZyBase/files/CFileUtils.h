// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QByteArray>
#include <QString>

#include <string>

/**
 * @file
 * ZyBase::CFileUtils, and beside it GetAppDirPath(), GetAppFilePath() and getBigFileMd5().
 */

/**
 * The directory of the running executable as the kernel's bytes.
 *
 * @return the path without a "/" at its end; empty for an executable in the root directory, and when
 * the path can't be read
 *
 * **Threads.** Any. **Blocking.** Never.
 */
ZYBASE_EXPORT std::string GetAppDirPath();

/**
 * The path of the running executable as the kernel's bytes, every symbolic link resolved.
 *
 * Read anew at each call. An executable that was replaced or deleted while it runs, as by an update,
 * has " (deleted)" behind its name.
 *
 * @return the path; empty when it can't be read: without /proc, or for a path of more than 4095 bytes,
 * which the kernel won't tell
 *
 * **Threads.** Any. **Blocking.** Never.
 */
ZYBASE_EXPORT std::string GetAppFilePath();

/**
 * The MD5 of a file of any size, in 4096 bytes of memory.
 *
 * @param strFilePath the file
 * @return the 16 bytes of the digest, not hexadecimal (toHex() gives what CFileUtils::GetFileMd5()
 * does); null when the file can't be opened
 *
 * @warning Never returns when the file gets shorter while it is read, or a read fails: it goes on
 * trying, at full load, until the file has its length again. For files that others write to, hash
 * with QCryptographicHash::addData(QIODevice *). A file that has no size, as those in /proc, gives
 * the digest of nothing.
 *
 * **Threads.** Any.
 *
 * **Blocking.** For the time of reading the whole file.
 */
ZYBASE_EXPORT QByteArray getBigFileMd5(QString strFilePath);

namespace ZyBase {

/**
 * Files by their path, and the texts that a host's dialogs and lists show of them.
 *
 * All functions are static and keep nothing between calls but what FormatOpenTime() and
 * getLeftSpace() say. None throws, and none is translated. A failure is a value of the result, and
 * where there is none to tell it, nobody is told. Relative paths are taken from the current directory
 * of the process.
 *
 * **Threads.** Any. Nothing is replaced in one go: a reader beside WriteFileData() or CopyFileHandle()
 * may meet a file that is cut short or missing.
 *
 * **Blocking.** For the time of what the file system has to do.
 */
class ZYBASE_EXPORT CFileUtils
{
public:
    /** @name The running executable
     *
     * As GetAppFilePath() and GetAppDirPath() tell it, decoded as UTF-8, with every backslash turned
     * into "/".
     *
     * @warning A backslash is a character like another in a Linux name. Where one stands in the path of
     * the executable these paths lead nowhere, and GetAppFilePath() and GetAppDirPath() have the true
     * one.
     */
    ///@{

    /** The executable. @return its path; empty when that can't be read */
    static QString GetApplicationFilePath();

    /** Its directory. @return the path; empty for the root directory and when the path can't be read */
    static QString GetApplicationDirPath();

    /** The directory "res" beside it, existing or not. @return its path; "/res" when that can't be read */
    static QString GetResDirPath();

    /** There is none on Linux. @return always empty, not null */
    static QString GetMacResourcesDirPath();

    ///@}

    /** @name Content of files */
    ///@{

    /**
     * The MD5 of a file. The whole file is held in memory, and one of 2 GiB or more reads as empty; for
     * large ones there is getBigFileMd5(), whose result has another form.
     *
     * @param strFilePath the file
     * @return 32 lower-case hexadecimal digits
     *
     * @warning A file that can't be opened is not told from an empty one: both give
     * "d41d8cd98f00b204e9800998ecf8427e". Qt writes a warning of its own then.
     */
    static QString GetFileMd5(const QString &strFilePath);

    /**
     * A text file as a whole, decoded as UTF-8, line endings as they are. It ends at the first NUL
     * byte; a byte order mark at its start is dropped, and what is no UTF-8 becomes U+FFFD.
     *
     * @param strFilePath the file
     * @return the text; null for a file of zero bytes; empty, not null, when it can't be opened
     */
    static QString ReadFileData(const QString &strFilePath);

    /**
     * Writes the text as UTF-8 in place of what the file held; a missing file is made, a missing
     * directory is not. No byte order mark, line endings as they are.
     *
     * @param strFilePath the file
     * @param strData its new text
     *
     * @warning Nothing is reported, and the old content is gone before the new is written: after a
     * crash or on a full disk the file is cut short. Where that matters:
     * @code
     * const QByteArray bytes = text.toUtf8();
     * QSaveFile file(path);
     * const bool saved = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()
     *     && file.flush() && file.commit(); // commit() alone takes a full disk for a success
     * @endcode
     */
    static void WriteFileData(const QString &strFilePath, const QString &strData);

    /**
     * The data with every byte XORed with the key; the same call undoes it. This hides data from a
     * glance and protects nothing.
     *
     * @param data any bytes
     * @param cKey 0 leaves them as they are
     * @return as many bytes; null for null data
     */
    static QByteArray getEncryptDecryptByte(const QByteArray &data, const char &cKey);

    /**
     * The size of a file as text.
     *
     * @param strFilePath the file
     * @return what FormatFileSize() gives; empty, not null, when nothing exists at the path
     */
    static QString GetFileSize(const QString &strFilePath);

    /**
     * Files carry no version on Linux.
     *
     * @param strFilePath not looked at
     * @param strVersion left as it came
     * @return always true
     */
    static bool GetFileVersion(const QString &strFilePath, std::string &strVersion);

    ///@}

    /** @name Files and directories */
    ///@{

    /**
     * Copies a file with its permissions.
     *
     * @param strSourcePath the file
     * @param strTargetPath the path of the copy, not of the directory that it goes to
     * @param bOverwrite false: an existing target is kept and the result is false. True: it is removed
     *                   first.
     * @return whether the copy was made
     *
     * @warning With true the target is gone when the copy then fails, also for want of a source. A file
     * copied onto itself is lost so: see IsTheSameFile().
     */
    static bool CopyFileHandle(const QString &strSourcePath, const QString &strTargetPath, bool bOverwrite);

    /**
     * Gives the owner write permission when the user of this process lacks it. Failures are not
     * reported.
     *
     * @param strFilePath the file
     * @param bWritable not looked at: false takes no permission away
     */
    static void SetFileWritable(const QString &strFilePath, bool bWritable);

    /**
     * Sets the permissions to rwxr-xr-x, whatever they were: group and others gain reading and
     * executing even of a file that was private.
     *
     * @param strFilePath the file
     * @return whether they were set
     */
    static bool SetFileExecutable(const QString &strFilePath);

    /**
     * Whether two paths lead to the same place, symbolic links resolved. Two hard links to one file are
     * two places.
     *
     * @param strFirstPath,strSecondPath the paths
     * @return whether they do; false when either doesn't exist
     */
    static bool IsTheSameFile(const QString &strFirstPath, const QString &strSecondPath);

    /**
     * Makes a directory with those above it.
     *
     * @param strDirPath the directory
     * @return true when it was made and when something stood there already, be it a plain file; false
     * for an empty path, where Qt writes warnings of its own
     */
    static bool MakeDirPath(const QString &strDirPath);

    /**
     * Removes a directory and all that it holds. Symbolic links in it are removed, not followed; one
     * given as the path is: the directory behind it is emptied and the link stays.
     *
     * @param strDirPath the directory
     * @return whether it was removed; false when it doesn't exist and when something in it couldn't be
     * removed; what could be is gone then
     *
     * @warning An empty path means the current directory of the process, which is removed with all it
     * holds. Look that a path is not empty before the call.
     */
    static bool DeleteDirPath(const QString &strDirPath);

    /**
     * Whether a file can be made in a folder, found out by making one and removing it again.
     *
     * @param strFolderPath the folder, with a "/" at its end
     * @return whether one could be made
     *
     * @warning Give the folder with a "/" at its end. Without, the answer is about the folder that it
     * lies in, also when the folder itself doesn't exist.
     */
    static bool isFolderWritable(const QString &strFolderPath);

    /**
     * The free space of the root file system.
     *
     * @param strPath not looked at. For the disk of a path: QStorageInfo(path).bytesAvailable().
     * @return the bytes that an ordinary user may fill; 0 when they can't be had
     *
     * @warning Qt asks the root file system once in a process and keeps the answer: the number is that
     * of the first call.
     */
    static qint64 getLeftSpace(const QString &strPath);

    /**
     * A path made of a directory and a name, as QDir::filePath() makes it.
     *
     * @param strDirPath the directory, with or without a "/" at its end
     * @param strName a name or a relative path; an absolute one is the result as it stands
     * @return the path; nothing is looked for there
     */
    static QString CombinePath(const QString &strDirPath, const QString &strName);

    /** There is none on Linux. @return always null */
    static QString GetPublicDesktopPath();

    /**
     * Nothing is created.
     *
     * @param strTargetPath,strLinkPath,strArguments,strDescription not looked at
     * @return always true
     */
    static bool CreateDesktopLink(const QString &strTargetPath, const QString &strLinkPath,
                                  const QString &strArguments, const QString &strDescription);

    ///@}

    /** @name Names and display texts */
    ///@{

    /**
     * Whether a file may bear this name on any of the systems that the hosts' files travel to.
     *
     * @param strFileName the name, without a directory
     * @return true when none of the characters \ / : * ? < > | and no double quotation mark stands in it
     *
     * Nothing else is looked at: an empty name passes, and so do control characters, names of any
     * length, "." and "..", blanks and dots at the ends, and reserved device names. A name that is no
     * valid UTF-16 always passes.
     */
    static bool CheckFileNameValid(const QString &strFileName);

    /**
     * Whether this is a usable path of the form drive letter, colon, separator.
     *
     * @param strFilePath the path
     * @return true when it is at least 3 characters long, has a colon among the first 3, and behind them
     * none of : * ? < > | and no double quotation mark
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
     * @param nSeconds since the Unix epoch. Those beyond Qt's range, some 292 million years either way,
     *                 come round to another date.
     * @return the text, never empty
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
     *
     * @param nSize in bytes
     * @return the text, never empty
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
     * @return the path
     *
     * @warning The name is free at the time of the test and not reserved. A host that can't have two
     * programs meet opens the file with QIODevice::NewOnly and asks again when that fails.
     *
     * **Blocking.** One look at the file system for each name that is taken.
     */
    static QString getUniqueFileName(const QString &strFilePath, const QString &strExtension);

    ///@}

    /**
     * Shows a file in its folder, by the file manager of the running desktop: the file selected where
     * that can be asked for, else the folder.
     *
     * What is started goes by the words in XDG_CURRENT_DESKTOP, in any case and anywhere in it; the
     * first row that fits:
     *
     *     "gnome" or "ubuntu"   nautilus --select FILE
     *     "kde"                 dolphin --select FILE
     *     "xfce"                thunar FILE
     *     anything else         xdg-open FOLDER
     *
     * Paths are made absolute. Of a directory the one above it is its folder, unless the path ends in
     * "/".
     *
     * @param strFilePath the file
     *
     * No outcome is reported, and whether the file manager does as it is told is not looked at. Two
     * failures show as Qt warnings in the category "default": "File does not exist:" with the path, and
     * nothing is started; "Failed to execute:" with the program and its arguments, when it isn't
     * installed, and then Qt is asked to open the folder.
     *
     * @warning That last resort is QDesktopServices, which wants a QGuiApplication in the host and the
     * call on its thread.
     *
     * **Blocking.** For the start of the program, not for its run.
     */
    static void OpenFolderAndSelectFile(QString strFilePath);
};

} // namespace ZyBase
