// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/**
 * Programs in a temporary directory. Each one records its call and then runs a script of the test. Set PATH
 * to this directory only, so that no program of the machine is found.
 */
class FakeTools
{
public:
    FakeTools() = default;

    /** Adds a program. @p script is run by /bin/sh; it needs the full paths of other programs. */
    void add(const QString &program, const QByteArray &script);

    QString path() const { return m_directory.path(); }

    /** Returns the calls so far, each as "program [argument] [argument]". */
    QStringList calls() const;

    /** Returns a shell command that prints these bytes. */
    static QByteArray print(const QByteArray &bytes);

private:
    Q_DISABLE_COPY(FakeTools)
    QString record() const { return m_directory.filePath(QStringLiteral("calls.txt")); }

    QTemporaryDir m_directory;
};
