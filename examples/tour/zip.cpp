// SPDX-License-Identifier: LGPL-2.1-or-later

#include "services.h"

#include "Report.h"

#include <ZyBase/files/CFileUtils.h>
#include <ZyBase/files/ZipManager.h>

#include <QFile>

using ZyBase::CFileUtils;
using ZyBase::ZipManager;

namespace {

// What "zip -0" makes of readme.txt ("new") and docs/guide.txt ("guide"), in hexadecimal.
constexpr const char *archiveBytes =
    "504b03040a00000000000000215c4544e36b03000000030000000a000000726561646d652e7478746e6577504b"
    "03040a00000000000000215c35c79eca05000000050000000e000000646f63732f67756964652e747874677569"
    "6465504b01021e030a00000000000000215c4544e36b03000000030000000a0000000000000000000000a48100"
    "000000726561646d652e747874504b01021e030a00000000000000215c35c79eca05000000050000000e000000"
    "0000000000000000a4812b000000646f63732f67756964652e747874504b05060000000002000200740000005c"
    "0000000000";

QStringList s_messages;

// A host shows or logs what the extraction says; this one keeps it.
void keepMessage(QtMsgType, const QMessageLogContext &, const QString &text)
{
    s_messages << text;
}

QStringList extract(const QString &archive, const QString &target, bool overwrite)
{
    s_messages.clear();
    const QtMessageHandler previous = qInstallMessageHandler(keepMessage);
    ZipManager::QuaUnzipFile(archive, target, overwrite);
    qInstallMessageHandler(previous);
    return s_messages;
}

bool hasDesktop()
{
    return !qEnvironmentVariableIsEmpty("XDG_CURRENT_DESKTOP")
           && (!qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"));
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
    CFileUtils::MakeDirPath(target);
    CFileUtils::WriteFileData(readme, QStringLiteral("old"));

    report.line(QStringLiteral("keeping what is there"), archive);
    report.excerpt(extract(archive, target, false));
    report.promise(QStringLiteral("a file that was there is kept, the others are extracted"),
                   CFileUtils::ReadFileData(readme) == QLatin1String("old")
                       && CFileUtils::ReadFileData(target + QStringLiteral("/docs/guide.txt"))
                              == QLatin1String("guide"));
    report.line(QStringLiteral("overwriting"), archive);
    report.excerpt(extract(archive, target, true));
    report.promise(QStringLiteral("it is overwritten where that is asked for"),
                   CFileUtils::ReadFileData(readme) == QLatin1String("new"));

    if (hasDesktop())
        CFileUtils::OpenFolderAndSelectFile(readme);
    report.line(QStringLiteral("OpenFolderAndSelectFile"),
                hasDesktop() ? readme : QStringLiteral("no desktop runs here to show it"));
}
