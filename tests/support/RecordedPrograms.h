// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/**
 * While it lives, the search path of this process holds nothing but these programs, which do nothing
 * but write down how they were called.
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

    /** A program that runs on for minutes or until it is killed, once it has written down its call. */
    void addEndless(const QString &name);

    /** A program that ends with an error, once it has written down its call. */
    void addFailing(const QString &name);

    /** The calls whose record is complete. */
    QList<Call> calls() const;

private:
    Q_DISABLE_COPY(RecordedPrograms)
    void add(const QString &name, const QByteArray &afterwards);

    QTemporaryDir m_programs;
    QTemporaryDir m_records;
    QByteArray m_previousPath;
};
