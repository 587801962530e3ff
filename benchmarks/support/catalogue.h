// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

/** Returns a catalogue of events with the keys "key_0", "key_1" and so on. */
inline QJsonArray createCatalogue(int eventCount)
{
    QJsonArray events;
    for (int i = 0; i < eventCount; ++i) {
        events.append(QJsonObject {{QStringLiteral("event_key"), QStringLiteral("key_%1").arg(i)},
                                   {QStringLiteral("event_name"), QStringLiteral("click")},
                                   {QStringLiteral("event_category"), QStringLiteral("toolbar")},
                                   {QStringLiteral("event_label"), QStringLiteral("button %1").arg(i)}});
    }
    return events;
}

/** Writes a catalogue to a file in the directory and returns its path. */
inline QString writeCatalogue(const QTemporaryDir &directory, int eventCount)
{
    QFile file(directory.filePath(QStringLiteral("events.json")));
    file.open(QIODevice::WriteOnly);
    file.write(QJsonDocument(createCatalogue(eventCount)).toJson());
    return file.fileName();
}
