// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CJsonReader.h"

#include <QFile>
#include <QJsonDocument>

namespace ZyBase {

namespace {

// Returns a null document on failure. Its object and its array are empty.
QJsonDocument readDocument(const QString &strFilePath)
{
    QFile file(strFilePath);
    if (!file.open(QIODevice::ReadOnly))
        return QJsonDocument();
    QJsonParseError parseError {};
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    return parseError.error == QJsonParseError::NoError ? document : QJsonDocument();
}

} // namespace

QJsonValue CJsonReader::ParseJsonFile(const QString &strFilePath, const QString &strKey)
{
    const QJsonObject jsonObject = ParseJsonFileToObject(strFilePath);
    if (jsonObject.isEmpty())
        return QJsonValue(QJsonValue::Null);
    return jsonObject.value(strKey);
}

QJsonObject CJsonReader::ParseJsonFileToObject(const QString &strFilePath)
{
    return readDocument(strFilePath).object();
}

QJsonArray CJsonReader::ParseJsonFileToArray(const QString &strFilePath)
{
    return readDocument(strFilePath).array();
}

void CJsonReader::SaveJsonFile(const QString &strFilePath, const QJsonObject &jsonObject)
{
    QFile file(strFilePath);
    file.open(QIODevice::WriteOnly | QIODevice::Truncate);
    QJsonDocument document;
    document.setObject(jsonObject);
    file.write(document.toJson());
    file.close();
}

} // namespace ZyBase
