// SPDX-License-Identifier: LGPL-2.1-or-later

// Shows an empty window.

#include <QApplication>
#include <QMainWindow>

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    QMainWindow window;
    window.show();
    return QApplication::exec();
}
