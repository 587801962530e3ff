// SPDX-License-Identifier: 0BSD

// Sends a GET, a POST or a download that follows redirects.
//
//     recipe-following-a-redirect get|post|plainly ADDRESS
//     recipe-following-a-redirect download ADDRESS DIRECTORY
//
// With "plainly" the library sends the GET, which follows no redirect.

#include "../PrintLine.h"
#include "FollowedRequest.h"
#include "OwnedRequest.h"

#include <ZyBase/http/DownloadManager.h>

#include <QCoreApplication>

using ZyBase::CHttpPostRequest;
using ZyBase::DownloadManager;

namespace {

void showAnswer(const QUrl &url, int status, const QByteArray &body)
{
    printLine(QStringLiteral("%1 answered %2").arg(url.toDisplayString()).arg(status));
    printLine(QString::fromUtf8(body));
}

void getPlainly(const QUrl &url)
{
    CHttpPostRequest *const request = createRequest(qApp);
    QObject::connect(request, &CHttpPostRequest::SignalRequestResultAndStatusCode, qApp,
                     [url](const QByteArray &body, int status) { showAnswer(url, status, body); });
    QObject::connect(request, &QObject::destroyed, qApp, &QCoreApplication::quit);
    request->StartGetRequestAndStatusCode(url, QString());
}

void showAnswerOf(FollowedRequest &request)
{
    QObject::connect(&request, &FollowedRequest::answered, qApp, showAnswer);
    QObject::connect(&request, &FollowedRequest::answered, qApp, &QCoreApplication::quit);
}

void download(FollowedRequest &request, const QUrl &url, const QString &directory)
{
    auto *const manager = new DownloadManager(&request);
    QObject::connect(&request, &FollowedRequest::answered, manager, [manager, directory](const QUrl &target) {
        if (!manager->StartDownload(target, directory))
            QCoreApplication::exit(EXIT_FAILURE);
    });
    QObject::connect(manager, &DownloadManager::signalDownloadFinished, qApp,
                     [manager](bool isComplete, const QString &path) {
                         manager->deleteLater(); // do not use delete in this slot
                         printLine(isComplete ? QStringLiteral("The file is %1").arg(path)
                                              : QStringLiteral("The download failed"));
                         QCoreApplication::exit(isComplete ? EXIT_SUCCESS : EXIT_FAILURE);
                     });
    request.locate(url);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString action = arguments.value(1);
    const QUrl url(arguments.value(2));

    FollowedRequest request;
    QObject::connect(&request, &FollowedRequest::failed, &application, [](const QString &reason) {
        printLine(reason);
        QCoreApplication::exit(EXIT_FAILURE);
    });

    if (action == QLatin1String("download")) {
        download(request, url, arguments.value(3));
    } else if (action == QLatin1String("plainly")) {
        getPlainly(url);
    } else {
        showAnswerOf(request);
        if (action == QLatin1String("post"))
            request.post(url, R"({"item":"paper"})");
        else
            request.get(url);
    }
    return QCoreApplication::exec();
}
