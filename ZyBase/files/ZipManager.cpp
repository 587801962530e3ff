// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ZipManager.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <quazip.h>
#include <quazipfile.h>
#include <quazipfileinfo.h>

#include <utility>

namespace ZyBase {

namespace {

// There is no "/" between the archive's directory and its name, for compatibility.
QString defaultExtractDir(const QString &strZipPath)
{
    const QFileInfo fileInfo(strZipPath);
    return fileInfo.absolutePath() + fileInfo.baseName();
}

bool makeDir(const QDir &dir)
{
    return dir.exists() || dir.mkpath(QStringLiteral("."));
}

void extractDir(const QString &strTarget)
{
    if (!makeDir(QDir(strTarget)))
        qWarning() << "创建目录失败：" << strTarget;
}

void copyContent(QuaZipFile &zipFile, const QuaZipFileInfo &info, const QString &strTarget)
{
    if (!zipFile.open(QIODevice::ReadOnly)) {
        qWarning() << "打开 ZIP 内文件失败：" << zipFile.getZipError();
        return;
    }
    QFile file(strTarget);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        qWarning() << "创建目标文件失败：" << file.errorString();
        zipFile.close();
        return;
    }
    file.write(zipFile.readAll());
    file.close();
    zipFile.close();

    // Has no effect, because the file is not open: it keeps the time when it was written. Applications rely
    // on that time.
    QFile extracted(strTarget);
    extracted.setFileTime(info.dateTime, QFileDevice::FileModificationTime);
    qDebug() << "解压成功：" << strTarget;
}

void extractFile(QuaZipFile &zipFile, const QuaZipFileInfo &info, const QString &strTarget, bool bOverwrite)
{
    if (!bOverwrite && QFile::exists(strTarget)) {
        qDebug() << "文件已存在，跳过：" << strTarget;
        return;
    }
    const QDir parentDir = QFileInfo(strTarget).absoluteDir();
    if (!makeDir(parentDir)) {
        qWarning() << "创建父目录失败：" << parentDir.path();
        return;
    }
    copyContent(zipFile, info, strTarget);
}

} // namespace

bool zipWriter(const QString &, const QStringList &)
{
    return false;
}

// Here and below, the directory is passed by value for binary compatibility.
bool zipReader(const QString &, QString) // NOLINT(performance-unnecessary-value-param)
{
    return false;
}

ZipManager::ZipManager(QObject *pParent)
    : QObject(pParent)
{
}

bool ZipManager::ZipDir(const QString &strZipPath, const QStringList &filePaths)
{
    return zipWriter(strZipPath, filePaths);
}

bool ZipManager::UnzipFile(const QString &strZipPath, QString strExtractDir)
{
    return zipReader(strZipPath, std::move(strExtractDir));
}

bool ZipManager::QuaZipDir(const QString &, const QStringList &)
{
    return true;
}

bool ZipManager::QuaUnzipFile(const QString &strZipPath, QString strExtractDir, bool bOverwrite)
{
    if (strZipPath.isEmpty())
        return false;
    if (strExtractDir.isEmpty())
        strExtractDir = defaultExtractDir(strZipPath);
    if (!QFile::exists(strZipPath)) {
        qCritical() << "ZIP 文件不存在：" << strZipPath;
        return false;
    }
    const QDir extractionDir(strExtractDir);
    if (!makeDir(extractionDir)) {
        qCritical() << "无法创建目标目录：" << strExtractDir;
        return false;
    }
    QuaZip zip(strZipPath);
    if (!zip.open(QuaZip::mdUnzip)) {
        qCritical() << "打开 ZIP 文件失败：" << zip.getZipError();
        return false;
    }

    QuaZipFile zipFile(&zip);
    QuaZipFileInfo info;
    zip.goToFirstFile();
    do {
        if (!zip.getCurrentFileInfo(&info)) {
            qWarning() << "获取文件信息失败：" << zip.getZipError();
            continue;
        }
        const QString strTarget = extractionDir.filePath(info.name);
        if (info.name.endsWith(QLatin1Char('/')))
            extractDir(strTarget);
        else
            extractFile(zipFile, info, strTarget, bOverwrite);
    } while (zip.goToNextFile());
    zip.close();
    return true;
}

} // namespace ZyBase
