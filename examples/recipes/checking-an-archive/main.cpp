// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Extracts an archive from elsewhere once nothing speaks against it, and looks at what came out.
//
//     recipe-checking-an-archive ARCHIVE NEW-DIRECTORY

#include "ArchiveCheck.h"

#include <ZyBase/files/ZipManager.h>

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>
#include <QTextStream>

#include <quazip.h>

namespace {

// Half of what is free, so that an archive never fills the user's disk.
quint64 roomFor(const QString &directory)
{
    const QStorageInfo disk(QFileInfo(directory).absolutePath());
    return quint64(qMax(disk.bytesAvailable(), qint64(0))) / 2;
}

// What went wrong, in words for the user; null where all of the archive is in the new directory.
QString extract(const QString &archive, const QString &directory)
{
    const QByteArray codec = nameCodec(archive, "GBK");
    QString objection = objectionTo(archive, roomFor(directory), codec);
    if (!objection.isNull())
        return objection;
    if (!QDir().mkdir(directory))
        return QStringLiteral("The directory is there already or can't be made.");

    QuaZip::setDefaultFileNameCodec(codec.constData()); // for every archive of the process
    if (!ZyBase::ZipManager::QuaUnzipFile(archive, directory, false))
        return QStringLiteral("It could not be extracted.");
    const QString lack = lackIn(directory, archive, codec);
    return lack.isNull() ? lack : lack + QStringLiteral(": it did not come out whole");
}

} // namespace

int main(int argc, char **argv)
{
    QTextStream out(stdout);
    out.setCodec("UTF-8");
    if (argc != 3) {
        out << "recipe-checking-an-archive ARCHIVE NEW-DIRECTORY\n";
        return 2;
    }
    const QString problem = extract(QFile::decodeName(argv[1]), QFile::decodeName(argv[2]));
    out << (problem.isNull() ? QStringLiteral("extracted") : QStringLiteral("refused: ") + problem) << '\n';
    return problem.isNull() ? 0 : 1;
}
