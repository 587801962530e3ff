// SPDX-License-Identifier: 0BSD
//
// Prints "dark" or "light" now and after each change of the desktop's theme. Press Enter to quit.
//
//     recipe-watching-the-theme [INTERVAL]    INTERVAL: of the queries without a sign, in milliseconds

#include "../PrintLine.h"
#include "ThemeWatcher.h"

#include <QGuiApplication>
#include <QSocketNotifier>

#include <unistd.h>

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);

    ThemeWatcher watcher;
    if (argc > 1)
        watcher.setInterval(std::chrono::milliseconds(QByteArray(argv[1]).toInt()));
    QObject::connect(&watcher, &ThemeWatcher::darkChanged, &application, [](bool isDark) {
        printLine(isDark ? QStringLiteral("dark") : QStringLiteral("light"));
    });

    QSocketNotifier enter(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&enter, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    return QGuiApplication::exec();
}
