// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/**
 * Programs that only record their calls. Until the object is destroyed, the search path of this process
 * contains no other programs.
 */
class RecordedPrograms
{
public:
    struct Call
    {
        qint64 processId;
        QStringList command;
    };

    explicit RecordedPrograms(const QStringList &names = {});
    ~RecordedPrograms();

    /** Adds a program that runs for five minutes after it has recorded its call. */
    void addEndless(const QString &name);

    /** Adds a program that returns exit code 1 after it has recorded its call. */
    void addFailing(const QString &name);

    /** Returns the completely recorded calls. */
    QList<Call> calls() const;

private:
    Q_DISABLE_COPY(RecordedPrograms)
    void add(const QString &name, const QByteArray &afterwards);

    QTemporaryDir m_programs;
    QTemporaryDir m_records;
    QByteArray m_previousPath;
};
