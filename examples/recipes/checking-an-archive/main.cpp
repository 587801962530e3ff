// SPDX-License-Identifier: 0BSD
//
// Checks an archive, extracts it to a new directory, and checks what was extracted.
//
//     recipe-checking-an-archive ARCHIVE NEW-DIRECTORY

#include "../PrintLine.h"
#include "ArchiveCheck.h"

#include <ZyBase/files/ZipManager.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <quazip.h>

namespace {

// Returns what went wrong, as a message for the user; null if the whole archive is in the new directory.
QString extract(const QString &archive, const QString &directory)
{
    const QByteArray codec = archiveNameCodec(archive, "GBK");
    const quint64 spaceBytes = spaceForArchive(QFileInfo(directory).absolutePath());
    QString problem = archiveProblem(archive, spaceBytes, codec);
    if (!problem.isNull())
        return problem;
    if (!QDir().mkdir(directory))
        return QStringLiteral("The directory exists already or cannot be created.");

    QuaZip::setDefaultFileNameCodec(codec.constData()); // for all archives of this process
    if (!ZyBase::ZipManager::QuaUnzipFile(archive, directory, false))
        return QStringLiteral("It could not be extracted.");
    const QString missing = missingEntry(directory, archive, codec);
    return missing.isNull() ? QString() : missing + QStringLiteral(": it was not extracted completely");
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3) {
        printLine(QStringLiteral("recipe-checking-an-archive ARCHIVE NEW-DIRECTORY"));
        return 2;
    }
    const QString problem = extract(QFile::decodeName(argv[1]), QFile::decodeName(argv[2]));
    printLine(problem.isNull() ? QStringLiteral("extracted") : QStringLiteral("refused: ") + problem);
    return problem.isNull() ? 0 : 1;
}
