// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Prints "dark" or "light" now and whenever the user switches the desktop's theme; Enter ends it.
//
//     recipe-watching-the-theme [INTERVAL]    INTERVAL: of asking without a sign, in milliseconds

#include "ThemeWatcher.h"

#include <QGuiApplication>
#include <QSocketNotifier>
#include <QTextStream>

#include <unistd.h>

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QTextStream out(stdout);

    ThemeWatcher watcher;
    if (argc > 1)
        watcher.setInterval(std::chrono::milliseconds(QByteArray(argv[1]).toInt()));
    QObject::connect(&watcher, &ThemeWatcher::darkChanged, [&](bool isDark) {
        out << (isDark ? "dark\n" : "light\n");
        out.flush();
    });

    QSocketNotifier enter(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&enter, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    return QGuiApplication::exec();
}
