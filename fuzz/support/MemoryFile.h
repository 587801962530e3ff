// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QString>

/** A file in memory with a path that QFile opens. */
class MemoryFile
{
public:
    MemoryFile();
    ~MemoryFile();

    QString path() const { return m_path; }

    QByteArray read() const;

    /** Replaces the content. */
    void write(const QByteArray &content);

private:
    Q_DISABLE_COPY(MemoryFile)

    int m_descriptor;
    QString m_path;
};
