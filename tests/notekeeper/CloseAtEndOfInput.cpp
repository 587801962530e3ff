// SPDX-License-Identifier: LGPL-2.1-or-later

// Makes a program close its windows, as a user does, when its standard input ends.

#include <QApplication>
#include <QSocketNotifier>

#include <unistd.h>

namespace {

void watchInput()
{
    auto *const input = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, qApp);
    QObject::connect(input, &QSocketNotifier::activated, qApp, [input] {
        char byte = 0;
        if (read(STDIN_FILENO, &byte, 1) > 0)
            return;
        input->setEnabled(false);
        QApplication::closeAllWindows();
    });
}

// Runs in the constructor of the application object.
void watchInputLater()
{
    QMetaObject::invokeMethod(qApp, &watchInput, Qt::QueuedConnection);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watchInputLater)
