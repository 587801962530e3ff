// SPDX-License-Identifier: LGPL-2.1-or-later

#include "services.h"

#include "Report.h"

#include <ZyBase/files/CJsonReader.h>

#include <QFile>

using ZyBase::CJsonReader;

namespace {

QString kindOf(const QJsonValue &value)
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
    report.line(QStringLiteral("SaveJsonFile"), path);
    report.promise(QStringLiteral("what was saved is read back"),
                   CJsonReader::ParseJsonFileToObject(path) == settings);

    const QJsonValue language = CJsonReader::ParseJsonFile(path, QStringLiteral("language"));
    const QJsonValue lacking = CJsonReader::ParseJsonFile(path, QStringLiteral("theme"));
    const QJsonValue unreadable =
        CJsonReader::ParseJsonFile(directory.filePath(QStringLiteral("none.json")), QStringLiteral("theme"));
    report.line(QStringLiteral("key \"language\""), kindOf(language));
    report.line(QStringLiteral("key \"theme\""), kindOf(lacking));
    report.line(QStringLiteral("in a missing file"), kindOf(unreadable));
    report.promise(QStringLiteral("a key that is lacking and a file that can't be read are told apart"),
                   language.toString() == QLatin1String("zh_CN") && lacking.isUndefined()
                       && unreadable.isNull() && !unreadable.isUndefined());
}
