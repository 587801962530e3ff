// SPDX-License-Identifier: 0BSD

// Downloads a file from a server whose certificate is from a private authority.
//
//     recipe-trusting-a-private-authority ADDRESS DIRECTORY [AUTHORITY.pem]

#include "../PrintLine.h"
#include "TrustedAuthority.h"

#include <ZyBase/http/DownloadManager.h>

#include <QCoreApplication>

using ZyBase::DownloadManager;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();

    if (arguments.size() > 3) {
        const QString problem = trustAuthority(arguments.at(3));
        if (!problem.isEmpty())
            printLine(problem); // write it to the log of an application
    }

    DownloadManager download;
    QObject::connect(&download, &DownloadManager::signalDownloadFinished, &application,
                     [](bool isComplete, const QString &path) {
                         printLine(isComplete ? QStringLiteral("The file is %1").arg(path)
                                              : QStringLiteral("The download failed"));
                         QCoreApplication::exit(isComplete ? EXIT_SUCCESS : EXIT_FAILURE);
                     });
    if (!download.StartDownload(QUrl(arguments.value(1)), arguments.value(2)))
        return EXIT_FAILURE;
    return QCoreApplication::exec();
}
