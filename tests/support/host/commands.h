// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QHash>
#include <QJsonArray>
#include <QJsonValue>
#include <QString>

#include <functional>

/** What the test's host can be told to do: a name to a function of the arguments, whose result is the answer.
 */
using Commands = QHash<QString, std::function<QJsonValue(const QJsonArray &)>>;

Commands processCommands();
Commands logCommands();
Commands httpCommands();
Commands fileCommands();
Commands platformCommands();
Commands identityCommands();
Commands netCommands();
Commands analyticsCommands();
