// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CFileUtils.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <QTemporaryFile>

#include <unistd.h>

namespace {

constexpr const char *pszExecutableLink = "/proc/self/exe";
constexpr size_t nLinkBufferBytes = 4096;
constexpr int nHashChunkBytes = 4096;

constexpr QFile::Permissions executablePermissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner
                                                     | QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther
                                                     | QFile::ExeOther;

QString withForwardSlashes(const std::string &strPath)
{
    return QString::fromStdString(strPath).replace(QLatin1Char('\\'), QLatin1Char('/'));
}

} // namespace

std::string GetAppFilePath()
{
    char szTarget[nLinkBufferBytes] = {};
    const ssize_t nLength = readlink(pszExecutableLink, szTarget, nLinkBufferBytes - 1);
    return nLength < 0 ? std::string() : std::string(szTarget, size_t(nLength));
}

std::string GetAppDirPath()
{
    const std::string strFilePath = GetAppFilePath();
    return strFilePath.substr(0, strFilePath.rfind('/'));
}

// The path is passed by value for binary compatibility.
QByteArray getBigFileMd5(QString strFilePath) // NOLINT(performance-unnecessary-value-param)
{
    QFile file(strFilePath);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();

    QCryptographicHash hash(QCryptographicHash::Md5);
    QByteArray baChunk;
    baChunk.reserve(nHashChunkBytes);
    // Only the original size ends the loop. If the file becomes shorter, the loop waits for it to grow again.
    for (qint64 nLeft = file.size(); nLeft > 0; nLeft -= baChunk.length()) {
        baChunk.resize(int(qMin<qint64>(nLeft, nHashChunkBytes)));
        baChunk.resize(int(qMax<qint64>(file.read(baChunk.data(), baChunk.length()), 0)));
        hash.addData(baChunk);
    }
    file.close();
    return hash.result();
}

namespace ZyBase {

QString CFileUtils::GetApplicationFilePath()
{
    return withForwardSlashes(GetAppFilePath());
}

QString CFileUtils::GetApplicationDirPath()
{
    return withForwardSlashes(GetAppDirPath());
}

QString CFileUtils::GetResDirPath()
{
    return GetApplicationDirPath() + QLatin1String("/res");
}

QString CFileUtils::GetMacResourcesDirPath()
{
    return QStringLiteral("");
}

QString CFileUtils::GetPublicDesktopPath()
{
    return QString();
}

QString CFileUtils::GetFileMd5(const QString &strFilePath)
{
    QFile file(strFilePath);
    file.open(QIODevice::ReadOnly);
    const QByteArray baDigest = QCryptographicHash::hash(file.readAll(), QCryptographicHash::Md5);
    file.close();
    return QString::fromLatin1(baDigest.toHex());
}

bool CFileUtils::CreateDesktopLink(const QString &, const QString &, const QString &, const QString &)
{
    return true;
}

bool CFileUtils::MakeDirPath(const QString &strDirPath)
{
    const QDir dir {QString()};
    return dir.exists(strDirPath) || dir.mkpath(strDirPath);
}

bool CFileUtils::DeleteDirPath(const QString &strDirPath)
{
    QDir dir(strDirPath);
    return dir.exists() && dir.removeRecursively();
}

QString CFileUtils::ReadFileData(const QString &strFilePath)
{
    QFile file(strFilePath);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("");
    const QByteArray baData = file.readAll();
    file.close();
    // constData() without a length: the string ends before the first NUL byte.
    return baData.isNull() ? QString() : QString::fromUtf8(baData.constData());
}

void CFileUtils::WriteFileData(const QString &strFilePath, const QString &strData)
{
    QFile file(strFilePath);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(strData.toUtf8());
    file.close();
}

bool CFileUtils::CopyFileHandle(const QString &strSourcePath, const QString &strTargetPath, bool bOverwrite)
{
    if (bOverwrite && QFile::exists(strTargetPath))
        QFile::remove(strTargetPath);
    return QFile::copy(strSourcePath, strTargetPath);
}

void CFileUtils::SetFileWritable(const QString &strFilePath, bool)
{
    if (!QFile::exists(strFilePath))
        return;
    const QFile::Permissions permissions = QFile::permissions(strFilePath);
    if (!permissions.testFlag(QFileDevice::WriteUser))
        QFile::setPermissions(strFilePath, permissions | QFileDevice::WriteUser);
}

bool CFileUtils::SetFileExecutable(const QString &strFilePath)
{
    return QFile::setPermissions(strFilePath, executablePermissions);
}

bool CFileUtils::IsTheSameFile(const QString &strFirstPath, const QString &strSecondPath)
{
    const QString strFirst = QFileInfo(strFirstPath).canonicalFilePath();
    const QString strSecond = QFileInfo(strSecondPath).canonicalFilePath();
    return !strFirst.isEmpty() && !strSecond.isEmpty() && strFirst == strSecond;
}

QByteArray CFileUtils::getEncryptDecryptByte(const QByteArray &baData, const char &cKey)
{
    if (baData.isEmpty())
        return baData;
    QByteArray baTransformed = baData;
    for (char &cByte : baTransformed)
        cByte = char(cByte ^ cKey);
    return baTransformed;
}

bool CFileUtils::GetFileVersion(const QString &, std::string &)
{
    return true;
}

QString CFileUtils::GetFileSize(const QString &strFilePath)
{
    const QFileInfo fileInfo(strFilePath);
    return fileInfo.exists() ? FormatFileSize(fileInfo.size()) : QStringLiteral("");
}

bool CFileUtils::isFolderWritable(const QString &strFolderPath)
{
    // On Linux the backslash is part of the file name. It is kept for compatibility.
    QTemporaryFile probe(strFolderPath + QLatin1String("\\temp_0"));
    return probe.open();
}

qint64 CFileUtils::getLeftSpace(const QString &)
{
    const QStorageInfo storage = QStorageInfo::root();
    return storage.isValid() && storage.isReady() ? storage.bytesAvailable() : 0;
}

QString CFileUtils::CombinePath(const QString &strDirPath, const QString &strName)
{
    return QDir(strDirPath).filePath(strName);
}

} // namespace ZyBase
