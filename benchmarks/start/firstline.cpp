// SPDX-License-Identifier: LGPL-2.1-or-later

// Prints a line.

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QTextStream(stdout) << "a line\n";
}
