// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Host.h"

#include "DevelopmentServices.h"
#include "Figures.h"
#include "Part.h"

#include <localservices/FakeNetwork.h>
#include <localservices/HttpServer.h>

#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cstdio>

namespace {

// Returns the parts of these names, or the usual ones. Returns nothing if a name is unknown.
std::vector<Part> select(const std::vector<Part> &parts, const QStringList &names)
{
    std::vector<Part> selected;
    if (names.isEmpty()) {
        std::copy_if(parts.begin(), parts.end(), std::back_inserter(selected),
                     [](const Part &part) { return part.isUsual; });
    }
    for (const QString &name : names) {
        const auto part = std::find_if(parts.begin(), parts.end(),
                                       [&name](const Part &p) { return name == QLatin1String(p.name); });
        if (part == parts.end()) {
            print(QStringLiteral("soak: there is no part %1").arg(name));
            return {};
        }
        selected.push_back(*part);
    }
    return selected;
}

bool runRound(const std::vector<Part> &parts)
{
    for (const Part &part : parts) {
        if (!part.runRound()) {
            print(QStringLiteral("soak: the part %1 failed").arg(QLatin1String(part.name)));
            return false;
        }
    }
    QTest::qWait(0); // deletes objects that are to be deleted later
    return true;
}

int runParts(const std::vector<Part> &parts, double seconds)
{
    // What is created only once is no growth: the first fifth of the time is not measured, at most one
    // minute.
    const double warmUpSeconds = std::min(seconds / 5, 60.0);
    constexpr double sampleSeconds = 0.5;
    double knownGrowthPerRound = 0;
    for (const Part &part : parts)
        knownGrowthPerRound += part.knownGrowthBytes;

    Figures figures;
    QElapsedTimer clock;
    clock.start();
    double nextSample = warmUpSeconds;
    double elapsed = 0;
    int rounds = 0;
    do {
        if (!runRound(parts)) {
            print(QStringLiteral("soak: after %1 rounds").arg(rounds));
            return 1;
        }
        ++rounds;
        elapsed = double(clock.elapsed()) / 1000;
        if (elapsed >= nextSample) {
            figures.sample(elapsed, knownGrowthPerRound * rounds);
            nextSample = elapsed + sampleSeconds;
        }
    } while (elapsed < seconds);

    print(QStringLiteral("%1 rounds in %2 s").arg(rounds).arg(elapsed, 0, 'f', 0));
    for (const Part &part : parts) {
        if (part.knownGrowthBytes > 0)
            print(QStringLiteral("subtracted: %1 bytes a round: %2")
                      .arg(part.knownGrowthBytes)
                      .arg(QLatin1String(part.knownCause)));
    }
    print(figures.table());
    return figures.haveGrown() ? 1 : 0;
}

} // namespace

void print(const QString &line)
{
    std::fputs((line + QLatin1Char('\n')).toUtf8().constData(), stderr);
}

int runHost(const HostOptions &options)
{
    const QTemporaryDir directory;
    const DevelopmentServices services = useDevelopmentServices();
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\n*.info=false\n*.warning=false"));
    if (!std::freopen("/dev/null", "w", stdout)) // downloads print their start and end
        return 1;
    const Surroundings surroundings {directory.path(),
                                     options.logDirectory.isEmpty() ? directory.path() : options.logDirectory,
                                     options.logName, QUrl(services.statistics), QUrl(services.downloads)};
    const std::vector<Part> parts =
        select(options.isControl ? controlParts(surroundings) : libraryParts(surroundings), options.parts);
    constexpr double secondsPerMinute = 60;
    return parts.empty() ? 2 : runParts(parts, options.minutes * secondsPerMinute);
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
    while (std::getchar() != EOF) {}
    return 0;
}
