// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Modes.h"

#include "ChildProcess.h"
#include "OwnedRequest.h"
#include "QuitInTime.h"
#include "RunningRequests.h"

#include <localservices/RawServer.h>

#include <QCoreApplication>
#include <QTimer>

using ZyBase::CHttpPostRequest;
using namespace std::chrono_literals;

namespace {

constexpr int answerMs = 60;
constexpr int processTimeoutMs = 30000;

struct QuitCase
{
    const char *name;
    const char *description;
};

constexpr QuitCase quitCases[] = {
    {"plain-started", "exit() with a request that has just started"},
    {"plain-answer", "exit() when the answer arrives"},
    {"child-started", "the request is a child of the application object and has just started"},
    {"child-answer", "the request is a child of the application object, and the answer arrives"},
    {"recipe-started", "the recipe with a request that has just started"},
    {"recipe-answer", "the recipe when the answer arrives"},
};

int quitPlainly(int &argc, char **argv, const QUrl &url, int timeMs, bool isChild)
{
    QCoreApplication application(argc, argv);
    auto *const request = new CHttpPostRequest(isChild ? &application : nullptr);
    request->StartGetRequest(url, QString());
    QTimer::singleShot(timeMs, &application, &QCoreApplication::quit);
    return QCoreApplication::exec();
}

int quitInTime(int &argc, char **argv, const QUrl &url, int timeMs)
{
    const QCoreApplication application(argc, argv);
    RunningRequests requests;
    CHttpPostRequest *const request = createRequest(&requests);
    requests.add(request);
    request->StartGetRequest(url, QString());
    QTimer::singleShot(timeMs, &application, &QCoreApplication::quit);
    const int exitCode = QCoreApplication::exec();
    endProcessAfter(2000ms, exitCode);
    if (!requests.stopAll(500ms))
        endProcess(exitCode);
    return exitCode;
}

} // namespace

int runQuittingHost(int &argc, char **argv, const QString &caseName, const QString &address)
{
    const int timeMs = caseName.endsWith(QLatin1String("started")) ? 0 : answerMs;
    if (caseName.startsWith(QLatin1String("recipe")))
        endProcess(quitInTime(argc, argv, QUrl(address), timeMs));
    return quitPlainly(argc, argv, QUrl(address), timeMs, caseName.startsWith(QLatin1String("child")));
}

int runQuitting(int runs)
{
    const LocalServices::RawServer server([](LocalServices::Connection &client) {
        client.sleep(answerMs);
        client.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\nConnection: close\r\n\r\nok");
    });
    int recipeFailures = 0;
    for (const QuitCase &quitCase : quitCases) {
        const QString name = QString::fromLatin1(quitCase.name);
        int crashes = 0;
        int timeouts = 0;
        for (int i = 0; i < runs; ++i) {
            ChildProcess host({QCoreApplication::applicationFilePath(), QStringLiteral("--quit"), name,
                               server.url().toString()});
            if (host.start() && host.finish(processTimeoutMs) == 0)
                continue;
            ++(host.isRunning() ? timeouts : crashes);
        }
        if (name.startsWith(QLatin1String("recipe")))
            recipeFailures += crashes + timeouts;
        print(QStringLiteral("%1 of %2 crashed, %3 did not end: %4")
                  .arg(crashes)
                  .arg(runs)
                  .arg(timeouts)
                  .arg(QLatin1String(quitCase.description)));
    }
    return recipeFailures == 0 ? 0 : 1;
}
