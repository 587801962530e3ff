// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QLockFile>
#include <QString>

#include <memory>

/** A folder that one run of the program has to itself, and that no other user can look into. */
class Folder
{
public:
    /** Makes it where it isn't there. */
    explicit Folder(const QString &path);

    /** Empty, or why the folder can't be used. */
    QString error() const { return m_error; }

    /** The absolute path of a file in it. */
    QString filePath(const QString &name) const;

    /** Writes the file whole or not at all. */
    bool write(const QString &name, const QByteArray &content) const;

    void remove(const QString &name) const;

private:
    Q_DISABLE_COPY(Folder)

    const QString m_path;
    QString m_error;
    std::unique_ptr<QLockFile> m_lock;
};
