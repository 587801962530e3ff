// SPDX-License-Identifier: 0BSD

// Shows blocking calls in a window, and how to prevent a second click during the call.
//
//     recipe-blocking-calls-and-the-interface ADDRESS [plain|disabling|thread|closing]
//
// With a second argument the program clicks that button twice, or closes the window during the call, and then
// quits. Use an address that answers slowly.

#include "../PrintLine.h"
#include "Window.h"

#include <QApplication>
#include <QTimer>

namespace {

constexpr int secondClickMs = 100;
constexpr int quitAfterClosingMs = 2000;

void clickTwice(QPushButton *button)
{
    const auto click = [button] {
        button->click();
        printLine(QStringLiteral("The click is handled"));
    };
    QTimer::singleShot(0, button, click);
    QTimer::singleShot(secondClickMs, button, click);
}

void closeDuringCall(Window *window)
{
    QTimer::singleShot(0, window->disablingButton(), &QPushButton::click);
    QTimer::singleShot(secondClickMs, window, [window] {
        delete window;
        printLine(QStringLiteral("The window is closed"));
        QTimer::singleShot(quitAfterClosingMs, qApp, &QApplication::quit);
    });
}

void simulateUser(Window *window, const QString &action)
{
    if (action == QLatin1String("plain"))
        clickTwice(window->plainButton());
    if (action == QLatin1String("disabling"))
        clickTwice(window->disablingButton());
    if (action == QLatin1String("thread"))
        clickTwice(window->threadButton());
    if (action == QLatin1String("closing"))
        closeDuringCall(window);
}

void quit(Window *window)
{
    for (const QPushButton *const button :
         {window->plainButton(), window->disablingButton(), window->threadButton()}) {
        if (!button->isEnabled())
            printLine(QStringLiteral("A button is still disabled"));
    }
    QApplication::quit();
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const QString action = arguments.value(2);

    auto *const window = new Window(QUrl(arguments.value(1)));
    window->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(window, &Window::started, &application,
                     [](int running) { printLine(QStringLiteral("Running: %1").arg(running)); });
    QObject::connect(window, &Window::answered, window,
                     [window, action](const QByteArray &answer, int running) {
                         printLine(QStringLiteral("Answered with %1 bytes").arg(answer.size()));
                         if (running == 0 && !action.isEmpty())
                             QTimer::singleShot(0, window, [window] { quit(window); });
                     });
    window->show();
    simulateUser(window, action);
    return QApplication::exec();
}
