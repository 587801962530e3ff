// SPDX-License-Identifier: LGPL-2.1-or-later

// Shows calls that block while the window stays alive, and how a second click is held off meanwhile.
//
//     recipe-blocking-calls-and-the-interface ADDRESS [plain|disabling|thread|closing]
//
// With a second argument a user in a hurry clicks that button twice, or closes the window between, and the
// host quits afterwards. Take an address that takes its time.

#include "Window.h"

#include <QApplication>
#include <QTextStream>
#include <QTimer>

namespace {

constexpr int secondClickMs = 100;
constexpr int afterClosingMs = 2000;

void say(const QString &line)
{
    QTextStream(stdout) << line << '\n';
}

void clickTwice(QPushButton *button)
{
    const auto click = [button] {
        button->click();
        say(QStringLiteral("The click is over"));
    };
    QTimer::singleShot(0, button, click);
    QTimer::singleShot(secondClickMs, button, click);
}

void closeWhileItAsks(Window *window)
{
    QTimer::singleShot(0, window->disablingButton(), &QPushButton::click);
    QTimer::singleShot(secondClickMs, window, [window] {
        delete window;
        say(QStringLiteral("The window is closed"));
        QTimer::singleShot(afterClosingMs, qApp, &QApplication::quit);
    });
}

void beInAHurry(Window *window, const QString &how)
{
    if (how == QLatin1String("plain"))
        clickTwice(window->plainButton());
    if (how == QLatin1String("disabling"))
        clickTwice(window->disablingButton());
    if (how == QLatin1String("thread"))
        clickTwice(window->threadButton());
    if (how == QLatin1String("closing"))
        closeWhileItAsks(window);
}

void quit(Window *window)
{
    for (const QPushButton *const button :
         {window->plainButton(), window->disablingButton(), window->threadButton()}) {
        if (!button->isEnabled())
            say(QStringLiteral("A button is left disabled"));
    }
    QApplication::quit();
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const QString hurry = arguments.value(2);

    auto *const window = new Window(QUrl(arguments.value(1)));
    window->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(window, &Window::started, &application,
                     [](int running) { say(QStringLiteral("Running: %1").arg(running)); });
    QObject::connect(window, &Window::answered, window,
                     [window, hurry](const QByteArray &answer, int running) {
                         say(QStringLiteral("Answered by %1 bytes").arg(answer.size()));
                         if (running == 0 && !hurry.isEmpty())
                             QTimer::singleShot(0, window, [window] { quit(window); });
                     });
    window->show();
    beInAHurry(window, hurry);
    return QApplication::exec();
}
