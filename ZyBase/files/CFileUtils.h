// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QByteArray>
#include <QString>

#include <string>

/**
 * @file
 * Declares ZyBase::CFileUtils and the functions GetAppDirPath(), GetAppFilePath() and getBigFileMd5().
 */

/**
 * Returns the directory of the running executable, as the bytes that the kernel reports.
 *
 * @return the path without a "/" at the end, or an empty string if the executable is in the root directory or
 * the path cannot be read
 *
 * **Threads.** This function is thread-safe. **Blocking.** Never blocks.
 *
 * @warning An empty string has two meanings. To distinguish them, check whether GetAppFilePath() also returns
 * an empty string.
 *
 * @see CFileUtils::GetApplicationDirPath()
 * @since 0.1.0
 */
ZYBASE_EXPORT std::string GetAppDirPath();

/**
 * Returns the path of the running executable, as the bytes that the kernel reports.
 *
 * Symbolic links are resolved. The path is read again at each call.
 *
 * @return the path, or an empty string if it cannot be read: /proc is missing, or the path is longer than
 * 4095 bytes
 *
 * **Threads.** This function is thread-safe. **Blocking.** Never blocks.
 *
 * @warning If the executable was replaced or deleted while it runs, for example by an update, " (deleted)"
 * is appended to the path. Do not start the path as a program without checking that it exists.
 *
 * @see CFileUtils::GetApplicationFilePath()
 * @since 0.1.0
 */
ZYBASE_EXPORT std::string GetAppFilePath();

/**
 * Returns the MD5 digest of a file of any size.
 *
 * The file is read in chunks of 4096 bytes, so a large file needs no more memory than a small one. The
 * digest of a file that reports no size, such as a file in /proc, is the digest of zero bytes.
 *
 * @param strFilePath path of the file
 * @return the digest as 16 bytes, not hexadecimal, or a null array if the file cannot be opened;
 * QByteArray::toHex() converts it to the form of CFileUtils::GetFileMd5()
 *
 * **Threads.** This function is thread-safe.
 *
 * **Blocking.** Blocks until the whole file is read, without a time limit.
 *
 * @warning If the file becomes shorter during the call, or a read fails, the function does not return until
 * the file has its original length again. Meanwhile it uses a whole processor core. Do not use it for files
 * that others may write to. Use QCryptographicHash::addData(QIODevice *) for them.
 *
 * @see CFileUtils::GetFileMd5()
 * @since 0.1.0
 */
ZYBASE_EXPORT QByteArray getBigFileMd5(QString strFilePath);

namespace ZyBase {

/**
 * Functions for files and directories, file names, and the display of sizes and times.
 *
 * Use it for small files, and for the strings that a host application (the application that loads the
 * library) shows in dialogs and lists. Use QFile and QSaveFile if the user must see why an operation failed.
 *
 * @code
 * const QString path = CFileUtils::CombinePath(directory, QStringLiteral("notes.txt"));
 * const QString label = CFileUtils::GetFileSize(path); // for example "1.50 KB"
 * @endcode
 *
 * Relative paths are relative to the current directory of the process. No string is translated.
 *
 * **Threads.** All functions are thread-safe, from the first call on, except where
 * OpenFolderAndSelectFile() restricts it. The files themselves are not protected. If one thread calls
 * WriteFileData() or CopyFileHandle(), another thread can see the file missing or incomplete.
 *
 * **Blocking.** Functions that use a file or directory block until the file system has finished, without a
 * time limit. The others never block. No function runs an event loop.
 *
 * **Failures.** Failures are reported only by the return value. Functions that return void report none;
 * OpenFolderAndSelectFile() logs them. No function throws an exception.
 *
 * **Lifetime.** All functions are static. Do not create objects of this class.
 *
 * @since 0.1.0
 */
class ZYBASE_EXPORT CFileUtils
{
public:
    /** @name The running executable
     *
     * The results of GetAppFilePath() and GetAppDirPath(), decoded as UTF-8, with each backslash replaced by
     * "/". These functions never block.
     *
     * @warning On Linux a backslash is an ordinary character of a file name. If the path of the executable
     * contains one, the returned path does not exist. Use GetAppFilePath() or GetAppDirPath() instead.
     */
    ///@{

    /**
     * Returns the path of the running executable.
     *
     * @return the path, or an empty string if it cannot be read
     */
    static QString GetApplicationFilePath();

    /**
     * Returns the directory of the running executable.
     *
     * @return the path without a "/" at the end, or an empty string if the executable is in the root
     * directory or the path cannot be read
     */
    static QString GetApplicationDirPath();

    /**
     * Returns the path of the directory "res" next to the executable.
     *
     * The function does not check that the directory exists.
     *
     * @return the path, or "/res" if the executable is in the root directory or its path cannot be read
     */
    static QString GetResDirPath();

    /**
     * Returns an empty string, because this directory does not exist on Linux.
     *
     * @return always an empty, not null string
     */
    static QString GetMacResourcesDirPath();

    ///@}

    /** @name Content of files */
    ///@{

    /**
     * Returns the MD5 digest of a file. The whole file is read into memory.
     *
     * @param strFilePath path of the file
     * @return the digest as 32 lower-case hexadecimal digits. If the file cannot be opened, the digest of
     * zero bytes, "d41d8cd98f00b204e9800998ecf8427e"; Qt can then log a warning.
     *
     * @warning The result for a file that cannot be opened, or that is 2 GiB or larger, is the result for an
     * empty file. Use getBigFileMd5() for large files and if you must detect failures.
     *
     * @see getBigFileMd5()
     */
    static QString GetFileMd5(const QString &strFilePath);

    /**
     * Returns the content of a text file, decoded as UTF-8.
     *
     * Line endings are not converted. A byte order mark at the start is removed. Each byte sequence that is
     * not valid UTF-8 becomes U+FFFD. The string ends before the first NUL byte.
     *
     * @param strFilePath path of the file
     * @return the content; a null string if the file has zero bytes; an empty, not null string if the file
     * cannot be opened
     *
     * @warning A file of 2 GiB or more returns a null string, like an empty file. Read large files in
     * chunks with QFile.
     *
     * @see WriteFileData()
     */
    static QString ReadFileData(const QString &strFilePath);

    /**
     * Writes a string to a file as UTF-8 and replaces the previous content.
     *
     * A missing file is created, a missing directory is not. Line endings are not converted and no byte order
     * mark is written. Failures are not reported.
     *
     * @param strFilePath path of the file
     * @param strData the new content; an empty or null string leaves an empty file
     *
     * @warning The previous content is deleted before the new content is written. After a crash, or on a
     * full disk, the file is incomplete. To replace a file safely, use QSaveFile as the guide shows.
     *
     * @see ReadFileData(), @ref guide-saving-json-atomically "docs/guide/saving-json-atomically.md"
     */
    static void WriteFileData(const QString &strFilePath, const QString &strData);

    /**
     * Returns the data with each byte XORed with the key. A second call with the same key restores the data.
     *
     * This function never blocks.
     *
     * @param baData the bytes; the array is not changed
     * @param cKey the key; 0 changes nothing
     * @return an array of the same length, or a null array if the data is null
     *
     * @warning This is not encryption: anyone can find the key. Do not use it to protect secrets. Use a
     * cryptographic library instead.
     */
    static QByteArray getEncryptDecryptByte(const QByteArray &baData, const char &cKey);

    /**
     * Returns the size of a file as a string for display.
     *
     * The format is that of FormatFileSize(): a number with two decimals, a space and one of the units B, KB,
     * MB, GB and TB in steps of 1024. A file of 1536 bytes returns "1.50 KB".
     *
     * @param strFilePath path of the file; symbolic links are followed
     * @return the size, or an empty, not null string if nothing exists at the path. For a directory, the size
     * of its own entry, without the files in it.
     */
    static QString GetFileSize(const QString &strFilePath);

    /**
     * Does nothing, because files have no version on Linux. This function never blocks.
     *
     * @param strFilePath not used
     * @param strVersion not changed
     * @return always true; this does not mean that a version was found
     */
    static bool GetFileVersion(const QString &strFilePath, std::string &strVersion);

    ///@}

    /** @name Files and directories */
    ///@{

    /**
     * Copies a file and its permissions.
     *
     * @param strSourcePath path of the file
     * @param strTargetPath path of the copy, including the file name
     * @param bOverwrite true removes an existing target before the copy; false keeps it
     * @return true if the copy was made; false if it was not, or if the target exists and @p bOverwrite is
     * false
     *
     * @warning With @p bOverwrite, the target is lost if the copy then fails. A file that is copied onto
     * itself is also lost. Copy to a new name in the same directory, and replace the target with
     * std::filesystem::rename() after the copy succeeded.
     *
     * @see IsTheSameFile()
     */
    static bool CopyFileHandle(const QString &strSourcePath, const QString &strTargetPath, bool bOverwrite);

    /**
     * Adds write permission for the owner if the user of this process cannot write to the file.
     *
     * If the permissions change, the setuid, setgid and sticky bits are removed. Failures are not reported;
     * check QFileInfo::isWritable() after the call.
     *
     * @param strFilePath path of the file; a missing file is ignored
     * @param bWritable not used: false does not remove the permission
     */
    static void SetFileWritable(const QString &strFilePath, bool bWritable);

    /**
     * Sets the permissions of a file to rwxr-xr-x (0755).
     *
     * @param strFilePath path of the file
     * @return true if the permissions were set; false if they were not, for example because the file is
     * missing or belongs to another user
     *
     * @warning The previous permissions are replaced: group and others can read and execute a file that was
     * private. To add only execute permission, use QFile::setPermissions().
     */
    static bool SetFileExecutable(const QString &strFilePath);

    /**
     * Returns whether two paths are the same path after symbolic links are resolved.
     *
     * Content is not compared. Two hard links to one file are different paths.
     *
     * @param strFirstPath,strSecondPath the paths
     * @return true if they are the same; false if they differ or if one of them does not exist
     */
    static bool IsTheSameFile(const QString &strFirstPath, const QString &strSecondPath);

    /**
     * Creates a directory, and its parent directories if they are missing.
     *
     * @param strDirPath path of the directory
     * @return true if the directory was created, or if anything exists at the path. False if it cannot be
     * created, for example below a plain file, or if the path is empty; for an empty path Qt logs warnings.
     *
     * @warning True does not mean that a directory exists: a plain file at the path also returns true. Check
     * QFileInfo::isDir() before you use the directory.
     */
    static bool MakeDirPath(const QString &strDirPath);

    /**
     * Removes a directory and everything in it.
     *
     * Symbolic links in the directory are removed, their targets are kept. If @p strDirPath itself is a
     * symbolic link, its target directory is emptied, the link remains, and the result is false.
     *
     * @param strDirPath path of the directory
     * @return true if the directory was removed; false if it does not exist, or if anything in it could not
     * be removed. The rest is removed even if the result is false.
     *
     * @warning An empty path removes the current directory of the process with everything in it. Check that
     * the path is not empty before the call.
     */
    static bool DeleteDirPath(const QString &strDirPath);

    /**
     * Returns whether a file can be created in a directory. The function creates one and removes it.
     *
     * @param strFolderPath path of the directory, with a "/" at the end
     * @return true if the file was created; false if it was not
     *
     * @warning Without a "/" at the end, the result is about the parent directory, even if the directory
     * itself does not exist. Always append "/".
     */
    static bool isFolderWritable(const QString &strFolderPath);

    /**
     * Returns the free space of the root file system.
     *
     * @param strPath not used
     * @return the number of bytes that an ordinary user can still write; 0 if Qt does not find the root file
     * system, for example because the root directory of a chroot is not a mount point
     *
     * @warning Qt reads the value once in a process. Every later call returns the value of the first call.
     * For a current value, or for another disk, use QStorageInfo(path).bytesAvailable().
     */
    static qint64 getLeftSpace(const QString &strPath);

    /**
     * Returns the path of a file in a directory, as QDir::filePath() does.
     *
     * This function never blocks. It does not check that the path exists. "." and ".." are kept.
     *
     * @param strDirPath path of the directory, with or without a "/" at the end; an empty string returns a
     * path that starts with "./"
     * @param strName a name or a relative path
     * @return the path; if @p strName is an absolute path, @p strName
     *
     * @warning A name with ".." or an absolute name leaves the directory. Check names that come from others.
     */
    static QString CombinePath(const QString &strDirPath, const QString &strName);

    /**
     * Returns a null string, because this directory does not exist on Linux. This function never blocks.
     *
     * @return always a null string
     */
    static QString GetPublicDesktopPath();

    /**
     * Does nothing: no link is created. This function never blocks.
     *
     * @param strTargetPath,strLinkPath,strArguments,strDescription not used
     * @return always true; this does not mean that a link exists
     */
    static bool CreateDesktopLink(const QString &strTargetPath, const QString &strLinkPath,
                                  const QString &strArguments, const QString &strDescription);

    ///@}

    /** @name Names and display strings
     *
     * Except getUniqueFileName(), these functions use no file and never block.
     */
    ///@{

    /**
     * Returns whether a file name contains none of the characters that some systems forbid.
     *
     * The forbidden characters are \ / : * ? < > | and the double quotation mark. Nothing else is checked: an
     * empty name, "..", control characters, reserved device names and long names are all accepted.
     *
     * @param strFileName the name, without a directory
     * @return true if the name contains no forbidden character, or if it is not valid UTF-16; otherwise false
     *
     * @warning True does not mean that a file of this name can be created. Check the result of QFile::open().
     */
    static bool CheckFileNameValid(const QString &strFileName);

    /**
     * Returns whether a path has the form of a drive path, such as `C:\a.pdf`.
     *
     * @param strFilePath the path
     * @return true if all of these hold; otherwise false:
     * - the path has at least three characters
     * - the path contains a colon
     * - the path after its third character has none of : * ? < > | and no double quotation mark
     *   (always true if that part is not valid UTF-16)
     *
     * @warning Ordinary Linux paths such as "/home/user/a.pdf" return false. Use this function only for
     * drive paths.
     */
    static bool CheckFilePathValid(const QString &strFilePath);

    /**
     * Returns a time as a list of recent files shows it.
     *
     * The format is "HH:mm:ss" for a time of today and "MM/dd/yyyy" for any other, in local time. The digits
     * are those of the system's locale, which are not 0 to 9 in every locale.
     *
     * @param nSeconds time in seconds since the Unix epoch; negative values are times before it. Outside Qt's
     * range, about 292 million years before and after the epoch, the result is another date.
     * @return the time or the date; never empty
     *
     * **Threads.** This function is thread-safe, from the first call on. Calls of QDate::toString() and
     * QDateTime::toString() in other threads are not protected, because Qt's first use of the locale is not
     * thread-safe. If several threads format dates, format one in main() first.
     *
     * @warning "Today" is the day of the first call in the process. After midnight, times of the new day are
     * shown as dates. If the application runs for days, use QDateTime::toString() instead.
     */
    static QString FormatOpenTime(long long nSeconds);

    /**
     * Returns a size as a string for display, such as "1.50 KB".
     *
     * The string is a number with two decimals, a space and one of the units B, KB, MB, GB and TB. Each unit
     * is 1024 times the one before. The decimal mark is a full stop in every locale.
     *
     * The number is rounded after the unit is chosen, so 1048575 returns "1024.00 KB". A negative size is
     * shown in bytes. A size of 1024 TB or more is shown in TB.
     *
     * @param nSize size in bytes
     * @return the size; never empty
     */
    static QString FormatFileSize(long long nSize);

    /**
     * Returns the first path at which nothing exists, out of dir/name.ext, dir/name(1).ext,
     * dir/name(2).ext and so on.
     *
     * Only the last suffix is the extension: the second path for "a.tar.gz" is "a.tar(1).gz". A symbolic link
     * whose target is missing counts as free.
     *
     * @param strFilePath the preferred path. A path without a directory returns a path that starts with "./";
     * a file in the root directory, one that starts with "//".
     * @param strExtension the extension without a dot; an empty string uses the suffix of @p strFilePath. If
     * both are empty, the result ends with a dot: "README.".
     * @return the path; there is no limit to the counter
     *
     * **Blocking.** One file-system access for each existing name.
     *
     * @warning The file is not created, so another program can take the name before you do. Open the file
     * with QIODevice::NewOnly, and call this function again if that fails.
     */
    static QString getUniqueFileName(const QString &strFilePath, const QString &strExtension);

    ///@}

    /**
     * Opens the directory of a file in the file manager of the desktop and selects the file if possible.
     *
     * The program depends on the environment variable XDG_CURRENT_DESKTOP. Upper and lower case are the same,
     * and the word can be part of a longer one. The first match is used:
     *
     * | Value contains | Command |
     * |---|---|
     * | "gnome" or "ubuntu" | nautilus --select FILE |
     * | "kde" | dolphin --select FILE |
     * | "xfce" | thunar FILE |
     * | none of these | xdg-open DIRECTORY |
     *
     * Paths are made absolute. If @p strFilePath is a directory, DIRECTORY is its parent directory; if it
     * also ends with "/", DIRECTORY is the directory itself.
     *
     * The outcome is not returned. Two failures are logged as Qt warnings in the category "default":
     *
     * | Message | What happens |
     * |---|---|
     * | File does not exist: PATH | Nothing is started |
     * | Failed to execute: PROGRAM ARGUMENTS | Qt opens the directory with QDesktopServices |
     *
     * If the file manager starts and then fails, nothing is logged.
     *
     * @param strFilePath path of the file
     *
     * **Threads.** Not thread-safe. Call this function only in the GUI thread, because QDesktopServices
     * requires it.
     *
     * **Blocking.** Blocks until the program is started, not until it ends.
     *
     * @warning Without a QGuiApplication, nothing is opened if the file manager is not installed. Create one
     * before the call.
     */
    static void OpenFolderAndSelectFile(QString strFilePath);
};

} // namespace ZyBase
