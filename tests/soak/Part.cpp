// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Part.h"

#include "Files.h"

#include <JlCompress.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>

QStringList usualParts()
{
    return {QStringLiteral("log"),     QStringLiteral("requests"), QStringLiteral("downloads"),
            QStringLiteral("archive"), QStringLiteral("theme"),    QStringLiteral("reports"),
            QStringLiteral("address"), QStringLiteral("files"),    QStringLiteral("qrcode")};
}

bool waitUntil(const std::function<bool()> &condition, int timeoutMs)
{
    constexpr int intervalMs = 2;
    const QDeadlineTimer deadline(timeoutMs);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        runEventLoop(intervalMs);
    }
    return true;
}

void runEventLoop(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

bool writeCatalogue(const QString &path, int count)
{
    QJsonArray events;
    for (int i = 0; i < count; ++i)
        events.append(QJsonObject {{QStringLiteral("event_key"), QStringLiteral("key%1").arg(i)},
                                   {QStringLiteral("event_name"), QStringLiteral("open_file")},
                                   {QStringLiteral("event_category"), QStringLiteral("files")},
                                   {QStringLiteral("event_label"), QStringLiteral("label%1").arg(i)}});
    return writeFile(path, QJsonDocument(events).toJson(QJsonDocument::Compact));
}

bool writeArchive(const QString &path, const QString &directory)
{
    constexpr int files = 5;
    constexpr int fileBytes = 20000;
    QStringList names;
    QDir().mkpath(directory);
    for (int i = 0; i < files; ++i) {
        names << QStringLiteral("%1/file%2.txt").arg(directory).arg(i);
        if (!writeFile(names.last(), QByteArray(fileBytes, char('a' + i))))
            return false;
    }
    return JlCompress::compressFiles(path, names);
}
