// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Leaves in DIRECTORY/log/host.log what the library, Qt and the host itself say while the host runs.
//
//     recipe-messages-in-the-log DIRECTORY

#include "MessagesInLog.h"

#include <ZyBase/files/ZipManager.h>
#include <ZyBase/http/DownloadManager.h>

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>
#include <QUrl>

#include <thread>

Q_LOGGING_CATEGORY(host, "example.host")

int main(int argc, char **argv)
{
    captureMessages();
    qCInfo(host, "before the log is open");
    const QCoreApplication application(argc, argv);
    if (argc != 2)
        qFatal("recipe-messages-in-the-log DIRECTORY");
    const QString directory = QFile::decodeName(argv[1]);
    openLog(QStringLiteral("host.log"), directory);

    ZyBase::ZipManager::QuaUnzipFile(directory + QStringLiteral("/missing.zip"), directory, false);
    std::thread([] { qCWarning(host, "from a thread\nin two lines"); }).join();
    qCDebug(host, "for developers: never in the file");
    // Downloads print on the standard streams, past every message handler.
    ZyBase::DownloadManager().StartDownload(QUrl(QStringLiteral("http://127.0.0.1/file")),
                                            directory + QStringLiteral("/missing"));

    closeLog();
    qCInfo(host, "after the log is closed");
    return 0;
}
