// SPDX-License-Identifier: 0BSD

#include "LogDirectory.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

const QLatin1String monthPattern("yyyy-MM");
const QLatin1String monthWildcard(".[0-9][0-9][0-9][0-9]-[0-9][0-9]");

// The log renames its file only if the process is running when a month ends.
void renameEarlierMonth(const QString &path)
{
    const QString month = QFileInfo(path).lastModified().toString(monthPattern);
    if (!month.isEmpty() && month < QDateTime::currentDateTime().toString(monthPattern))
        QFile::rename(path, path + QLatin1Char('.') + month); // fails if that file exists
}

void deleteOldMonths(QDir folder, const QString &fileName, int keptMonths)
{
    const QStringList months = folder.entryList({fileName + monthWildcard}, QDir::Files, QDir::Name);
    for (int i = 0; i < months.size() - keptMonths; ++i)
        folder.remove(months.at(i));
}

} // namespace

LogDirectory prepareLogDirectory(const QString &fileName, int keptMonths)
{
    const QString base = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    const QDir folder(base + QStringLiteral("/log"));
    if (!folder.mkpath(QStringLiteral(".")))
        return {QString(), QCoreApplication::translate("LogDirectory", "The directory %1 can't be created.")
                               .arg(folder.path())};
    QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    renameEarlierMonth(folder.filePath(fileName));
    deleteOldMonths(folder, fileName, keptMonths);

    QFile file(folder.filePath(fileName));
    if (!file.open(QIODevice::Append)) // the only reliable test
        return {QString(), QStringLiteral("%1: %2.").arg(file.fileName(), file.errorString())};
    return {base, QString()};
}
