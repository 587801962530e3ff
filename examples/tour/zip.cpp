// SPDX-License-Identifier: 0BSD

#include "services.h"

#include "LoggedMessages.h"
#include "Report.h"

#include <ZyBase/files/CFileUtils.h>
#include <ZyBase/files/ZipManager.h>

#include <QFile>

using ZyBase::CFileUtils;
using ZyBase::ZipManager;

namespace {

// An archive of readme.txt ("new") and docs/guide.txt ("guide") as "zip -0" makes it, in hexadecimal.
constexpr const char *archiveBytes =
    "504b03040a00000000000000215c4544e36b03000000030000000a000000726561646d652e7478746e6577504b"
    "03040a00000000000000215c35c79eca05000000050000000e000000646f63732f67756964652e747874677569"
    "6465504b01021e030a00000000000000215c4544e36b03000000030000000a0000000000000000000000a48100"
    "000000726561646d652e747874504b01021e030a00000000000000215c35c79eca05000000050000000e000000"
    "0000000000000000a4812b000000646f63732f67756964652e747874504b05060000000002000200740000005c"
    "0000000000";

bool extract(Report &report, const QString &archive, const QString &target, bool overwrite)
{
    const LoggedMessages messages;
    const bool isExtracted = ZipManager::QuaUnzipFile(archive, target, overwrite);
    report.excerpt(messages.all());
    return isExtracted;
}

bool hasDesktop()
{
    return !qEnvironmentVariableIsEmpty("XDG_CURRENT_DESKTOP")
           && (!qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"));
}

void showFolder(Report &report, const QString &path)
{
    if (hasDesktop())
        CFileUtils::OpenFolderAndSelectFile(path);
    const char *const result = hasDesktop() ? "see the file manager" : "no desktop is running";
    report.line(QStringLiteral("OpenFolderAndSelectFile"), QLatin1String(result));

    const LoggedMessages messages;
    CFileUtils::OpenFolderAndSelectFile(path + QStringLiteral(".missing"));
    report.promise(QStringLiteral("A missing file is not shown; a warning is logged"),
                   messages.all().join(QLatin1Char(' ')).startsWith(QLatin1String("File does not exist:")));
}

} // namespace

void showZip(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("Zip archives"), QStringLiteral("ZyBase/files/ZipManager.h"));

    const QString archive = directory.filePath(QStringLiteral("sample.zip"));
    QFile file(archive);
    if (file.open(QIODevice::WriteOnly))
        file.write(QByteArray::fromHex(archiveBytes));
    file.close();

    const QString target = directory.filePath(QStringLiteral("extracted"));
    const QString readme = target + QStringLiteral("/readme.txt");
    report.promise(QStringLiteral("MakeDirPath() creates a directory"),
                   CFileUtils::MakeDirPath(target) && QDir(target).exists());
    CFileUtils::WriteFileData(readme, QStringLiteral("old"));

    report.line(QStringLiteral("QuaUnzipFile, skip"), directory.relativeFilePath(archive));
    report.promise(QStringLiteral("Existing files are kept, the others are extracted"),
                   extract(report, archive, target, false)
                       && CFileUtils::ReadFileData(readme) == QLatin1String("old")
                       && CFileUtils::ReadFileData(target + QStringLiteral("/docs/guide.txt"))
                              == QLatin1String("guide"));
    report.line(QStringLiteral("QuaUnzipFile, overwrite"), directory.relativeFilePath(archive));
    report.promise(QStringLiteral("Existing files are overwritten"),
                   extract(report, archive, target, true)
                       && CFileUtils::ReadFileData(readme) == QLatin1String("new"));
    showFolder(report, readme);
}
