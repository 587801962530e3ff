// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QLockFile>
#include <QString>

#include <memory>

/** The private directory of one run. Only one run can use it, and other users cannot read it. */
class Folder
{
public:
    /** Creates the directory if it does not exist. */
    explicit Folder(const QString &path);

    /** Returns why the directory cannot be used, or an empty string if it can. */
    QString error() const { return m_error; }

    /** Returns the absolute path of the directory. */
    QString path() const { return m_path; }

    /** Returns the absolute path of a file in the directory. */
    QString filePath(const QString &name) const;

    /** Removes a file of the directory if it exists. */
    void remove(const QString &name) const;

private:
    Q_DISABLE_COPY(Folder)

    const QString m_path;
    QString m_error;
    std::unique_ptr<QLockFile> m_lock;
};
