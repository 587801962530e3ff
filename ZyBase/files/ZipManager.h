// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QObject>
#include <QString>
#include <QStringList>

namespace ZyBase {

/**
 * Packs nothing: no archive is made.
 *
 * @param strZipPath,listFilePaths not looked at
 * @return always false
 *
 * **Threads.** Any. **Blocking.** Never.
 */
ZYBASE_EXPORT bool zipWriter(const QString &strZipPath, const QStringList &listFilePaths);

/**
 * Unpacks nothing.
 *
 * @param strZipPath,strExtractDir not looked at
 * @return always false
 *
 * **Threads.** Any. **Blocking.** Never.
 */
ZYBASE_EXPORT bool zipReader(const QString &strZipPath, QString strExtractDir);

/**
 * Unpacks zip archives, by QuaZip. Only QuaUnzipFile() works; the other functions hold their place in
 * the interface and do nothing.
 *
 * All functions are static: no object is needed.
 *
 * **Threads.** Any. Nothing is shared; archives can be extracted at the same time into different
 * directories. **Blocking.** QuaUnzipFile() alone does.
 */
class ZYBASE_EXPORT ZipManager : public QObject
{
    Q_OBJECT

public:
    /** Makes an object, which no function needs. @param pParent owns it */
    explicit ZipManager(QObject *pParent = nullptr);

    /**
     * Packs nothing: no archive is made.
     *
     * @param strZipPath,listFilePaths not looked at
     * @return always false
     */
    static bool ZipDir(const QString &strZipPath, const QStringList &listFilePaths);

    /**
     * Unpacks nothing; QuaUnzipFile() is the one that works.
     *
     * @param strZipPath,strExtractDir not looked at
     * @return always false
     */
    static bool UnzipFile(const QString &strZipPath, QString strExtractDir);

    /**
     * Packs nothing: no archive is made.
     *
     * @param strZipPath,listFilePaths not looked at
     * @return always true, which says nothing
     */
    static bool QuaZipDir(const QString &strZipPath, const QStringList &listFilePaths);

    /**
     * Extracts a whole archive. An entry that can't be extracted is passed over and nothing is undone.
     *
     * @warning **Only for archives that the host trusts.** An entry's name is taken as it stands: one
     * named "../x" or "/x" is written outside the directory, over what lies there, to wherever the user
     * may write; a symbolic link that lies in the directory already is followed. Before an archive from
     * elsewhere is extracted, look through its names, which takes QuaZip and little time:
     * @code
     * bool staysInside(const QString &zipPath)
     * {
     *     QuaZip zip(zipPath);
     *     if (!zip.open(QuaZip::mdUnzip))
     *         return false;
     *     const QStringList names = zip.getFileNameList();
     *     return std::none_of(names.begin(), names.end(), [](const QString &name) {
     *         const QString clean = QDir::cleanPath(name);
     *         return QDir::isAbsolutePath(clean) || clean == QLatin1String("..")
     *             || clean.startsWith(QLatin1String("../"));
     *     });
     * }
     * @endcode
     * and extract into a directory of your own that is new.
     *
     * @warning **True does not mean extracted.** Content whose check sum is wrong is written all the same
     * and reported as extracted; QuaZip then opens none of the files behind it. A full disk leaves files
     * cut short. An encrypted entry leaves bytes without sense, as no password can be given. An entry is
     * held in memory whole, and one of 2 GiB or more is cut off there. Where it matters, compare the
     * sizes or digests that you expect.
     *
     * @param strZipPath the archive; with an empty one nothing is done
     * @param strExtractDir where to; made with those above it when missing, also for an archive that
     *                      then can't be opened. Empty: the archive's directory and its name up to the
     *                      first dot, with no "/" between them: "/home/u/docs/data.tar.zip" goes to
     *                      "/home/u/docsdata", beside "docs". Name the directory to be sure of it.
     * @param bOverwrite true: existing files are replaced. False: they are kept and their entries passed
     *                   over.
     *
     * @return false when nothing could be begun: no archive, none that can be opened, no directory. True
     * when the walk through the archive came to its end, however many entries failed.
     *
     * Extracted files have the permissions of new files and the time of their writing; those of the
     * archive are not taken over. A symbolic link becomes a plain file that holds where it led. Names
     * that the archive does not mark as UTF-8 are decoded by QuaZip's default.
     *
     * Qt's message functions tell what happened, in the category "default", in Chinese in every locale,
     * each text followed by its value. None carries a file, line or function.
     *
     *     level     text                       value                     what became of it
     *     critical  ZIP 文件不存在：           archive path              false
     *     critical  无法创建目标目录：         directory                 false
     *     critical  打开 ZIP 文件失败：        QuaZip error code         false
     *     warning   获取文件信息失败：         QuaZip error code         next entry
     *     warning   创建目录失败：             path                      next entry
     *     warning   创建父目录失败：           directory                 next entry
     *     warning   打开 ZIP 内文件失败：      QuaZip error code         next entry
     *     warning   创建目标文件失败：         Qt's text of the error    next entry
     *     debug     文件已存在，跳过：         path                      next entry
     *     debug     解压成功：                 path                      next entry
     *
     * **Blocking.** For the whole extraction, which can't be stopped. Call it from a thread of your own
     * when the archive may be large.
     */
    static bool QuaUnzipFile(const QString &strZipPath, QString strExtractDir, bool bOverwrite);
};

} // namespace ZyBase
