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
constexpr int answerDelays = 20; // the answer arrives some milliseconds later
constexpr int processTimeoutMs = 30000;

constexpr const char *plain = "plain"; // returns from main()
constexpr const char *child = "child"; // the same; the request is a child of the application object
constexpr const char *recipe = "recipe"; // as the guide shows

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

// Runs the application this many times and returns the number of those that did not end normally.
int countCrashes(const QString &way, bool isAnswered, int runs)
{
    const LocalServices::RawServer server([](LocalServices::Connection &client) {
        client.sleep(answerMs);
        client.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\nConnection: close\r\n\r\nok");
    });
    int crashes = 0;
    int timeouts = 0;
    for (int i = 0; i < runs; ++i) {
        const int timeMs = isAnswered ? answerMs + i % answerDelays : 0;
        ChildProcess host({QCoreApplication::applicationFilePath(), QStringLiteral("--quit"), way,
                           QString::number(timeMs), server.url().toString()});
        if (!host.start() || host.finish(processTimeoutMs) != 0)
            ++(host.isRunning() ? timeouts : crashes);
    }
    print(QStringLiteral("%1, %2: %3 of %4 crashed, %5 did not end")
              .arg(way,
                   QLatin1String(isAnswered ? "when the answer arrives" : "after the start of the request"))
              .arg(crashes)
              .arg(runs)
              .arg(timeouts));
    return crashes + timeouts;
}

} // namespace

int runQuittingHost(int &argc, char **argv)
{
    const QString way = QString::fromLatin1(argv[2]);
    const int timeMs = QByteArray(argv[3]).toInt();
    const QUrl url(QString::fromLatin1(argv[4]));
    if (way == QLatin1String(recipe))
        endProcess(quitInTime(argc, argv, url, timeMs));
    return quitPlainly(argc, argv, url, timeMs, way == QLatin1String(child));
}

int runQuitting(int runs)
{
    int recipeFailures = 0;
    for (const char *const way : {plain, child, recipe}) {
        const QString name = QString::fromLatin1(way);
        recipeFailures = countCrashes(name, false, runs) + countCrashes(name, true, runs);
    }
    return recipeFailures == 0 ? 0 : 1; // the recipe is the last one
}
