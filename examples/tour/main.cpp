// SPDX-License-Identifier: 0BSD

// Uses each service of the library once and checks what it returns and writes.
//
//     tour [DIRECTORY]    DIRECTORY is empty or missing; the default is a new directory in /tmp, which is
//     kept
//
// The exit code is 0 if no promise was broken, 1 if one was, and 2 if the directory cannot be used.

#include "QuitInTime.h"
#include "Report.h"
#include "RunningRequests.h"
#include "services.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTextStream>

namespace {

constexpr std::chrono::milliseconds timeToStop(500);

QString newTemporaryDirectory()
{
    QTemporaryDir directory(QDir::temp().filePath(QStringLiteral("ZyBase-tour-XXXXXX")));
    directory.setAutoRemove(false);
    return directory.path();
}

int runTour()
{
    const QString argument = QCoreApplication::arguments().value(1);
    const QDir directory(QDir(argument.isEmpty() ? newTemporaryDirectory() : argument).absolutePath());
    if (!directory.mkpath(QStringLiteral(".")) || !directory.isEmpty()) {
        QTextStream(stderr) << "The tour needs an empty directory that it can write to, not "
                            << directory.path() << '\n';
        return 2;
    }

    Report report;
    report.line(QStringLiteral("Files of this tour"), directory.path());
    showLog(report, directory);
    showJson(report, directory);
    showFiles(report, directory);
    showZip(report, directory);
    showHttp(report, directory);
    showIdentity(report, directory);
    showSystem(report, directory);
    showTheme(report, directory);
    showDefaultApplication(report, directory);
    showQrCode(report, directory);
    showLocation(report, directory);
    showReports(report, directory);
    RunningRequests().stopAll(timeToStop);
    return report.finish();
}

} // namespace

int main(int argc, char **argv)
{
    int exitCode = 0;
    {
        const QCoreApplication application(argc, argv);
        exitCode = runTour();
    }
    endProcess(exitCode);
}
