// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FaultHost.h"

#include <QElapsedTimer>

FaultHost::FaultHost(bool inOwnProcesses)
{
    const QStringList command {QStringLiteral(ZYBASE_FAULT_HOST)};
    setCommand(inOwnProcesses ? Sandbox::inOwnProcesses(command) : command);
}

FaultHost::Outcome FaultHost::run(const Fault &fault, const QString &command, const QJsonArray &arguments,
                                  int limitMs)
{
    QJsonArray all {int(fault.kind), fault.nth, fault.action, fault.lasts, command};
    for (const QJsonValue &argument : arguments)
        all << argument;
    QElapsedTimer timer;
    timer.start();
    send(QStringLiteral("faults.run"), all);
    Outcome outcome;
    const bool isReadable = hasAnswer(limitMs);
    outcome.durationMs = timer.elapsed();
    if (!isReadable) {
        outcome.hasCrashed = timer.elapsed() < limitMs;
        return outcome;
    }
    const QJsonObject answer = this->answer().toObject();
    outcome.hasEnded = !answer.isEmpty();
    outcome.hasCrashed = !outcome.hasEnded;
    outcome.answer = answer.value(QStringLiteral("answer"));
    outcome.calls = answer.value(QStringLiteral("calls")).toInt();
    outcome.failed = answer.value(QStringLiteral("failed")).toString();
    return outcome;
}
