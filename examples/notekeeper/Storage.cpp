// SPDX-License-Identifier: 0BSD

#include "Storage.h"

#include <AtomicJson.h>

#include <ZyBase/files/CFileUtils.h>
#include <ZyBase/files/CJsonReader.h>

#include <QJsonArray>

using ZyBase::CFileUtils;
using ZyBase::CJsonReader;

namespace {

const QLatin1String notesKey("notes");
const QLatin1String geometryKey("geometry");
const QLatin1String noteKey("note");

// The object of a damaged file is empty, as if there were no file.
QJsonObject load(const QString &path)
{
    QJsonObject object = CJsonReader::ParseJsonFileToObject(path);
    if (object.isEmpty() && QFile::exists(path))
        QFile::rename(path, CFileUtils::getUniqueFileName(path + QStringLiteral(".damaged"), QString()));
    return object;
}

} // namespace

QStringList Storage::notes() const
{
    return load(notesPath()).value(notesKey).toVariant().toStringList();
}

QString Storage::saveNotes(const QStringList &notes) const
{
    return saveJsonAtomically(notesPath(), {{notesKey, QJsonArray::fromStringList(notes)}});
}

Settings Storage::settings() const
{
    const QJsonObject object = load(settingsPath());
    return {QByteArray::fromBase64(object.value(geometryKey).toString().toLatin1()),
            object.value(noteKey).toInt()};
}

QString Storage::saveSettings(const Settings &settings) const
{
    return saveJsonAtomically(
        settingsPath(),
        {{geometryKey, QString::fromLatin1(settings.geometry.toBase64())}, {noteKey, settings.note}});
}
