// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Sweep.h"

#include "FullSweep.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonArray>
#include <QRegularExpression>
#include <QThread>

#include <cerrno>
#include <cstring>

using Faults::Kind;

namespace {

constexpr int longestSweep = 2000; // calls of one operation
constexpr int longestReport = 5; // calls with a wrong outcome
constexpr int cleanUpMs = 5000;

struct KindOfCall
{
    Kind kind;
    const char *name;
    QList<int> actions; // the first one is the sample
};

const QList<KindOfCall> &kindsOfCalls()
{
    static const QList<KindOfCall> kinds {
        {Kind::Open, "open", {EACCES, EMFILE, EIO, ENOMEM, ENOSPC, EINTR}},
        {Kind::Read, "read", {EIO, EINTR, Faults::Shorten}},
        {Kind::Write, "write", {ENOSPC, EIO, EDQUOT, EINTR, Faults::Shorten}},
        {Kind::Receive, "receive", {Faults::Shorten, ECONNRESET, ENOMEM, EINTR}},
        {Kind::Send, "send", {Faults::Shorten, ECONNRESET, ENOBUFS, EINTR}},
        {Kind::Close, "close", {EIO, ENOSPC, EDQUOT}},
        {Kind::Sync, "sync", {EIO, ENOSPC, EDQUOT}},
        {Kind::Seek, "seek", {EIO}},
        {Kind::Truncate, "truncate", {EIO, ENOSPC}},
        {Kind::Rename, "rename", {EACCES, EIO, ENOSPC, EDQUOT}},
        {Kind::MakeDirectory, "mkdir", {EACCES, EIO, ENOSPC, EDQUOT}},
        {Kind::Remove, "unlink", {EACCES, EIO}},
        {Kind::Stat, "stat", {EACCES, EIO, ENOMEM}},
        {Kind::Permissions, "chmod", {EACCES, EIO}},
        {Kind::Lock, "lock", {ENOLCK, EINTR}},
        {Kind::Descriptor, "pipe", {EMFILE}},
        {Kind::Socket, "socket", {EMFILE, EACCES, ENOMEM}},
        {Kind::Connect, "connect", {EACCES, ECONNREFUSED, ENETUNREACH, EINTR}},
        {Kind::Poll, "poll", {EINTR, ENOMEM}},
        {Kind::Thread, "thread", {EAGAIN}},
        {Kind::Process, "process", {EAGAIN, ENOMEM}}};
    return kinds;
}

QString nameOfAction(int action)
{
    return action == Faults::Shorten ? QStringLiteral("half of the bytes")
                                     : QString::fromLatin1(std::strerror(action));
}

// An interrupted call is repeated by Qt, and a call that waits must succeed at some time.
bool canLast(Kind kind, int action)
{
    return action != EINTR && kind != Kind::Poll;
}

QStringList openFiles(const QJsonObject &state)
{
    QStringList files;
    const QJsonArray names = state.value(QStringLiteral("open files")).toArray();
    for (const QJsonValue &name : names)
        files << name.toString();
    return files;
}

} // namespace

Sweep::Sweep(QList<Operation> operations, QList<Exclusion> exclusions)
    : m_operations(std::move(operations))
    , m_exclusions(std::move(exclusions))
{
}

void Sweep::writeFigures()
{
    QFile file(QString::fromLocal8Bit(qgetenv("ZYBASE_ALL_FAULTS")));
    if (!FullSweep::isOn() || !file.open(QIODevice::Append))
        return;
    for (auto outcome = m_outcomes.cbegin(); outcome != m_outcomes.cend(); ++outcome)
        file.write("faults\t" + QByteArray::number(outcome.value()) + '\n' + outcome.key().toUtf8() + '\t'
                   + QByteArray::number(outcome.value()) + '\n');
    m_outcomes.clear();
}

QString Sweep::reasonToSkip()
{
    return Sandbox::hasOwnProcesses()
               ? QString()
               : QStringLiteral("bubblewrap is not installed, or may not make a process namespace here");
}

QString Sweep::reasonToExclude(const QString &row) const
{
    for (const Exclusion &exclusion : m_exclusions) {
        if (!(exclusion.isTestedInFull && FullSweep::isOn())
            && row.contains(QRegularExpression(exclusion.pattern)))
            return exclusion.reason;
    }
    return {};
}

void Sweep::addRows(const QList<Kind> &kinds) const
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("action");
    QTest::addColumn<bool>("lasts");
    QTest::addColumn<bool>("isFirstCall");
    for (int operation = 0; operation < m_operations.size(); ++operation) {
        for (const KindOfCall &call : kindsOfCalls()) {
            if (!kinds.contains(call.kind))
                continue;
            const QList<int> actions = FullSweep::isOn() ? call.actions : call.actions.mid(0, 1);
            for (const int action : actions) {
                for (const bool lasts : {false, true}) {
                    for (const bool isFirstCall : {false, true}) {
                        if ((lasts && !canLast(call.kind, action))
                            || (!FullSweep::isOn() && (lasts || isFirstCall)) || !FullSweep::takesNextRow())
                            continue;
                        const QString name =
                            QStringLiteral("%1, %2: %3%4%5")
                                .arg(m_operations.at(operation).name, QString::fromLatin1(call.name),
                                     nameOfAction(action),
                                     lasts ? QStringLiteral(", and each later one") : QString(),
                                     isFirstCall ? QStringLiteral(", first call of a process") : QString());
                        QTest::newRow(qPrintable(name))
                            << operation << int(call.kind) << action << lasts << isFirstCall;
                    }
                }
            }
        }
    }
}

void Sweep::startHost(const Operation &operation)
{
    m_host = std::make_unique<FaultHost>();
    operation.install(*m_host);
    QVERIFY(m_host->start());
    operation.setUp(*m_host);
}

void Sweep::startWithoutFault(const Operation &operation)
{
    startHost(operation);
    operation.prepare(*m_host);
    QCOMPARE(runAgain(operation), QString());
    QCOMPARE(runAgain(operation), QString());
    m_baseState = m_host->state().toObject();
}

// Returns what the process has open or running, and had not before the faults.
QString Sweep::whatIsLeft()
{
    QString left;
    for (const QDeadlineTimer deadline(cleanUpMs); !deadline.hasExpired(); QThread::msleep(1)) {
        const QJsonObject state = m_host->state().toObject();
        QStringList files = openFiles(state);
        const QStringList before = openFiles(m_baseState);
        for (const QString &file : before)
            files.removeOne(file);
        const QString threads = QStringLiteral("threads");
        left = files.join(QLatin1String(", "));
        if (state.value(threads).toInt() > m_baseState.value(threads).toInt())
            left += QLatin1String(" a thread");
        if (state.value(QStringLiteral("has children")).toBool())
            left += QLatin1String(" a child process");
        if (left.isEmpty())
            return state.value(QStringLiteral("has signalled all processes")).toBool()
                       ? QStringLiteral("sent a signal to all processes")
                       : QString();
    }
    return QStringLiteral("left: ") + left;
}

QString Sweep::runWithoutFault(const Operation &operation)
{
    const FaultHost::Outcome result =
        m_host->run(Fault(), operation.command, operation.arguments, ChildProcess::timeoutMs);
    return result.hasEnded ? operation.outcome(result.answer) : QStringLiteral("no return");
}

bool Sweep::isExpected(const Operation &operation, const QString &outcome)
{
    return outcome == operation.success || outcome == operation.rare;
}

QString Sweep::runAgain(const Operation &operation)
{
    const QString outcome = runWithoutFault(operation);
    return isExpected(operation, outcome) || operation.promisedNext.contains(outcome)
               ? QString()
               : QStringLiteral("the next call: ") + outcome;
}

// Returns a description of what is wrong after the fault, or an empty string.
QString Sweep::testFault(const Operation &operation, const Fault &fault, bool *isLast)
{
    operation.prepare(*m_host);
    const FaultHost::Outcome result =
        m_host->run(fault, operation.command, operation.arguments, operation.limitMs);
    if (result.hasCrashed)
        return QStringLiteral("the process ended: ") + m_host->standardError();
    if (!result.hasEnded)
        return QStringLiteral("no return within %1 ms").arg(operation.limitMs);
    QString outcome = operation.outcome(result.answer);
    *isLast = result.failed.isEmpty();
    if (*isLast && outcome == operation.rare)
        outcome = runWithoutFault(operation);
    if (*isLast)
        return outcome == operation.success ? QString() : QStringLiteral("without a fault: ") + outcome;
    ++m_outcomes[operation.name + QLatin1String(": ") + outcome];
    if (!isExpected(operation, outcome) && !operation.promised.contains(outcome))
        return result.failed + QLatin1String(": ") + outcome;
    QString wrong = runAgain(operation);
    if (wrong.isEmpty())
        wrong = whatIsLeft();
    return wrong.isEmpty() ? wrong
                           : result.failed + QLatin1String(": ") + outcome + QLatin1String(", ") + wrong;
}

void Sweep::testRow()
{
    QFETCH(int, operation);
    QFETCH(int, kind);
    QFETCH(int, action);
    QFETCH(bool, lasts);
    QFETCH(bool, isFirstCall);
    const Operation &tested = m_operations.at(operation);
    Fault fault {Kind(kind), 0, action, lasts};
    const QString excluded = reasonToExclude(QString::fromUtf8(QTest::currentDataTag()));
    if (!excluded.isEmpty())
        QSKIP(qPrintable(QStringLiteral("not tested: ") + excluded));

    if (!m_host || m_current != operation || isFirstCall)
        startWithoutFault(tested);
    m_current = operation;

    QStringList wrong;
    bool isLast = false;
    const int lastCall = tested.onlyFirst.contains(fault.kind) ? 1 : longestSweep;
    while (!isLast && fault.nth < lastCall) {
        ++fault.nth;
        if (isFirstCall)
            startHost(tested);
        const QString report = testFault(tested, fault, &isLast);
        if (report.isEmpty())
            continue;
        wrong << QStringLiteral("call %1: %2").arg(fault.nth).arg(report);
        startWithoutFault(tested);
        if (wrong.size() > longestReport)
            break;
    }
    if (isFirstCall)
        m_host.reset();
    writeFigures();
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(QLatin1Char('\n'))));
    QVERIFY(isLast || fault.nth == 1);
}
