// SPDX-License-Identifier: LGPL-2.1-or-later

// Shows how a host quits within two seconds, whatever its requests and the system's name lookup wait for.
//
//     recipe-quitting-in-time [--plainly] ADDRESS...
//
// It starts a request for each address, and the user quits a second later. With --plainly it quits as a host
// does that takes no care: try an address whose name server doesn't answer.

#include "QuitInTime.h"
#include "RunningRequests.h"

#include <ZyBase/http/CHttpPostRequest.h>

#include <QCoreApplication>
#include <QTextStream>
#include <QTimer>

using namespace std::chrono_literals;
using ZyBase::CHttpPostRequest;

namespace {

constexpr auto timeOfUse = 1000ms; // until the user closes the window
constexpr auto timeToStop = 500ms;
constexpr auto timeToQuit = 2000ms;

void say(const QString &line)
{
    QTextStream(stdout) << line << '\n';
}

void startRequest(RunningRequests &requests, const QUrl &url)
{
    CHttpPostRequest *const request = requests.create();
    const auto tell = [](const char *outcome) { return [outcome] { say(QLatin1String(outcome)); }; };
    QObject::connect(request, &CHttpPostRequest::SignalRequestResult, &requests, tell("Answered"));
    QObject::connect(request, &CHttpPostRequest::SignalRequestCancel, &requests, tell("Stopped"));
    request->StartGetRequest(url, QString());
}

int runHost(const QStringList &addresses)
{
    RunningRequests requests;
    for (const QString &address : addresses)
        startRequest(requests, QUrl(address));
    const int exitCode = QCoreApplication::exec();

    say(QStringLiteral("The settings are saved")); // first of all: nothing comes in between
    endProcessAfter(timeToQuit, exitCode);
    if (!requests.stopAll(timeToStop))
        endProcess(exitCode);
    return exitCode;
}

int runPlainHost(const QStringList &addresses)
{
    for (const QString &address : addresses)
        (new CHttpPostRequest)->StartGetRequest(QUrl(address), QString());
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    bool isPlain = false;
    int exitCode = 0;
    {
        QCoreApplication application(argc, argv);
        QStringList addresses = QCoreApplication::arguments().mid(1);
        isPlain = addresses.removeAll(QStringLiteral("--plainly")) > 0;
        QTimer::singleShot(timeOfUse, &application, &QCoreApplication::quit);
        exitCode = isPlain ? runPlainHost(addresses) : runHost(addresses);
    } // here Qt waits for its name lookups
    say(QStringLiteral("The application is gone"));
    if (isPlain)
        return exitCode;
    endProcess(exitCode);
}
