// SPDX-License-Identifier: 0BSD

#include "ArchiveCheck.h"

#include <ZyBase/files/ZipManager.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

#include <limits>

#include <quacrc32.h>
#include <quazip.h>
#include <quazipfileinfo.h>

#include <sys/stat.h>
#include <sys/statvfs.h>

namespace {

struct ArchiveCheck
{
    Q_DECLARE_TR_FUNCTIONS(ArchiveCheck) // tr() for translated messages
};

constexpr quint16 encryptedFlag = 0x0001;
constexpr quint16 utf8Flag = 0x0800;
constexpr quint64 maxEntryBytes = 0x7fffffff; // the library cuts off the rest
constexpr int chunkBytes = 1 << 20;

QList<QuaZipFileInfo64> entriesOf(QuaZip *zip, const QByteArray &codec)
{
    zip->setFileNameCodec(codec.constData());
    return zip->open(QuaZip::mdUnzip) ? zip->getFileInfoList64() : QList<QuaZipFileInfo64>();
}

// QuaZip before version 1 has no function for this.
bool isSymbolicLink(const QuaZipFileInfo64 &entry)
{
    return S_ISLNK(entry.externalAttr >> 16);
}

bool staysInside(const QString &name)
{
    const QString clean = QDir::cleanPath(name);
    return !QDir::isAbsolutePath(clean) && clean != QLatin1String("..")
           && !clean.startsWith(QLatin1String("../"));
}

QString entryProblem(const QuaZipFileInfo64 &entry, quint64 spaceBytes)
{
    if (!staysInside(entry.name))
        return ArchiveCheck::tr("it would be written outside the directory");
    if (isSymbolicLink(entry))
        return ArchiveCheck::tr("it is a symbolic link");
    if ((entry.flags & encryptedFlag) != 0)
        return ArchiveCheck::tr("it is encrypted");
    if (entry.uncompressedSize > maxEntryBytes)
        return ArchiveCheck::tr("it is too large");
    if (entry.uncompressedSize > spaceBytes)
        return ArchiveCheck::tr("there is not enough space for it");
    return QString();
}

quint32 checkSum(QFile *file)
{
    QuaCrc32 sum;
    while (!file->atEnd())
        sum.update(file->read(chunkBytes));
    return sum.value();
}

bool isExtracted(const QuaZipFileInfo64 &entry, const QDir &directory)
{
    QFile file(directory.filePath(entry.name));
    if (entry.name.endsWith(QLatin1Char('/')))
        return file.exists();
    return file.open(QIODevice::ReadOnly) && checkSum(&file) == entry.crc;
}

} // namespace

QString archiveProblem(const QString &zipPath, quint64 spaceBytes, const QByteArray &codec)
{
    QuaZip zip(zipPath);
    const auto entries = entriesOf(&zip, codec);
    if (!zip.isOpen())
        return ArchiveCheck::tr("It is not an archive.");
    for (const QuaZipFileInfo64 &entry : entries) {
        const QString problem = entryProblem(entry, spaceBytes);
        if (!problem.isNull())
            return entry.name + QStringLiteral(": ") + problem;
        spaceBytes -= entry.uncompressedSize;
    }
    return QString();
}

// QStorageInfo finds no disk in a chroot without a mount of its own; statvfs() works there too.
quint64 spaceForArchive(const QString &parentPath)
{
    struct statvfs disk = {};
    if (statvfs(QFile::encodeName(parentPath).constData(), &disk) != 0)
        return std::numeric_limits<quint64>::max();
    return quint64(disk.f_bavail) * disk.f_frsize / 2;
}

QByteArray archiveNameCodec(const QString &zipPath, const QByteArray &otherCodec)
{
    QuaZip zip(zipPath);
    const auto entries = entriesOf(&zip, "ISO-8859-1"); // one character for each byte
    const QTextCodec *const utf8 = QTextCodec::codecForName("UTF-8");
    for (const QuaZipFileInfo64 &entry : entries) {
        if ((entry.flags & utf8Flag) != 0)
            continue;
        const QByteArray bytes = entry.name.toLatin1();
        QTextCodec::ConverterState state;
        utf8->toUnicode(bytes.constData(), bytes.size(), &state);
        if (state.invalidChars > 0 || state.remainingChars > 0)
            return otherCodec;
    }
    return QByteArrayLiteral("UTF-8");
}

QString missingEntry(const QString &directory, const QString &zipPath, const QByteArray &codec)
{
    QuaZip zip(zipPath);
    const auto entries = entriesOf(&zip, codec);
    for (const QuaZipFileInfo64 &entry : entries) {
        if (!isExtracted(entry, QDir(directory)))
            return entry.name;
    }
    return QString();
}

QString extractArchive(const QString &zipPath, const QString &directory)
{
    const QByteArray codec = archiveNameCodec(zipPath, "GBK");
    const quint64 spaceBytes = spaceForArchive(QFileInfo(directory).absolutePath());
    QString problem = archiveProblem(zipPath, spaceBytes, codec);
    if (!problem.isNull())
        return problem;
    if (!QDir().mkdir(directory))
        return ArchiveCheck::tr("The directory exists already or cannot be created.");

    QuaZip::setDefaultFileNameCodec(codec.constData()); // for all archives of this process
    if (!ZyBase::ZipManager::QuaUnzipFile(zipPath, directory, false))
        return ArchiveCheck::tr("It could not be extracted.");
    const QString missing = missingEntry(directory, zipPath, codec);
    return missing.isNull()
               ? QString()
               : missing + QStringLiteral(": ") + ArchiveCheck::tr("it was not extracted completely");
}
