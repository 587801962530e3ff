// SPDX-License-Identifier: LGPL-2.1-or-later

// A host application that does what it is told: a JSON array a line on its standard input (command,
// arguments), the answer as a JSON array of one on its standard output, until the input ends.

#include "commands.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Commands commands;
    for (const Commands &family :
         {processCommands(), logCommands(), httpCommands(), fileCommands(), platformCommands(),
          identityCommands(), netCommands(), analyticsCommands()}) {
        for (auto command = family.cbegin(); command != family.cend(); ++command)
            commands.insert(command.key(), command.value());
    }

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
        // What a call left to the event loop happens before the next.
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}
