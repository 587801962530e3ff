// SPDX-License-Identifier: 0BSD

// Sends two requests that delete themselves. The second window is closed while its request runs.
//
//     recipe-deleting-a-request ADDRESS SLOW-ADDRESS

#include "../PrintLine.h"
#include "OwnedRequest.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <memory>

using ZyBase::CHttpPostRequest;

namespace {

constexpr int closeAfterMs = 300;

// Prints how long the request existed after its outcome.
void watch(const CHttpPostRequest *request)
{
    const auto sinceOutcome = std::make_shared<QElapsedTimer>();
    QObject::connect(request, &CHttpPostRequest::SignalRequestResult, qApp,
                     [sinceOutcome] { sinceOutcome->start(); });
    QObject::connect(request, &CHttpPostRequest::SignalRequestCancel, qApp, [sinceOutcome] {
        sinceOutcome->start();
        printLine(QStringLiteral("The request was stopped"));
    });
    QObject::connect(request, &QObject::destroyed, qApp, [sinceOutcome] {
        const QString time = sinceOutcome->isValid()
                                 ? QStringLiteral("%1 ms after").arg(sinceOutcome->elapsed())
                                 : QStringLiteral("before");
        printLine(QStringLiteral("The request was deleted %1 its outcome").arg(time));
    });
}

class Window : public QObject
{
public:
    CHttpPostRequest *send(const QUrl &url)
    {
        CHttpPostRequest *const request = createRequest(this);
        connect(request, &CHttpPostRequest::SignalRequestResult, this, [](const QByteArray &answer) {
            printLine(QStringLiteral("The window shows %1").arg(QString::fromUtf8(answer)));
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
    CHttpPostRequest *const request = window.send(QUrl(addresses.value(0)));

    auto *const closedWindow = new Window;
    const auto closeWindow = [closedWindow] {
        delete closedWindow;
        printLine(QStringLiteral("The other window is closed"));
    };
    const auto sendSlowRequest = [&] {
        CHttpPostRequest *const slowRequest = closedWindow->send(QUrl(addresses.value(1)));
        QObject::connect(slowRequest, &QObject::destroyed, &application, &QCoreApplication::quit);
        QTimer::singleShot(closeAfterMs, &application, closeWindow);
    };
    QObject::connect(request, &QObject::destroyed, &application, sendSlowRequest);
    return QCoreApplication::exec();
}
