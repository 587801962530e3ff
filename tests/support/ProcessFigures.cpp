// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ProcessFigures.h"

#include "Files.h"

#include <QDir>

namespace {

int entryCount(const QString &directory)
{
    return int(QDir(directory).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System).size());
}

qint64 statusBytes(const QByteArray &key)
{
    const QList<QByteArray> lines = readFile(QStringLiteral("/proc/self/status")).split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(key + ':'))
            return line.mid(key.size() + 1).replace("kB", "").trimmed().toLongLong() * 1024;
    }
    return -1;
}

} // namespace

namespace ProcessFigures {

int threadCount()
{
    return entryCount(QStringLiteral("/proc/self/task"));
}

int openFileCount()
{
    return entryCount(QStringLiteral("/proc/self/fd"));
}

int childCount()
{
    int count = 0;
    const QDir threads(QStringLiteral("/proc/self/task"));
    const QStringList names = threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &name : names)
        count += readFile(threads.filePath(name + QStringLiteral("/children"))).count(' ');
    return count;
}

qint64 residentBytes()
{
    return statusBytes("RssAnon");
}

} // namespace ProcessFigures
