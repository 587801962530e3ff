// SPDX-License-Identifier: LGPL-2.1-or-later

// Shows requests that remove themselves safely: one whose window waits for its answer, and one whose window
// is closed while the request is running.
//
//     recipe-deleting-a-request ADDRESS SLOW-ADDRESS

#include "OwnedRequest.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTextStream>
#include <QTimer>

#include <memory>

using ZyBase::CHttpPostRequest;

namespace {

void say(const QString &line)
{
    QTextStream(stdout) << line << '\n';
}

// Tells how long a request lived on after its outcome.
void watch(const CHttpPostRequest *request)
{
    const auto sinceOutcome = std::make_shared<QElapsedTimer>();
    const auto start = [sinceOutcome] { sinceOutcome->start(); };
    QObject::connect(request, &CHttpPostRequest::SignalRequestResult, qApp, start);
    QObject::connect(request, &CHttpPostRequest::SignalRequestCancel, qApp, [start] {
        start();
        say(QStringLiteral("The request was stopped"));
    });
    QObject::connect(request, &QObject::destroyed, qApp, [sinceOutcome] {
        const QString time = sinceOutcome->isValid()
                                 ? QStringLiteral("%1 ms after").arg(sinceOutcome->elapsed())
                                 : QStringLiteral("before");
        say(QStringLiteral("The request went %1 its outcome").arg(time));
    });
}

class Window : public QObject
{
public:
    CHttpPostRequest *ask(const QUrl &url)
    {
        CHttpPostRequest *const request = createRequest(this);
        connect(request, &CHttpPostRequest::SignalRequestResult, this, [](const QByteArray &answer) {
            say(QStringLiteral("The window shows %1").arg(QString::fromUtf8(answer)));
        });
        watch(request);
        request->StartGetRequest(url, QString());
        return request;
    }
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList addresses = QCoreApplication::arguments().mid(1);

    Window window;
    CHttpPostRequest *const request = window.ask(QUrl(addresses.value(0)));

    auto *const closedWindow = new Window;
    const auto closeWindow = [closedWindow] {
        delete closedWindow;
        say(QStringLiteral("The other window is closed"));
    };
    const auto askAnotherOne = [&] {
        CHttpPostRequest *const slow = closedWindow->ask(QUrl(addresses.value(1)));
        QObject::connect(slow, &QObject::destroyed, &application, &QCoreApplication::quit);
        QTimer::singleShot(300, &application, closeWindow);
    };
    QObject::connect(request, &QObject::destroyed, &application, askAnotherOne);
    return QCoreApplication::exec();
}
