// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Part.h"

#include "Files.h"
#include "catalogue.h"

#include <JlCompress.h>

QString Surroundings::archive() const
{
    constexpr int files = 5;
    constexpr int fileBytes = 20000;
    const QString archive = path("archive.zip");
    QStringList names;
    while (!QFile::exists(archive) && names.size() < files) {
        names << path("file%1.txt").arg(names.size());
        writeFile(names.last(), QByteArray(fileBytes, char('a' + names.size())));
    }
    if (!names.isEmpty())
        JlCompress::compressFiles(archive, names);
    return archive;
}

QString Surroundings::catalogue(int eventCount) const
{
    const QString catalogue = path("events%1.json").arg(eventCount);
    if (!QFile::exists(catalogue))
        writeFile(catalogue, QJsonDocument(createCatalogue(eventCount)).toJson());
    return catalogue;
}
