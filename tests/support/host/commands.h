// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QHash>
#include <QJsonArray>
#include <QJsonValue>
#include <QString>

#include <functional>

/** The functions of the host program by their names. Each one gets the arguments and returns the result. */
using Commands = QHash<QString, std::function<QJsonValue(const QJsonArray &)>>;

Commands processCommands();
Commands logCommands();
Commands httpCommands();
Commands requestCommands();
Commands fileCommands();
Commands platformCommands();
Commands identityCommands();
Commands netCommands();
Commands analyticsCommands();
