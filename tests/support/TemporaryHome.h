// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QTemporaryDir>

/**
 * A temporary home directory for this process and its child processes, with all XDG directories in it. The
 * destructor restores the previous home.
 *
 * To have a new home for each test function, use a std::optional and emplace(), which destroys the old object
 * first. Assignment of a new std::unique_ptr restores the real home while the new object exists.
 */
class TemporaryHome
{
public:
    TemporaryHome();
    ~TemporaryHome();

    QString path() const { return m_directory.path(); }
    QString filePath(const QString &name) const { return m_directory.filePath(name); }

private:
    Q_DISABLE_COPY(TemporaryHome)
    void set(const char *variable, const QString &value);

    QTemporaryDir m_directory;
    QMap<QByteArray, QByteArray> m_previous;
};
