// SPDX-License-Identifier: LGPL-2.1-or-later

#include "commands.h"

#include <ZyBase/http/CHttpPostRequest.h>
#include <ZyBase/http/DownloadManager.h>

#include <QEventLoop>

#include <sys/resource.h>

#include <system_error>

using ZyBase::CHttpPostRequest;
using ZyBase::DownloadManager;

namespace {

// The arguments are URL, directory and whether to stop. Returns the arguments of the outcome signal, or false
// if the download does not start.
QJsonValue download(const QJsonArray &arguments)
{
    DownloadManager manager;
    QEventLoop loop;
    QJsonArray outcome;
    QObject::connect(&manager, &DownloadManager::signalDownloadFinished, &loop,
                     [&](bool success, const QString &path) {
                         outcome = {success, path};
                         loop.quit();
                     });
    if (!manager.StartDownload(QUrl(arguments.at(0).toString()), arguments.at(1).toString()))
        return false;
    if (arguments.at(2).toBool())
        QMetaObject::invokeMethod(&manager, &DownloadManager::StopDownload, Qt::QueuedConnection);
    loop.exec();
    return outcome;
}

// Starts a request while no thread can be created. Returns the type of the exception.
QJsonValue startWithoutThreads(const QJsonArray &)
{
    const rlimit none {0, RLIM_INFINITY};
    const rlimit all {RLIM_INFINITY, RLIM_INFINITY};
    CHttpPostRequest request;
    QString answer = QStringLiteral("started");
    setrlimit(RLIMIT_AS, &none);
    try {
        request.StartGetRequest(QUrl(QStringLiteral("http://127.0.0.1:1/")), QString());
    } catch (const std::system_error &) {
        answer = QStringLiteral("system_error");
    }
    setrlimit(RLIMIT_AS, &all);
    return answer;
}

} // namespace

Commands httpCommands()
{
    return {{QStringLiteral("http.download"), download},
            {QStringLiteral("http.startWithoutThreads"), startWithoutThreads}};
}
