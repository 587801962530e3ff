// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Modes.h"

#include "Files.h"
#include "OwnedRequest.h"
#include "Part.h"
#include "QuitInTime.h"
#include "RunningRequests.h"

#include <ZyBase/base/LoggerObject.h>
#include <ZyBase/http/CHttpPostRequest.h>
#include <ZyBase/platform/CSystemUtils.h>

#include <localservices/RawServer.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <thread>

using ZyBase::CHttpPostRequest;
using ZyBase::CSystemUtils;
using ZyBase::LoggerObject;

namespace {

constexpr int logThreads = 16;
constexpr int linesPerThread = 1000;
constexpr int processTimeoutMs = 20000;
constexpr int monthsTimeoutMs =
    120000; // the threads log for ten seconds, from five before the end of a month

void print(const QString &text)
{
    std::fputs((text + QLatin1Char('\n')).toUtf8().constData(), stderr);
}

// Adds "thread line" of every line, and returns the number of lines that are not whole or of another month.
int collectLines(const QString &path, const QString &month, QStringList *lines)
{
    int wrong = 0;
    const QStringList content = readLines(path);
    for (const QString &line : content) {
        const QString text = line.section(QStringLiteral(" - "), 1);
        if (line.startsWith(month) && text.startsWith(QLatin1String("line ")))
            lines->append(text.mid(5));
        else
            ++wrong;
    }
    return wrong;
}

// Returns true if both files together contain every line once, those of each thread in their order.
bool verifyMonths(const QString &log)
{
    QStringList lines;
    const QString finished = log + QStringLiteral(".2026-01");
    const int finishedWrong = collectLines(finished, QStringLiteral("2026-01-31 "), &lines);
    const int finishedLines = lines.size();
    const int wrong = finishedWrong + collectLines(log, QStringLiteral("2026-02-01 "), &lines);
    QVector<int> next(logThreads, 0);
    bool isOrdered = true;
    for (const QString &line : qAsConst(lines)) {
        const int thread = line.section(QLatin1Char(' '), 0, 0).toInt();
        const int number = line.section(QLatin1Char(' '), 1).toInt();
        isOrdered = isOrdered && number == next.value(thread);
        next[thread] = number + 1;
    }
    const bool isComplete = lines.size() == logThreads * linesPerThread;
    const bool isRolled = finishedLines > 0 && finishedLines < lines.size();
    if (wrong == 0 && isComplete && isOrdered && isRolled)
        return true;
    print(QStringLiteral("%1 lines, %2 of them in January, %3 wrong, %4")
              .arg(lines.size())
              .arg(finishedLines)
              .arg(wrong)
              .arg(isOrdered ? QStringLiteral("in order") : QStringLiteral("not in order")));
    return false;
}

void startSelf(QProcess *process, const QStringList &arguments)
{
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process->start(QCoreApplication::applicationFilePath(), arguments);
}

// Returns true if the process ends by itself with exit code 0.
bool finish(QProcess *process, int timeoutMs)
{
    const bool isFinished = process->waitForFinished(timeoutMs);
    if (!isFinished) {
        process->kill();
        process->waitForFinished();
    }
    return isFinished && process->exitStatus() == QProcess::NormalExit && process->exitCode() == 0;
}

} // namespace

int runMonths(double minutes)
{
    const QString library = QStringLiteral(ZYBASE_FAKETIME_LIBRARY);
    if (!QFile::exists(library)) {
        print(QStringLiteral("soak: faketime is not installed"));
        return 2;
    }
    QElapsedTimer clock;
    clock.start();
    int rounds = 0;
    do {
        const QTemporaryDir directory;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), library);
        environment.insert(QStringLiteral("FAKETIME"), QStringLiteral("@2026-01-31 23:59:55"));
        environment.insert(QStringLiteral("FAKETIME_DONT_FAKE_MONOTONIC"), QStringLiteral("1"));
        environment.insert(QStringLiteral("TZ"), QStringLiteral("UTC"));
        QProcess host;
        host.setProcessEnvironment(environment);
        startSelf(&host, {QStringLiteral("--months-host"), directory.path()});
        if (!finish(&host, monthsTimeoutMs)
            || !verifyMonths(directory.filePath(QStringLiteral("log/soak.log")))) {
            print(QStringLiteral("soak: the log of round %1 is wrong").arg(rounds));
            return 1;
        }
        ++rounds;
    } while (double(clock.elapsed()) < minutes * 60000);
    print(
        QStringLiteral("%1 changes of the month, with %2 lines of %3 threads each: every line is in its file")
            .arg(rounds)
            .arg(logThreads * linesPerThread)
            .arg(logThreads));
    return 0;
}

int runMonthsHost(const QString &baseDirectory)
{
    LoggerObject::InitLogger("soak.log", baseDirectory.toUtf8().constData());
    std::vector<std::thread> threads;
    for (int thread = 0; thread < logThreads; ++thread) {
        threads.emplace_back([thread] {
            for (int i = 0; i < linesPerThread; ++i) {
                LoggerObject::info(QStringLiteral("line %1 %2").arg(thread).arg(i).toUtf8().constData());
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    LoggerObject::ReleaseLogger();
    return 0;
}

int runTwoHosts(const HostOptions &options)
{
    const QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral(".config")));
    QProcess hosts[2];
    for (int i = 0; i < 2; ++i) {
        QStringList arguments {QStringLiteral("--minutes"),       QString::number(options.minutes),
                               QStringLiteral("--log-directory"), home.path(),
                               QStringLiteral("--log-name"),      QStringLiteral("host%1.log").arg(i)};
        for (const QString &part : options.parts)
            arguments << QStringLiteral("--part") << part;
        hosts[i].setProcessEnvironment(environment);
        startSelf(&hosts[i], arguments);
    }
    bool isGood = true;
    for (QProcess &host : hosts)
        isGood = finish(&host, int(options.minutes * 60000) + 3 * processTimeoutMs) && isGood;
    for (int i = 0; i < 2; ++i) {
        const QStringList lines = readLines(home.filePath(QStringLiteral("log/host%1.log").arg(i)));
        const bool isWhole =
            !lines.isEmpty() && lines.filter(QStringLiteral(" - round ")).size() == lines.size();
        print(QStringLiteral("host %1: %2 lines of the log, %3")
                  .arg(i)
                  .arg(lines.size())
                  .arg(isWhole ? QStringLiteral("all whole") : QStringLiteral("not all whole")));
        isGood = isGood && isWhole;
    }
    const QByteArray device = readFile(home.filePath(QStringLiteral(".config/zybasesoak/device.conf")));
    const bool hasOneIdentifier = device.count("PCID=") == 1 && device.count("NewUser=") == 1;
    print(QStringLiteral("device.conf has %1")
              .arg(hasOneIdentifier ? QStringLiteral("one identifier and one mark")
                                    : QStringLiteral("a wrong content")));
    return isGood && hasOneIdentifier ? 0 : 1;
}

// --- Quitting -------------------------------------------------------------------------------

namespace {

// The server answers at about the time when the application quits: a "late" answer.
constexpr int answerMs = 60;

struct QuitCase
{
    const char *name;
    const char *description;
};

constexpr QuitCase quitCases[] = {
    {"plain-started", "quits at once after the start of a request"},
    {"plain-answer", "quits when the answer arrives"},
    {"child-started", "the same two, the request is a child of the application object: at once"},
    {"child-answer", "when the answer arrives"},
    {"recipe-started", "with the recipe of the guide: at once"},
    {"recipe-answer", "when the answer arrives"},
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
    constexpr std::chrono::milliseconds timeToStop(500);
    constexpr std::chrono::milliseconds timeToQuit(2000);
    const QCoreApplication application(argc, argv);
    RunningRequests requests;
    CHttpPostRequest *const request = createRequest(&requests);
    requests.add(request);
    request->StartGetRequest(url, QString());
    QTimer::singleShot(timeMs, &application, &QCoreApplication::quit);
    const int exitCode = QCoreApplication::exec();
    endProcessAfter(timeToQuit, exitCode);
    if (!requests.stopAll(timeToStop))
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
    bool isRecipeSafe = true;
    for (const QuitCase &quitCase : quitCases) {
        const QString name = QString::fromLatin1(quitCase.name);
        int crashes = 0;
        int timeouts = 0;
        for (int i = 0; i < runs; ++i) {
            QProcess host;
            host.setStandardErrorFile(QProcess::nullDevice());
            host.start(QCoreApplication::applicationFilePath(),
                       {QStringLiteral("--quit"), name, server.url().toString()});
            if (!host.waitForFinished(processTimeoutMs)) {
                ++timeouts;
                host.kill();
                host.waitForFinished();
            } else if (host.exitStatus() != QProcess::NormalExit) {
                ++crashes;
            }
        }
        print(QStringLiteral("%1 %2 of %3 crashed, %4 did not end: %5")
                  .arg(name, -16)
                  .arg(crashes)
                  .arg(runs)
                  .arg(timeouts)
                  .arg(QLatin1String(quitCase.description)));
        isRecipeSafe = isRecipeSafe && (!name.startsWith(QLatin1String("recipe")) || crashes + timeouts == 0);
    }
    return isRecipeSafe ? 0 : 1;
}
