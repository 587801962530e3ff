// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>

/**
 * A private directory in that of temporary files. While the object exists, QFile and QDir of this process
 * write nothing outside of it: archives can contain any path.
 */
class WriteGuard
{
public:
    WriteGuard();
    ~WriteGuard();

    QString path() const { return m_path; }

    /** Removes all that the directory contains. */
    void clear() const;

private:
    Q_DISABLE_COPY(WriteGuard)

    QString m_path;
};
