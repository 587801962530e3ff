// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Modes.h"

#include "ChildProcess.h"
#include "Files.h"

#include <ZyBase/base/LoggerObject.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <thread>

using ZyBase::LoggerObject;

namespace {

constexpr int logThreads = 16;
constexpr int linesPerThread = 1000;
constexpr int msPerMinute = 60000;

// Returns the number of lines up to the first one that is not the next of its thread or has another time.
int countLines(const QString &path, const char *times, std::vector<int> *next)
{
    const QRegularExpression form(
        QStringLiteral("^%1[0-9:.]* INFO   - ([0-9]|1[0-5]) ([0-9]+)$").arg(QLatin1String(times)));
    int count = 0;
    const QStringList lines = readLines(path);
    for (const QString &line : lines) {
        const QRegularExpressionMatch match = form.match(line);
        if (!match.hasMatch() || match.captured(2).toInt() != next->at(match.captured(1).toUInt())++) {
            print(QStringLiteral("soak: %1 has the line: %2").arg(path, line));
            return count;
        }
        ++count;
    }
    return count;
}

// Lines of the second before midnight and of midnight itself can be in the file of the other month.
bool verifyMonths(const QString &log)
{
    std::vector<int> next(logThreads, 0);
    const int january = countLines(log + QStringLiteral(".2026-01"), "2026-0(?:1-31 |2-01 00:00:00)", &next);
    const int february = countLines(log, "2026-0(?:1-31 23:59:59|2-01 )", &next);
    if (january > 0 && february > 0 && january + february == logThreads * linesPerThread)
        return true;
    print(QStringLiteral("soak: %1 lines in January, %2 in February").arg(january).arg(february));
    return false;
}

} // namespace

int runMonths(double minutes)
{
    const QString library = QStringLiteral(ZYBASE_FAKETIME_LIBRARY);
    if (!QFile::exists(library)) {
        print(QStringLiteral("soak: libfaketime is not installed"));
        return 2;
    }
    const QDeadlineTimer deadline(qint64(minutes * msPerMinute));
    int rounds = 0;
    do {
        const QTemporaryDir directory;
        ChildProcess host(
            {QCoreApplication::applicationFilePath(), QStringLiteral("--months-host"), directory.path()});
        host.setEnvironment(QStringLiteral("LD_PRELOAD"), library);
        host.setEnvironment(QStringLiteral("FAKETIME"), QStringLiteral("@2026-01-31 23:59:55"));
        host.setEnvironment(QStringLiteral("FAKETIME_DONT_FAKE_MONOTONIC"), QStringLiteral("1"));
        host.setEnvironment(QStringLiteral("TZ"), QStringLiteral("UTC"));
        if (!host.start() || host.finish() != 0
            || !verifyMonths(directory.filePath(QStringLiteral("log/soak.log"))))
            return 1;
        ++rounds;
    } while (!deadline.hasExpired());
    print(
        QStringLiteral("%1 changes of the month, each with %2 lines of %3 threads: every line is in its file")
            .arg(rounds)
            .arg(logThreads * linesPerThread)
            .arg(logThreads));
    return 0;
}

int runMonthsHost(const QString &baseDirectory)
{
    constexpr std::chrono::milliseconds interval(10);
    LoggerObject::InitLogger("soak.log", baseDirectory.toUtf8().constData());
    std::vector<std::thread> threads;
    for (int thread = 0; thread < logThreads; ++thread) {
        threads.emplace_back([thread, interval] {
            for (int i = 0; i < linesPerThread; ++i) {
                LoggerObject::info(QStringLiteral("%1 %2").arg(thread).arg(i).toUtf8().constData());
                std::this_thread::sleep_for(interval);
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
    const QDir home = QDir::home();
    ChildProcess hosts[2];
    for (ChildProcess &host : hosts) {
        QStringList command {QCoreApplication::applicationFilePath(),
                             QStringLiteral("--minutes"),
                             QString::number(options.minutes),
                             QStringLiteral("--log-directory"),
                             home.path(),
                             QStringLiteral("--log-name"),
                             QStringLiteral("host%1.log").arg(&host - hosts)};
        for (const QString &part : options.parts)
            command << QStringLiteral("--part") << part;
        host.setCommand(command);
        host.start();
    }
    bool isGood = true;
    for (ChildProcess &host : hosts) {
        isGood = host.finish(int(options.minutes * msPerMinute) + ChildProcess::timeoutMs) == 0 && isGood;
        print(QString::fromUtf8(host.standardError()));
        const QStringList lines =
            readLines(home.filePath(QStringLiteral("log/host%1.log").arg(&host - hosts)));
        const int wholeLines = lines.filter(QStringLiteral(" INFO   - round ")).size();
        print(QStringLiteral("lines of the log: %1, %2 of them whole").arg(lines.size()).arg(wholeLines));
        isGood = isGood && wholeLines == lines.size();
    }
    const QByteArray device = readFile(home.filePath(QStringLiteral(".config/zybasesoak/device.conf")));
    const bool isDeviceWhole = device.count("PCID=") == 1 && device.count("NewUser=") == 1;
    print(QStringLiteral("device.conf is %1").arg(QLatin1String(isDeviceWhole ? "whole" : "damaged")));
    return isGood && isDeviceWhole ? 0 : 1;
}
