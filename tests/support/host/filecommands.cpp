// SPDX-License-Identifier: LGPL-2.1-or-later

#include "commands.h"

#include <ZyBase/files/CFileUtils.h>
#include <ZyBase/files/CJsonReader.h>
#include <ZyBase/files/ZipManager.h>

#include <QJsonObject>

using ZyBase::CFileUtils;
using ZyBase::CJsonReader;

namespace {

// The argument is a string because a JSON number cannot represent every long long.
QJsonValue formatOpenTime(const QJsonArray &arguments)
{
    return CFileUtils::FormatOpenTime(arguments.at(0).toString().toLongLong());
}

// Returns one character for each byte, because paths can be invalid UTF-8.
QString bytes(const std::string &path)
{
    return QString::fromLatin1(path.data(), int(path.size()));
}

QJsonValue applicationPaths(const QJsonArray &)
{
    return QJsonObject {{QStringLiteral("filePathBytes"), bytes(GetAppFilePath())},
                        {QStringLiteral("dirPathBytes"), bytes(GetAppDirPath())},
                        {QStringLiteral("filePath"), CFileUtils::GetApplicationFilePath()},
                        {QStringLiteral("dirPath"), CFileUtils::GetApplicationDirPath()},
                        {QStringLiteral("dirPathIsNull"), CFileUtils::GetApplicationDirPath().isNull()},
                        {QStringLiteral("filePathIsNull"), CFileUtils::GetApplicationFilePath().isNull()},
                        {QStringLiteral("resDirPath"), CFileUtils::GetResDirPath()}};
}

QJsonValue bigFileMd5(const QJsonArray &arguments)
{
    return QString::fromLatin1(getBigFileMd5(arguments.at(0).toString()).toHex());
}

QJsonValue writeFileData(const QJsonArray &arguments)
{
    CFileUtils::WriteFileData(arguments.at(0).toString(), arguments.at(1).toString());
    return true;
}

QJsonValue readFileData(const QJsonArray &arguments)
{
    return CFileUtils::ReadFileData(arguments.at(0).toString());
}

// The arguments are source and target, which is replaced.
QJsonValue copy(const QJsonArray &arguments)
{
    return CFileUtils::CopyFileHandle(arguments.at(0).toString(), arguments.at(1).toString(), true);
}

QJsonValue readJson(const QJsonArray &arguments)
{
    return CJsonReader::ParseJsonFileToObject(arguments.at(0).toString());
}

QJsonValue saveJson(const QJsonArray &arguments)
{
    CJsonReader::SaveJsonFile(arguments.at(0).toString(), arguments.at(1).toObject());
    return true;
}

QJsonValue isFolderWritable(const QJsonArray &arguments)
{
    return CFileUtils::isFolderWritable(arguments.at(0).toString());
}

QJsonValue leftSpace(const QJsonArray &arguments)
{
    return double(CFileUtils::getLeftSpace(arguments.at(0).toString()));
}

QJsonValue unzip(const QJsonArray &arguments)
{
    return ZyBase::ZipManager::QuaUnzipFile(arguments.at(0).toString(), arguments.at(1).toString(),
                                            arguments.at(2).toBool());
}

} // namespace

Commands fileCommands()
{
    return {{QStringLiteral("files.applicationPaths"), applicationPaths},
            {QStringLiteral("files.bigFileMd5"), bigFileMd5},
            {QStringLiteral("files.copy"), copy},
            {QStringLiteral("files.formatOpenTime"), formatOpenTime},
            {QStringLiteral("files.isFolderWritable"), isFolderWritable},
            {QStringLiteral("files.leftSpace"), leftSpace},
            {QStringLiteral("files.readFileData"), readFileData},
            {QStringLiteral("files.readJson"), readJson},
            {QStringLiteral("files.saveJson"), saveJson},
            {QStringLiteral("files.unzip"), unzip},
            {QStringLiteral("files.writeFileData"), writeFileData}};
}
