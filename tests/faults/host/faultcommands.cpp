// SPDX-License-Identifier: LGPL-2.1-or-later

#include "faultcommands.h"

#include "Faults.h"

#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QRegularExpression>

#include <sys/wait.h>

#include <cerrno>

namespace {

// The arguments are kind, number of the call, action, whether later calls fail too, a command and its
// arguments. Returns the command's result, the number of calls and the function that failed.
QJsonValue run(const Commands &commands, QJsonArray arguments)
{
    const auto kind = Faults::Kind(arguments.takeAt(0).toInt());
    const int nth = arguments.takeAt(0).toInt();
    const int action = arguments.takeAt(0).toInt();
    const bool lasts = arguments.takeAt(0).toBool();
    const auto command = commands.value(arguments.takeAt(0).toString());
    Faults::arm(kind, nth, action, lasts);
    const QJsonValue answer = command(arguments);
    Faults::disarm();
    return QJsonObject {{QStringLiteral("answer"), answer},
                        {QStringLiteral("calls"), Faults::callCount()},
                        {QStringLiteral("failed"), QString::fromLatin1(Faults::failedFunction())}};
}

// Returns what the process has open, without numbers that differ each time.
QJsonArray openFiles()
{
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    const QRegularExpression digits(QStringLiteral("[0-9]"));
    QStringList targets;
    const QStringList numbers = descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &number : numbers) {
        const QString target = QFile::symLinkTarget(descriptors.filePath(number));
        if (!target.isEmpty() && !target.startsWith(QLatin1String("/proc/")))
            targets << target.section(QLatin1Char('/'), -1).remove(digits);
    }
    targets.sort();
    return QJsonArray::fromStringList(targets);
}

QJsonValue state(const QJsonArray &)
{
    const QDir threads(QStringLiteral("/proc/self/task"));
    const bool hasChildren = ::waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD;
    return QJsonObject {
        {QStringLiteral("open files"), openFiles()},
        {QStringLiteral("threads"), threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size()},
        {QStringLiteral("has children"), hasChildren},
        {QStringLiteral("has signalled all processes"), Faults::hasSignalledAll()}};
}

} // namespace

Commands faultCommands(const Commands &commands)
{
    return {{QStringLiteral("faults.run"),
             [commands](const QJsonArray &arguments) { return run(commands, arguments); }},
            {QStringLiteral("faults.state"), state}};
}
