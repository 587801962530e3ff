// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QObject>
#include <QString>
#include <QStringList>

namespace ZyBase {

/**
 * Does nothing: no archive is created.
 *
 * @param strZipPath,filePaths not used
 * @return always false
 *
 * **Threads.** This function is thread-safe. **Blocking.** Never blocks.
 *
 * @warning Do not use it to create archives. Use QuaZip directly.
 * @since 0.1.0
 */
ZYBASE_EXPORT bool zipWriter(const QString &strZipPath, const QStringList &filePaths);

/**
 * Does nothing: no file is extracted.
 *
 * @param strZipPath,strExtractDir not used
 * @return always false
 *
 * **Threads.** This function is thread-safe. **Blocking.** Never blocks.
 *
 * @warning Do not use it to extract archives. Use ZipManager::QuaUnzipFile() instead.
 * @since 0.1.0
 */
ZYBASE_EXPORT bool zipReader(const QString &strZipPath, QString strExtractDir);

/**
 * Extracts zip archives with QuaZip.
 *
 * Use QuaUnzipFile() for archives that the application trusts. The other functions do nothing; they exist for
 * compatibility. Use QuaZip directly to create archives.
 *
 * **Threads.** All static functions are thread-safe. Archives can be extracted at the same time into
 * different directories. Objects of the class are reentrant, as QObject is.
 *
 * **Blocking.** QuaUnzipFile() blocks. The other functions never block.
 *
 * **Failures.** See QuaUnzipFile(). The results of the other functions are fixed.
 *
 * **Lifetime.** All functions are static. No object is needed.
 *
 * @since 0.1.0
 */
class ZYBASE_EXPORT ZipManager : public QObject
{
    Q_OBJECT

public:
    /**
     * Creates an object. No function needs one.
     *
     * @param pParent the parent, in the same thread, or nullptr
     */
    explicit ZipManager(QObject *pParent = nullptr);

    /**
     * Does nothing: no archive is created.
     *
     * @param strZipPath,filePaths not used
     * @return always false
     *
     * @warning Do not use it to create archives. Use QuaZip directly.
     */
    static bool ZipDir(const QString &strZipPath, const QStringList &filePaths);

    /**
     * Does nothing: no file is extracted.
     *
     * @param strZipPath,strExtractDir not used
     * @return always false
     *
     * @warning Do not use it to extract archives. Use QuaUnzipFile() instead.
     */
    static bool UnzipFile(const QString &strZipPath, QString strExtractDir);

    /**
     * Does nothing: no archive is created.
     *
     * @param strZipPath,filePaths not used
     * @return always true
     *
     * @warning True does not mean that an archive exists. Do not use it to create archives. Use QuaZip
     * directly.
     */
    static bool QuaZipDir(const QString &strZipPath, const QStringList &filePaths);

    /**
     * Extracts all entries of an archive into a directory.
     *
     * An entry that cannot be extracted is skipped, and a message is logged. Nothing that was extracted is
     * removed after a failure.
     *
     * If @p strExtractDir is empty, the path is the archive's directory, followed by the archive's name up to
     * its first dot, without "/" in between: "/home/u/docs/data.tar.zip" is extracted to "/home/u/docsdata".
     * Pass a path to avoid this.
     *
     * @param strZipPath path of the archive; an empty string returns false and logs nothing
     * @param strExtractDir path of the directory; it is created with its parent directories if it is missing,
     * even if the archive then cannot be opened
     * @param bOverwrite true replaces existing files; false keeps them and skips their entries
     * @return true if the last entry was reached, even if entries failed. False if nothing was extracted
     * because the archive is missing or cannot be opened, or the directory cannot be created.
     *
     * **Blocking.** Blocks until the whole archive is extracted, without a time limit, and cannot be stopped.
     * Call it in a worker thread if the archive can be large.
     *
     * @warning **Extract only archives that the application trusts.** An entry named "../x" or "/x" is
     * written outside the directory. It replaces any file that the user can write. Symbolic links in the
     * directory are followed. Check every name before you extract an archive from elsewhere, and extract it
     * into a new directory. The guide shows how.
     *
     * @warning **True does not mean that all files are complete.** These cases also return true:
     *
     * | Entry or event | Result |
     * |---|---|
     * | Wrong checksum | The content is written; no later file is extracted |
     * | Traditional encryption, deflated | Usually an empty file; the existing one is replaced |
     * | Traditional encryption, stored | Meaningless bytes; then as for a wrong checksum |
     * | AES encryption or an unknown method | Nothing is written; the warning with code -103 is logged |
     * | Content of 2 GiB or more | The file is cut off below 2 GiB |
     * | Read error in an entry | The file is cut off, or the next entry fails |
     * | Read error in the list of entries | The later entries are not extracted |
     * | Full disk | Files are cut off |
     *
     * Each entry is held in memory while it is extracted. Compare sizes or digests with the expected ones if
     * the files must be complete.
     *
     * Extracted files have the permissions and the time of new files, not those in the archive. A symbolic
     * link becomes a plain file that contains its target. The library sets no codec for file names: names
     * that are not marked as UTF-8 are decoded with QuaZip's default.
     *
     * Messages are logged with Qt, in the category "default", without a file, line or function. They are in
     * Chinese in every locale. The value follows the message:
     *
     * | Level | Message | Meaning | Value | Then |
     * |---|---|---|---|---|
     * | critical | ZIP 文件不存在： | The archive does not exist | archive path | returns false |
     * | critical | 无法创建目标目录： | Cannot create the directory | directory | returns false |
     * | critical | 打开 ZIP 文件失败： | Cannot open the archive | QuaZip error code | returns false |
     * | warning | 获取文件信息失败： | Cannot read the entry's information | QuaZip error code | next entry |
     * | warning | 创建目录失败： | Cannot create the entry's directory | path | next entry |
     * | warning | 创建父目录失败： | Cannot create the parent directory | directory | next entry |
     * | warning | 打开 ZIP 内文件失败： | Cannot open the entry | QuaZip error code | next entry |
     * | warning | 创建目标文件失败： | Cannot create the file | Qt's error string | next entry |
     * | debug | 文件已存在，跳过： | The file exists and is skipped | path | next entry |
     * | debug | 解压成功： | The entry was extracted | path | next entry |
     *
     * @see @ref guide-checking-an-archive "docs/guide/checking-an-archive.md"
     */
    static bool QuaUnzipFile(const QString &strZipPath, QString strExtractDir, bool bOverwrite);
};

} // namespace ZyBase
