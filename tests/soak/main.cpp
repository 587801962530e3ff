// SPDX-License-Identifier: LGPL-2.1-or-later

// Runs an application for a long time beside the local services and verifies that it does not grow.
// scripts/soak builds and starts it, and describes the options.

#include "Modes.h"

#include "Part.h"
#include "TemporaryHome.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

namespace {

// Starts the services in another process: they record every request, so their memory grows.
bool startServices(QProcess *services, const QString &directory)
{
    constexpr int timeoutMs = 30000;
    services->start(QCoreApplication::applicationFilePath(), {QStringLiteral("--services"), directory});
    if (!services->waitForReadyRead(timeoutMs))
        return false;
    qputenv("LOCAL_SERVICES", QFile::encodeName(directory + QStringLiteral("/services.json")));
    return true;
}

int run(const QString &mode, const HostOptions &options, int runs)
{
    if (mode == QLatin1String("months"))
        return runMonths(options.minutes);
    if (mode == QLatin1String("quitting"))
        return runQuitting(runs);
    const TemporaryHome home;
    const QTemporaryDir directory;
    QProcess services;
    const bool isHost = mode == QLatin1String("host");
    if (!isHost && mode != QLatin1String("two-hosts")) {
        std::fprintf(stderr, "soak: there is no mode %s\n", qPrintable(mode));
        return 2;
    }
    const bool hasServices = !qEnvironmentVariableIsEmpty("LOCAL_SERVICES");
    if (!hasServices && !startServices(&services, directory.path())) {
        std::fputs("soak: the local services do not start\n", stderr);
        return 2;
    }
    const int exitCode = isHost ? runHost(options) : runTwoHosts(options);
    services.closeWriteChannel();
    services.waitForFinished();
    return exitCode;
}

} // namespace

int main(int argc, char **argv)
{
    // These processes have their own arguments.
    const QByteArray first(argc > 1 ? argv[1] : "");
    if (first == "--quit" && argc == 4)
        return runQuittingHost(argc, argv, QString::fromLatin1(argv[2]), QString::fromLatin1(argv[3]));
    qputenv("QT_QPA_PLATFORM", "minimal");
    const QGuiApplication application(argc, argv);
    if (first == "--services" && argc == 3)
        return runServices(QString::fromLocal8Bit(argv[2]));
    if (first == "--months-host" && argc == 3)
        return runMonthsHost(QString::fromLocal8Bit(argv[2]));

    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions(
        {{QStringLiteral("minutes"), QStringLiteral("Time of the run."), QStringLiteral("minutes"),
          QStringLiteral("1")},
         {QStringLiteral("part"), QStringLiteral("Part to run; can be repeated."), QStringLiteral("part")},
         {QStringLiteral("control"), QStringLiteral("Run the parts with Qt alone.")},
         {QStringLiteral("mode"), QStringLiteral("host, two-hosts, months or quitting."),
          QStringLiteral("mode"), QStringLiteral("host")},
         {QStringLiteral("runs"), QStringLiteral("Runs for each case of the mode quitting."),
          QStringLiteral("runs"), QStringLiteral("200")},
         {QStringLiteral("log-directory"), QStringLiteral("Base directory of the log."),
          QStringLiteral("directory")},
         {QStringLiteral("log-name"), QStringLiteral("Name of the log file."), QStringLiteral("name"),
          QStringLiteral("soak.log")}});
    parser.process(application);
    HostOptions options;
    options.minutes = parser.value(QStringLiteral("minutes")).toDouble();
    options.parts = parser.values(QStringLiteral("part"));
    options.isControl = parser.isSet(QStringLiteral("control"));
    options.logDirectory = parser.value(QStringLiteral("log-directory"));
    options.logName = parser.value(QStringLiteral("log-name"));
    return run(parser.value(QStringLiteral("mode")), options, parser.value(QStringLiteral("runs")).toInt());
}
