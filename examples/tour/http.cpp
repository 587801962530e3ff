// SPDX-License-Identifier: LGPL-2.1-or-later

#include "services.h"

#include "Report.h"

#include <ZyBase/http/CHttpPostRequest.h>
#include <ZyBase/http/DownloadManager.h>

#include <localservices/HttpServer.h>

#include <QEventLoop>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTimer>

using LocalServices::HttpServer;
using ZyBase::CHttpPostRequest;
using ZyBase::DownloadManager;

namespace {

constexpr int downloadBytes = 8 * 1024 * 1024;
constexpr int bytesPerSecond = 6 * 1024 * 1024;
constexpr int stopAfterMs = 200;

void showRequests(Report &report, const HttpServer &server)
{
    CHttpPostRequest request;
    QByteArray answer;
    request.StartGetRequestSync(server.url(QStringLiteral("/echo?greeting=hello")), answer);
    report.line(QStringLiteral("StartGetRequestSync"), QString::fromUtf8(answer));

    QJsonObject order {{QStringLiteral("item"), QStringLiteral("paper")}, {QStringLiteral("count"), 3}};
    const QString signature = CHttpPostRequest::SignObject(order, QStringLiteral("secret"));
    report.line(QStringLiteral("SignObject"), signature);
    order.insert(QStringLiteral("sign"), signature);
    request.StartRequestSync(server.url(QStringLiteral("/echo")), order, answer);
    report.line(QStringLiteral("StartRequestSync"), QString::fromUtf8(answer));
    report.promise(QStringLiteral("the server got the compact text of the signed object"),
                   answer == QJsonDocument(order).toJson(QJsonDocument::Compact)
                       && signature == QLatin1String("4d6fe485946b7efee53c94d7ed3a3d39"));
}

void showStop(Report &report, const HttpServer &server)
{
    CHttpPostRequest request;
    QEventLoop loop;
    QString outcome;
    const auto end = [&](const char *signal) {
        outcome = QLatin1String(signal);
        loop.quit();
    };
    QObject::connect(&request, &CHttpPostRequest::SignalRequestResult, &loop, [&] { end("result"); });
    QObject::connect(&request, &CHttpPostRequest::SignalRequestTimeout, &loop, [&] { end("timeout"); });
    QObject::connect(&request, &CHttpPostRequest::SignalRequestCancel, &loop, [&] { end("cancel"); });
    request.StartGetRequest(server.url(QStringLiteral("/never")), QStringLiteral("a session"));
    QTimer::singleShot(stopAfterMs, &request, &CHttpPostRequest::SignalStopRequest);
    loop.exec();
    report.line(QStringLiteral("StartGetRequest, stopped"), outcome);
    report.promise(QStringLiteral("a server that never answers is left when the host says so"),
                   outcome == QLatin1String("cancel"));
    // The worker may still be on its way out of the signal: the object lives a moment longer.
    QTimer::singleShot(stopAfterMs, &loop, &QEventLoop::quit);
    loop.exec();
}

void showDownload(Report &report, const HttpServer &server, const QDir &directory)
{
    DownloadManager manager;
    QEventLoop loop;
    QString path;
    QObject::connect(&manager, &DownloadManager::signalDownloadProgress, &loop,
                     [&report](qint64 received, qint64 total, const QString &speed) {
                         report.progress(QStringLiteral("%1 of %2 bytes, %3 %, %4")
                                             .arg(received)
                                             .arg(total)
                                             .arg(total > 0 ? 100 * received / total : 0)
                                             .arg(speed));
                     });
    QObject::connect(&manager, &DownloadManager::signalDownloadFinished, &loop,
                     [&](bool, const QString &file) {
                         path = file;
                         loop.quit();
                     });
    const QUrl url =
        server.url(QStringLiteral("/bytes/%1/a%20file.bin?rate=%2").arg(downloadBytes).arg(bytesPerSecond));
    if (manager.StartDownload(url, directory.path()))
        loop.exec();
    report.line(QStringLiteral("StartDownload"), path);
    report.promise(QStringLiteral("the file is whole and has the name from the address"),
                   QFileInfo(path).fileName() == QLatin1String("a file.bin")
                       && QFileInfo(path).size() == downloadBytes);
}

} // namespace

void showHttp(Report &report, const QDir &directory)
{
    const HttpServer server;
    report.heading(QStringLiteral("HTTP requests"), QStringLiteral("ZyBase/http/CHttpPostRequest.h"));
    report.line(QStringLiteral("a server of the tour's own"), server.url(QString()).toString());
    showRequests(report, server);
    showStop(report, server);
    report.heading(QStringLiteral("Downloads"), QStringLiteral("ZyBase/http/DownloadManager.h"));
    showDownload(report, server, directory);
}
