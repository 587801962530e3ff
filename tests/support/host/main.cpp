// SPDX-License-Identifier: LGPL-2.1-or-later

// A host application that runs commands until its standard input ends. Each line of the input is a JSON array
// of a command and its arguments. The result is printed as a JSON array with one element.

#include "commands.h"

#ifdef ZYBASE_FAULTS
#include "faultcommands.h"
#endif

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Commands commands;
    for (const Commands &family :
         {processCommands(), logCommands(), httpCommands(), requestCommands(), fileCommands(),
          platformCommands(), identityCommands(), netCommands(), analyticsCommands()}) {
        for (auto command = family.cbegin(); command != family.cend(); ++command)
            commands.insert(command.key(), command.value());
    }
#ifdef ZYBASE_FAULTS
    const Commands faults = faultCommands(commands);
    for (auto command = faults.cbegin(); command != faults.cend(); ++command)
        commands.insert(command.key(), command.value());
#endif

    QFile input;
    QFile output;
    if (!input.open(stdin, QIODevice::ReadOnly) || !output.open(stdout, QIODevice::WriteOnly))
        return 1;
    while (true) {
        const QByteArray line = input.readLine();
        if (line.isEmpty())
            return 0;
        QJsonArray arguments = QJsonDocument::fromJson(line).array();
        const auto command = commands.constFind(arguments.takeAt(0).toString());
        if (command == commands.cend())
            return 2;
        const QJsonValue answer = (*command)(arguments);
        output.write(QJsonDocument(QJsonArray {answer}).toJson(QJsonDocument::Compact) + '\n');
        output.flush();
        // Runs what the call has queued, before the next command.
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}
