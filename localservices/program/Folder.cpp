// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Folder.h"

#include <QDir>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t onlyMine = 0700;
constexpr mode_t others = 0077;

bool create(const QString &path)
{
    QDir().mkpath(QFileInfo(path).path());
    return ::mkdir(QFile::encodeName(path).constData(), onlyMine) == 0 || QFileInfo(path).isDir();
}

bool isPrivate(const QString &path)
{
    struct stat info;
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 && info.st_uid == ::geteuid()
           && (info.st_mode & others) == 0;
}

} // namespace

Folder::Folder(const QString &path)
    : m_path(QDir::cleanPath(QDir(path).absolutePath()))
    , m_lock(std::make_unique<QLockFile>(filePath(QStringLiteral("lock"))))
{
    m_lock->setStaleLockTime(0); // a lock is stale only if its process has ended
    if (!create(m_path))
        m_error = QStringLiteral("the folder %1 cannot be created").arg(m_path);
    else if (!isPrivate(m_path))
        m_error =
            QStringLiteral("other users can read the folder %1; use --folder to choose another").arg(m_path);
    else if (!m_lock->tryLock())
        m_error =
            QStringLiteral("the folder %1 is used by another local-services or is not writable").arg(m_path);
}

QString Folder::filePath(const QString &name) const
{
    return m_path + QLatin1Char('/') + name;
}

void Folder::remove(const QString &name) const
{
    QFile::remove(filePath(name));
}
