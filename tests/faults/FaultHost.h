// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "host/Faults.h"

#include <HostProcess.h>

#include <QJsonObject>

/** One fault. */
struct Fault
{
    Faults::Kind kind = Faults::Kind::Any;
    int nth = 0; ///< the call that fails; 0 for none
    int action = 0; ///< an errno or a Faults::Action
    bool lasts = false; ///< all later calls fail, too
};

/**
 * A host application whose system calls can fail. By default it runs in a process namespace of its own: a
 * signal that it sends to all processes reaches no other one.
 */
class FaultHost : public HostProcess
{
public:
    /** Prepares the program. It shares the namespace of this process if @p inOwnProcesses is false. */
    explicit FaultHost(bool inOwnProcesses = true);

    /** The end of a command. */
    struct Outcome
    {
        bool hasEnded = false; ///< false if there was no answer in time, or the process ended
        bool hasCrashed = false;
        QJsonValue answer;
        int calls = 0; ///< calls of the fault's kind
        QString failed; ///< the function that failed; empty if none did
        qint64 durationMs = 0;
    };

    /** Runs a command while one of its system calls fails. */
    Outcome run(const Fault &fault, const QString &command, const QJsonArray &arguments, int limitMs);

    /** Returns open files, threads and child processes. */
    QJsonValue state() { return call(QStringLiteral("faults.state")); }
};
