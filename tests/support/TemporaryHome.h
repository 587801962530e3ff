// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QTemporaryDir>

/** A home of its own for this process and its children while it lives, with every XDG folder inside it. */
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
