// SPDX-License-Identifier: 0BSD
//
// Writes the messages of the library, of Qt and of the application to the application's log.
//
//     recipe-messages-in-the-log

#include "LogDirectory.h"
#include "MessagesInLog.h"

#include <ZyBase/files/ZipManager.h>
#include <ZyBase/http/DownloadManager.h>

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QUrl>

#include <thread>

Q_LOGGING_CATEGORY(application, "example.application")

namespace {

void sendMessages(const QString &directory)
{
    ZyBase::ZipManager::QuaUnzipFile(directory + QStringLiteral("/missing.zip"), directory, false);
    std::thread([] { qCWarning(application, "from a thread\nin two lines"); }).join();
    qCDebug(application, "for developers: never in the file");
    // Downloads print directly on the standard streams. No message handler gets these lines.
    ZyBase::DownloadManager().StartDownload(QUrl(QStringLiteral("http://127.0.0.1/file")),
                                            directory + QStringLiteral("/missing"));
}

} // namespace

int main(int argc, char **argv)
{
    captureMessages();
    qCInfo(application, "before the log is open");
    const QCoreApplication coreApplication(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("example"));
    QCoreApplication::setApplicationName(QStringLiteral("messages"));

    const LogDirectory directory = prepareLogDirectory(QStringLiteral("messages.log"), 6);
    if (directory.problem.isNull())
        openLog(QStringLiteral("messages.log"), directory.base);
    sendMessages(directory.base);

    closeLog();
    qCInfo(application, "after the log is closed");
    return 0;
}
