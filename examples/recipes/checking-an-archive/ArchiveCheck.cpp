// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ArchiveCheck.h"

#include <QDir>
#include <QFile>
#include <QTextCodec>

#include <quacrc32.h>
#include <quazip.h>
#include <quazipfileinfo.h>

namespace {

constexpr quint16 encrypted = 0x0001; // of an entry's flags
constexpr quint16 markedAsUtf8 = 0x0800;
constexpr quint64 largestEntry = 0x7fffffff; // more is cut off
constexpr int chunk = 1 << 20;

bool isDirectory(const QuaZipFileInfo64 &entry)
{
    return entry.name.endsWith(QLatin1Char('/'));
}

bool staysInside(const QString &name)
{
    const QString clean = QDir::cleanPath(name);
    return !QDir::isAbsolutePath(clean) && clean != QLatin1String("..")
           && !clean.startsWith(QLatin1String("../"));
}

QString objectionTo(const QuaZipFileInfo64 &entry, quint64 room)
{
    if (!staysInside(entry.name))
        return QStringLiteral("it would be written outside the directory");
    if (entry.isSymbolicLink())
        return QStringLiteral("it is a link");
    if ((entry.flags & encrypted) != 0)
        return QStringLiteral("it is encrypted");
    if (entry.uncompressedSize > largestEntry)
        return QStringLiteral("it is too large");
    if (entry.uncompressedSize > room)
        return QStringLiteral("there is no room for it");
    return QString();
}

quint32 checkSum(QFile &file)
{
    QuaCrc32 sum;
    while (!file.atEnd())
        sum.update(file.read(chunk));
    return sum.value();
}

bool isIn(const QDir &directory, const QuaZipFileInfo64 &entry)
{
    QFile file(directory.filePath(entry.name));
    return isDirectory(entry) ? file.exists() : file.open(QIODevice::ReadOnly) && checkSum(file) == entry.crc;
}

} // namespace

QString objectionTo(const QString &zipPath, quint64 room, const QByteArray &codec)
{
    QuaZip zip(zipPath);
    zip.setFileNameCodec(codec.constData());
    if (!zip.open(QuaZip::mdUnzip))
        return QStringLiteral("It is no archive.");
    const auto entries = zip.getFileInfoList64();
    for (const QuaZipFileInfo64 &entry : entries) {
        const QString objection = objectionTo(entry, room);
        if (!objection.isNull())
            return entry.name + QStringLiteral(": ") + objection;
        room -= entry.uncompressedSize;
    }
    return QString();
}

QByteArray nameCodec(const QString &zipPath, const QByteArray &codecOfOthers)
{
    QuaZip zip(zipPath);
    zip.setFileNameCodec("ISO-8859-1"); // a character for each byte
    zip.open(QuaZip::mdUnzip);
    const auto entries = zip.getFileInfoList64();
    const QTextCodec *const utf8 = QTextCodec::codecForName("UTF-8");
    for (const QuaZipFileInfo64 &entry : entries) {
        if ((entry.flags & markedAsUtf8) != 0)
            continue;
        const QByteArray bytes = entry.name.toLatin1();
        QTextCodec::ConverterState state;
        utf8->toUnicode(bytes.constData(), bytes.size(), &state);
        if (state.invalidChars > 0 || state.remainingChars > 0)
            return codecOfOthers;
    }
    return QByteArrayLiteral("UTF-8");
}

QString lackIn(const QString &directory, const QString &zipPath, const QByteArray &codec)
{
    QuaZip zip(zipPath);
    zip.setFileNameCodec(codec.constData());
    zip.open(QuaZip::mdUnzip);
    const auto entries = zip.getFileInfoList64();
    for (const QuaZipFileInfo64 &entry : entries) {
        if (!isIn(QDir(directory), entry))
            return entry.name;
    }
    return QString();
}
