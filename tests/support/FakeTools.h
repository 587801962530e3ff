// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/**
 * Programs in a folder of their own that record each call and then do what the test says. A test puts
 * the folder on the PATH as the only one, so that the machine's own programs are out of reach.
 */
class FakeTools
{
public:
    FakeTools() = default;

    /** @p script is what /bin/sh runs after the call is recorded; other programs need their full path. */
    void add(const QString &program, const QByteArray &script);

    QString path() const { return m_directory.path(); }

    /** The calls so far, each as "program [argument] [argument]". */
    QStringList calls() const;

    /** A command for a script that prints just these bytes. */
    static QByteArray print(const QByteArray &bytes);

private:
    Q_DISABLE_COPY(FakeTools)
    QString record() const { return m_directory.filePath(QStringLiteral("calls.txt")); }

    QTemporaryDir m_directory;
};
