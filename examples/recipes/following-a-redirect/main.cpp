// SPDX-License-Identifier: LGPL-2.1-or-later

// Shows a request, a post and a download that follow redirections, which the library leaves to its host.
//
//     recipe-following-a-redirect get|post|plainly ADDRESS
//     recipe-following-a-redirect download ADDRESS DIRECTORY
//
// With "plainly" the library asks for the address by itself.

#include "FollowedRequest.h"

#include <ZyBase/http/CHttpPostRequest.h>
#include <ZyBase/http/DownloadManager.h>

#include <QCoreApplication>
#include <QTextStream>
#include <QTimer>

using ZyBase::CHttpPostRequest;
using ZyBase::DownloadManager;

namespace {

// The thread of the library's request still takes its last steps when its outcome is told.
constexpr int lastStepsMs = 200;

void say(const QString &line)
{
    QTextStream(stdout) << line << '\n';
}

void showAnswer(const QUrl &url, int status, const QByteArray &body)
{
    say(QStringLiteral("%1 answered %2").arg(url.toDisplayString()).arg(status));
    say(QString::fromUtf8(body));
    QTimer::singleShot(lastStepsMs, qApp, &QCoreApplication::quit);
}

void download(FollowedRequest &request, const QUrl &url, const QString &directory)
{
    auto *const manager = new DownloadManager(&request);
    QObject::connect(&request, &FollowedRequest::answered, manager, [manager, directory](const QUrl &target) {
        if (!manager->StartDownload(target, directory))
            QCoreApplication::exit(EXIT_FAILURE);
    });
    QObject::connect(manager, &DownloadManager::signalDownloadFinished, qApp, [](bool, const QString &path) {
        say(QStringLiteral("The file is %1").arg(path));
        QCoreApplication::quit();
    });
    request.locate(url);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString what = arguments.value(1);
    const QUrl url(arguments.value(2));

    FollowedRequest request;
    QObject::connect(&request, &FollowedRequest::failed, &application, [](const QString &reason) {
        say(reason);
        QCoreApplication::exit(EXIT_FAILURE);
    });
    if (what != QLatin1String("download"))
        QObject::connect(&request, &FollowedRequest::answered, &application, showAnswer);

    CHttpPostRequest plainRequest;
    QObject::connect(&plainRequest, &CHttpPostRequest::SignalRequestResultAndStatusCode, &application,
                     [url](const QByteArray &body, int status) { showAnswer(url, status, body); });

    if (what == QLatin1String("plainly"))
        plainRequest.StartGetRequestAndStatusCode(url, QString());
    else if (what == QLatin1String("post"))
        request.post(url, R"({"item":"paper"})");
    else if (what == QLatin1String("download"))
        download(request, url, arguments.value(3));
    else
        request.get(url);
    return QCoreApplication::exec();
}
