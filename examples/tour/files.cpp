// SPDX-License-Identifier: 0BSD

#include "services.h"

#include "Report.h"

#include <ZyBase/files/CFileUtils.h>
#include <ZyBase/files/CStringUtils.h>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDateTime>

using ZyBase::CFileUtils;
using ZyBase::CStringUtils;

namespace {

void showPaths(Report &report)
{
    const QString executable = CFileUtils::GetApplicationFilePath();
    const QString resources = CFileUtils::GetResDirPath();
    report.line(QStringLiteral("GetApplicationFilePath"), executable);
    report.line(QStringLiteral("GetResDirPath"), resources);
    const QString directory = QCoreApplication::applicationDirPath();
    report.promise(QStringLiteral("The paths of the executable are right"),
                   executable == QCoreApplication::applicationFilePath()
                       && CFileUtils::GetApplicationDirPath() == directory
                       && resources == directory + QStringLiteral("/res"));
}

void showStrings(Report &report)
{
    const QString small = CFileUtils::FormatFileSize(1536);
    const QString large = CFileUtils::FormatFileSize(5LL << 30);
    report.line(QStringLiteral("1536 bytes, 5 GiB"), small + QStringLiteral(", ") + large);
    report.promise(QStringLiteral("A size has two decimals and a unit"),
                   small == QLatin1String("1.50 KB") && large == QLatin1String("5.00 GB"));

    const QDateTime now = QDateTime::currentDateTime();
    const QString today = CFileUtils::FormatOpenTime(now.toSecsSinceEpoch());
    const QString longAgo = CFileUtils::FormatOpenTime(0);
    report.line(QStringLiteral("opened now, in 1970"), today + QStringLiteral(", ") + longAgo);
    report.promise(QStringLiteral("A file of today shows its time, an older one its date"),
                   today == now.toString(QStringLiteral("HH:mm:ss"))
                       && longAgo == QDateTime::fromSecsSinceEpoch(0).toString(QStringLiteral("MM/dd/yyyy")));

    const QString part(100, QLatin1Char('x'));
    report.promise(QStringLiteral("SplitString() adds a line feed after every 100 characters"),
                   CStringUtils::SplitString(part + part + QLatin1Char('x'))
                       == part + QLatin1Char('\n') + part + QLatin1Char('\n') + QLatin1Char('x'));
}

void showContent(Report &report, const QDir &directory)
{
    const QString name = QStringLiteral("notes.tar.txt");
    const QString content = QStringLiteral("Größe 文件");
    const QString path = CFileUtils::CombinePath(directory.path(), name);
    const QString free = CFileUtils::getUniqueFileName(path, QString());
    CFileUtils::WriteFileData(path, content);
    const QString next = CFileUtils::getUniqueFileName(path, QString());
    report.line(QStringLiteral("WriteFileData"), directory.relativeFilePath(path));
    report.line(QStringLiteral("the next free name"), directory.relativeFilePath(next));
    report.promise(QStringLiteral("CombinePath() joins a directory and a name"),
                   path == directory.filePath(name));
    report.promise(QStringLiteral("A used name gets a number, a free one stays"),
                   free == path && next == directory.filePath(QStringLiteral("notes.tar(1).txt")));
    report.promise(QStringLiteral("A written string can be read back"),
                   CFileUtils::ReadFileData(path) == content);

    const QByteArray expected = QCryptographicHash::hash(content.toUtf8(), QCryptographicHash::Md5);
    const QString hash = CFileUtils::GetFileMd5(path);
    const QByteArray streamedHash = getBigFileMd5(path);
    report.line(QStringLiteral("GetFileMd5"), hash);
    report.line(QStringLiteral("getBigFileMd5"), QStringLiteral("%1 bytes").arg(streamedHash.size()));
    report.promise(QStringLiteral("Both hashes are the MD5 digest of the file"),
                   hash == QString::fromLatin1(expected.toHex()) && streamedHash == expected);
}

} // namespace

void showFiles(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("Files and paths"), QStringLiteral("ZyBase/files/CFileUtils.h"));
    showPaths(report);
    showStrings(report);
    showContent(report, directory);
}
