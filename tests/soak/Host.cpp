// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Host.h"

#include "DevelopmentServices.h"
#include "Figures.h"
#include "Part.h"

#include <localservices/FakeNetwork.h>
#include <localservices/HttpServer.h>

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <cstdio>
#include <unistd.h>

namespace {

void print(const QString &text)
{
    std::fputs(text.toUtf8().constData(), stderr);
    std::fflush(stderr);
}

void printUsefulMessages(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        print(message + QLatin1Char('\n'));
}

// Returns the parts of these names, or nothing if a name is unknown.
std::vector<Part> select(const std::vector<Part> &parts, const QStringList &names)
{
    std::vector<Part> selected;
    for (const QString &name : names) {
        const auto part =
            std::find_if(parts.begin(), parts.end(), [&](const Part &p) { return p.name == name; });
        if (part == parts.end()) {
            print(QStringLiteral("soak: there is no part %1\n").arg(name));
            return {};
        }
        selected.push_back(*part);
    }
    return selected;
}

// Runs each part once. Returns the name of the first one that fails, or an empty string.
QString runRound(const std::vector<Part> &parts)
{
    for (const Part &part : parts) {
        if (!part.round())
            return part.name;
    }
    return QString();
}

} // namespace

int runHost(const HostOptions &options)
{
    const QTemporaryDir directory;
    const DevelopmentServices services = useDevelopmentServices();
    qInstallMessageHandler(printUsefulMessages);
    std::freopen("/dev/null", "w", stdout); // downloads print their start and end

    const Surroundings surroundings {directory.path(),
                                     options.logDirectory.isEmpty() ? directory.path() : options.logDirectory,
                                     options.logName, QUrl(services.statistics), QUrl(services.downloads)};
    writeArchive(directory.filePath(QStringLiteral("archive.zip")),
                 directory.filePath(QStringLiteral("sources")));
    const std::vector<Part> parts =
        select(options.isControl ? controlParts(surroundings) : libraryParts(surroundings),
               options.parts.isEmpty() ? usualParts() : options.parts);
    if (parts.empty())
        return 2;
    double knownGrowthPerRound = 0;
    for (const Part &part : parts)
        knownGrowthPerRound += part.knownGrowthBytes;

    // What is created only once is no growth: the first fifth of the time, at most one minute, is not
    // measured.
    const double seconds = options.minutes * 60;
    const double warmUpSeconds = qMin(seconds / 5, 60.0);
    constexpr double sampleSeconds = 0.5;
    Figures figures;
    QElapsedTimer clock;
    clock.start();
    const auto elapsed = [&clock] { return double(clock.elapsed()) / 1000; };
    double nextSample = warmUpSeconds;
    int rounds = 0;
    int measuredRounds = 0;
    while (elapsed() < seconds) {
        const QString failed = runRound(parts);
        if (!failed.isEmpty()) {
            print(QStringLiteral("soak: the part %1 failed in round %2\n").arg(failed).arg(rounds));
            return 1;
        }
        runEventLoop(0); // deletes objects that are to be deleted later
        ++rounds;
        measuredRounds += elapsed() >= warmUpSeconds ? 1 : 0;
        if (elapsed() < nextSample)
            continue;
        figures.sample(elapsed(), knownGrowthPerRound * measuredRounds);
        nextSample = elapsed() + sampleSeconds;
    }

    print(QStringLiteral("%1 rounds in %2 s, %3 of them measured\n")
              .arg(rounds)
              .arg(elapsed(), 0, 'f', 0)
              .arg(measuredRounds));
    for (const Part &part : parts) {
        if (part.knownGrowthBytes > 0)
            print(QStringLiteral("subtracted: %1 bytes a round: %2\n")
                      .arg(part.knownGrowthBytes)
                      .arg(part.knownCause));
    }
    print(figures.table());
    return figures.hasGrown() ? 1 : 0;
}

int runServices(const QString &directory)
{
    LocalServices::FakeNetwork network;
    network.routePublicServices();
    const LocalServices::HttpServer server;
    if (network.writeDescription(directory, {server.url(QStringLiteral("/")), {}, {}}).isEmpty())
        return 1;
    std::puts("ready");
    std::fflush(stdout);
    char byte = 0;
    while (::read(STDIN_FILENO, &byte, 1) > 0) {}
    return 0;
}
