// SPDX-License-Identifier: LGPL-2.1-or-later

#include "services.h"

#include "Report.h"

#include <ZyBase/files/CFileUtils.h>
#include <ZyBase/files/CStringUtils.h>

#include <QCoreApplication>
#include <QDateTime>

using ZyBase::CFileUtils;
using ZyBase::CStringUtils;

namespace {

void showPaths(Report &report)
{
    report.line(QStringLiteral("GetApplicationFilePath"), CFileUtils::GetApplicationFilePath());
    report.line(QStringLiteral("GetResDirPath"), CFileUtils::GetResDirPath());
    report.promise(QStringLiteral("the host knows where it lies"),
                   CFileUtils::GetApplicationDirPath() == QCoreApplication::applicationDirPath());
}

void showTexts(Report &report)
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    const QString size = CFileUtils::FormatFileSize(1536);
    report.line(QStringLiteral("1536 bytes, 5 GiB"),
                size + QStringLiteral(", ") + CFileUtils::FormatFileSize(5LL << 30));
    report.line(QStringLiteral("opened now, long ago"),
                CFileUtils::FormatOpenTime(now) + QStringLiteral(", ") + CFileUtils::FormatOpenTime(0));
    report.promise(QStringLiteral("sizes have two decimals"), size == QLatin1String("1.50 KB"));
    report.promise(QStringLiteral("a long text gets a line feed after every 100 characters"),
                   CStringUtils::SplitString(QString(250, QLatin1Char('x'))).count(QLatin1Char('\n')) == 2);
}

void showContent(Report &report, const QDir &directory)
{
    const QString wish = CFileUtils::CombinePath(directory.path(), QStringLiteral("notes.tar.txt"));
    const QString path = CFileUtils::getUniqueFileName(wish, QString());
    CFileUtils::WriteFileData(path, QStringLiteral("Größe 文件"));
    const QString next = CFileUtils::getUniqueFileName(wish, QString());
    report.line(QStringLiteral("WriteFileData"), path);
    report.line(QStringLiteral("the next free name"), next);
    report.promise(QStringLiteral("a name that is taken is not given again"), !QFile::exists(next));
    report.promise(QStringLiteral("what was written is read back"),
                   CFileUtils::ReadFileData(path) == QStringLiteral("Größe 文件"));

    const QString whole = CFileUtils::GetFileMd5(path);
    const QByteArray streamed = getBigFileMd5(path);
    report.line(QStringLiteral("GetFileMd5"), whole);
    report.line(QStringLiteral("getBigFileMd5"), QStringLiteral("%1 raw bytes").arg(streamed.size()));
    report.promise(QStringLiteral("both hashes are one"), QString::fromLatin1(streamed.toHex()) == whole);
}

} // namespace

void showFiles(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("Files and paths"), QStringLiteral("ZyBase/files/CFileUtils.h"));
    showPaths(report);
    showTexts(report);
    showContent(report, directory);
}
