// SPDX-License-Identifier: 0BSD

// Downloads a file and replaces an older one only if the download is complete.
//
//     recipe-downloading-well ADDRESS FILE [MD5]
//
// A line on the standard input cancels the download. The environment variable STALL_TIMEOUT_MS sets after how
// long a silence of the server it fails.

#include "../PrintLine.h"
#include "SafeDownload.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <unistd.h>

namespace {

void end(const QString &line, int exitCode)
{
    printLine(line);
    QCoreApplication::exit(exitCode);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();

    SafeDownload download;
    QObject::connect(&download, &SafeDownload::finished, &application, [](const QString &path) {
        end(QStringLiteral("Complete: %1").arg(path), EXIT_SUCCESS);
    });
    QObject::connect(&download, &SafeDownload::failed, &application, [](const QString &reason) {
        end(QStringLiteral("Failed: %1").arg(reason), EXIT_FAILURE);
    });
    QObject::connect(&download, &SafeDownload::cancelled, &application,
                     [] { end(QStringLiteral("Cancelled"), EXIT_FAILURE); });

    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &download, [&] {
        input.setEnabled(false);
        char byte = 0;
        if (::read(STDIN_FILENO, &byte, 1) > 0)
            download.cancel();
    });

    bool hasTimeout = false;
    const int stallTimeoutMs = qEnvironmentVariableIntValue("STALL_TIMEOUT_MS", &hasTimeout);
    if (hasTimeout)
        download.setStallTimeout(stallTimeoutMs);
    download.start(QUrl(arguments.value(1)), arguments.value(2), arguments.value(3).toLatin1());
    return QCoreApplication::exec();
}
