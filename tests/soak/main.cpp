// SPDX-License-Identifier: LGPL-2.1-or-later

// Runs an application for a long time beside the local services and verifies that it does not grow.
// scripts/soak builds and starts it, and describes the options.

#include "Modes.h"

#include "ChildProcess.h"
#include "QuitInTime.h"
#include "TemporaryHome.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QTemporaryDir>

namespace {

// The services run in another process: they record every request, so their memory grows.
int runBesideServices(int (*run)(const HostOptions &), const HostOptions &options)
{
    const TemporaryHome home;
    const QTemporaryDir directory;
    ChildProcess services(
        {QCoreApplication::applicationFilePath(), QStringLiteral("--services"), directory.path()});
    if (!services.start() || services.readLine() != "ready\n") {
        print(QStringLiteral("soak: the local services do not start"));
        return 2;
    }
    qputenv("LOCAL_SERVICES", QFile::encodeName(directory.filePath(QStringLiteral("services.json"))));
    return run(options);
}

int run(int &argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "minimal");
    const QGuiApplication application(argc, argv);
    // Processes that this program starts.
    const QByteArray first(argc > 1 ? argv[1] : "");
    if (first == "--services" && argc == 3)
        return runServices(QString::fromLocal8Bit(argv[2]));
    if (first == "--months-host" && argc == 3)
        return runMonthsHost(QString::fromLocal8Bit(argv[2]));

    QCommandLineParser parser;
    parser.addOptions(
        {{QStringLiteral("minutes"), QString(), QStringLiteral("minutes"), QStringLiteral("1")},
         {QStringLiteral("part"), QString(), QStringLiteral("part")},
         {QStringLiteral("control"), QString()},
         {QStringLiteral("mode"), QString(), QStringLiteral("mode"), QStringLiteral("host")},
         {QStringLiteral("runs"), QString(), QStringLiteral("runs"), QStringLiteral("200")},
         {QStringLiteral("log-directory"), QString(), QStringLiteral("directory")},
         {QStringLiteral("log-name"), QString(), QStringLiteral("name"), QStringLiteral("soak.log")}});
    parser.process(application);
    const HostOptions options {parser.value(QStringLiteral("minutes")).toDouble(),
                               parser.values(QStringLiteral("part")), parser.isSet(QStringLiteral("control")),
                               parser.value(QStringLiteral("log-directory")),
                               parser.value(QStringLiteral("log-name"))};
    const QString mode = parser.value(QStringLiteral("mode"));
    if (mode == QLatin1String("months"))
        return runMonths(options.minutes);
    if (mode == QLatin1String("quitting"))
        return runQuitting(parser.value(QStringLiteral("runs")).toInt());
    if (mode == QLatin1String("two-hosts"))
        return runBesideServices(runTwoHosts, options);
    if (!qEnvironmentVariableIsEmpty("LOCAL_SERVICES")) // one of two hosts
        return runHost(options);
    return runBesideServices(runHost, options);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 5 && qstrcmp(argv[1], "--quit") == 0)
        return runQuittingHost(argc, argv);
    endProcess(run(argc, argv)); // threads of reports may still run
}
