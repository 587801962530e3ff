// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CFileUtils.h"

#include "../base/DateFormatting.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace ZyBase {

namespace {

// The length of "C:\". The first three characters of a path are not checked.
constexpr int nDrivePrefixLength = 3;

constexpr const char *pszUnits[] = {"B", "KB", "MB", "GB", "TB"};
constexpr int nLastUnit = 4;
constexpr double dUnitBase = 1024.0;
constexpr double dPerUnit = 1.0 / dUnitBase;

} // namespace

bool CFileUtils::CheckFileNameValid(const QString &strFileName)
{
    static const QString strForbidden = QStringLiteral("[\\\\/:*?\"<>|]+");
    // A shared expression would make threads wait for each other.
    return !strFileName.contains(
        QRegularExpression(strForbidden)); // clazy:exclude=use-static-qregularexpression
}

bool CFileUtils::CheckFilePathValid(const QString &strFilePath)
{
    static const QString strForbidden = QStringLiteral("[:*?\"<>|]+");
    if (!strFilePath.contains(QLatin1Char(':')) || strFilePath.length() < nDrivePrefixLength)
        return false;
    const QString strRest = strFilePath.right(strFilePath.length() - nDrivePrefixLength);
    return !strRest.contains(QRegularExpression(strForbidden)); // clazy:exclude=use-static-qregularexpression
}

QString CFileUtils::FormatOpenTime(long long nSeconds)
{
    static const QDate today = QDate::currentDate();
    prepareDateFormatting();
    const QDateTime dateTime = QDateTime::fromSecsSinceEpoch(nSeconds, Qt::LocalTime);
    if (dateTime.date() == today)
        return dateTime.toString(QStringLiteral("HH:mm:ss"));
    return dateTime.toString(QStringLiteral("MM/dd/yyyy"));
}

QString CFileUtils::FormatFileSize(long long nSize)
{
    double dValue = double(nSize);
    int nUnit = 0;
    while (dValue >= dUnitBase && nUnit < nLastUnit) {
        dValue *= dPerUnit;
        ++nUnit;
    }
    return QStringLiteral("%1 %2")
        .arg(dValue, 0, 'f', 2, QLatin1Char(' '))
        .arg(QLatin1String(pszUnits[nUnit]));
}

QString CFileUtils::getUniqueFileName(const QString &strFilePath, const QString &strExtension)
{
    const QFileInfo fileInfo(strFilePath);
    const QString strDir = fileInfo.path();
    const QString strBaseName = fileInfo.completeBaseName();
    const QString strSuffix = strExtension.isEmpty() ? fileInfo.suffix() : strExtension;

    // One call of arg() for all markers, so that a "%2" in a file name is not replaced.
    QString strCandidate = QStringLiteral("%1/%2.%3").arg(strDir, strBaseName, strSuffix);
    for (qint64 nCounter = 1; QFile::exists(strCandidate); ++nCounter) {
        strCandidate =
            QStringLiteral("%1/%2(%3).%4").arg(strDir, strBaseName, QString::number(nCounter), strSuffix);
    }
    return strCandidate;
}

} // namespace ZyBase
