// SPDX-License-Identifier: 0BSD

#include "services.h"

#include "Report.h"

#include <ZyBase/files/CJsonReader.h>

#include <QFile>

using ZyBase::CJsonReader;

namespace {

QString describe(const QJsonValue &value)
{
    if (value.isUndefined())
        return QStringLiteral("undefined");
    return value.isNull() ? QStringLiteral("null") : value.toString();
}

} // namespace

void showJson(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("JSON files"), QStringLiteral("ZyBase/files/CJsonReader.h"));

    const QString path = directory.filePath(QStringLiteral("settings.json"));
    const QJsonObject settings {
        {QStringLiteral("language"), QStringLiteral("zh_CN")},
        {QStringLiteral("recent"), QJsonArray {QStringLiteral("a.pdf"), QStringLiteral("b.pdf")}},
        {QStringLiteral("zoom"), 1.25}};
    CJsonReader::SaveJsonFile(path, settings);
    report.line(QStringLiteral("SaveJsonFile"), directory.relativeFilePath(path));
    report.promise(QStringLiteral("A saved object can be read back"),
                   CJsonReader::ParseJsonFileToObject(path) == settings);

    const QJsonValue language = CJsonReader::ParseJsonFile(path, QStringLiteral("language"));
    const QJsonValue missingKey = CJsonReader::ParseJsonFile(path, QStringLiteral("theme"));
    const QJsonValue missingFile = CJsonReader::ParseJsonFile(
        directory.filePath(QStringLiteral("missing.json")), QStringLiteral("theme"));
    report.line(QStringLiteral("key \"language\""), describe(language));
    report.line(QStringLiteral("a missing key"), describe(missingKey));
    report.line(QStringLiteral("a missing file"), describe(missingFile));
    report.promise(QStringLiteral("A missing key returns undefined, a missing file returns null"),
                   language.toString() == QLatin1String("zh_CN") && missingKey.isUndefined()
                       && missingFile.isNull());
}
