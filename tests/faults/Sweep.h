// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "FaultHost.h"

#include <QMap>
#include <QTest>

#include <functional>
#include <memory>

/** One call of the library, and what an application can find after it. */
struct Operation
{
    QString name;
    QString command;
    QJsonArray arguments;

    /** Prepares the files, and the host if necessary. Called before each fault. */
    std::function<void(FaultHost &)> prepare;

    /** Describes the result of the call and the files that it left. Outcomes not in @c promised are errors.
     */
    std::function<QString(const QJsonValue &)> outcome;

    /** The outcome without a fault, and of the next call after a fault. */
    QString success;

    /** The other outcomes that the documentation allows. */
    QStringList promised;

    /** Outcomes of the next call that the documentation allows, besides success. */
    QStringList promisedNext;

    /** An outcome that each call can have, but rarely. Without a fault, no second call in a row has it. */
    QString rare;

    /** Only the first call of these kinds fails. */
    QList<Faults::Kind> onlyFirst;

    /** The longest time of the call. */
    int limitMs = 30000;

    /** Changes the environment of a process that is then started. */
    std::function<void(FaultHost &)> install = [](FaultHost &) {};

    /** Sets up a process that was just started. */
    std::function<void(FaultHost &)> setUp = [](FaultHost &) {};
};

/** Rows that are not tested. */
struct Exclusion
{
    QString pattern; ///< a regular expression for a part of the row's name
    QString reason;
    bool isTestedInFull = false; ///< the full sweep tests it: it takes long
};

/**
 * Runs an operation with a fault in its first system call of a kind, then in its second, and so on, until it
 * ends without a fault. After each fault the operation must have had a promised outcome in time, the next
 * call must succeed, and no open file, thread or child process may be left.
 *
 * The environment variable ZYBASE_ALL_FAULTS selects all errors instead of one for each kind. It names a file
 * to which the numbers of faults and outcomes are appended after each row.
 */
class Sweep
{
public:
    explicit Sweep(QList<Operation> operations, QList<Exclusion> exclusions = {});

    /** Skips the test program if it cannot run here. */
    static QString reasonToSkip();

    /** Adds one row for each operation, kind of call and error. */
    void addRows(const QList<Faults::Kind> &kinds) const;

    /** Tests the current row. */
    void testRow();

private:
    Q_DISABLE_COPY(Sweep)

    QString reasonToExclude(const QString &row) const;
    void startHost(const Operation &operation);
    void startWithoutFault(const Operation &operation);
    QString testFault(const Operation &operation, const Fault &fault, bool *isLast);
    QString runWithoutFault(const Operation &operation);
    static bool isExpected(const Operation &operation, const QString &outcome);
    QString runAgain(const Operation &operation);
    QString whatIsLeft();
    void writeFigures();

    const QList<Operation> m_operations;
    const QList<Exclusion> m_exclusions;
    std::unique_ptr<FaultHost> m_host;
    int m_current = -1; ///< the operation of the host
    QJsonObject m_baseState; ///< after calls without a fault
    QMap<QString, int> m_outcomes; ///< of the current row
};
