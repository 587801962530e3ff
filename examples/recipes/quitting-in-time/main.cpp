// SPDX-License-Identifier: 0BSD

// Quits within two seconds, even if requests and name lookups are still waiting.
//
//     recipe-quitting-in-time [--plainly] ADDRESS...
//
// Starts a request for each address and quits one second later. With --plainly it quits without these
// precautions: try an address whose name server does not answer.

#include "../PrintLine.h"
#include "OwnedRequest.h"
#include "QuitInTime.h"
#include "RunningRequests.h"

#include <QCoreApplication>
#include <QTimer>

using namespace std::chrono_literals;
using ZyBase::CHttpPostRequest;

namespace {

constexpr auto timeOfUse = 1000ms; // until the user closes the window
constexpr auto timeToStop = 500ms;
constexpr auto timeToQuit = 2000ms;

void startRequest(RunningRequests &requests, const QUrl &url)
{
    CHttpPostRequest *const request = createRequest(&requests);
    requests.add(request);
    const auto print = [](const char *outcome) { return [outcome] { printLine(QLatin1String(outcome)); }; };
    QObject::connect(request, &CHttpPostRequest::SignalRequestResult, &requests, print("Answered"));
    QObject::connect(request, &CHttpPostRequest::SignalRequestCancel, &requests, print("Stopped"));
    request->StartGetRequest(url, QString());
}

int runInTime(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QTimer::singleShot(timeOfUse, &application, &QCoreApplication::quit);
    RunningRequests requests;
    for (const QString &address : QCoreApplication::arguments().mid(1))
        startRequest(requests, QUrl(address));
    const int exitCode = QCoreApplication::exec();

    printLine(QStringLiteral("The settings are saved")); // save everything first
    endProcessAfter(timeToQuit, exitCode);
    if (!requests.stopAll(timeToStop))
        endProcess(exitCode);
    return exitCode;
} // destroying the application object waits for unfinished name lookups

int runPlainly(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QTimer::singleShot(timeOfUse, &application, &QCoreApplication::quit);
    for (const QString &address : QCoreApplication::arguments().mid(2))
        (new CHttpPostRequest)->StartGetRequest(QUrl(address), QString());
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    if (argc > 1 && qstrcmp(argv[1], "--plainly") == 0)
        return runPlainly(argc, argv);

    const int exitCode = runInTime(argc, argv);
    printLine(QStringLiteral("The application object is destroyed"));
    endProcess(exitCode); // the last line of main()
}
