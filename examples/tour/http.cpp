// SPDX-License-Identifier: 0BSD

#include "services.h"

#include "Report.h"
#include "waiting.h"

#include <ZyBase/http/CHttpPostRequest.h>
#include <ZyBase/http/DownloadManager.h>

#include <localservices/HttpServer.h>

#include <QFileInfo>
#include <QJsonDocument>

using LocalServices::HttpServer;
using ZyBase::CHttpPostRequest;
using ZyBase::DownloadManager;

namespace {

constexpr int downloadSizeBytes = 2 * 1024 * 1024;
constexpr int bytesPerSecond = 6 * 1024 * 1024;
constexpr std::chrono::milliseconds stopAfter(200);

// After its last signal, the thread of a request still uses the request.
constexpr std::chrono::milliseconds endOfThread(200);

void showRequests(Report &report, const HttpServer &server)
{
    CHttpPostRequest request;
    QByteArray answer;
    const bool isFetched =
        request.StartGetRequestSync(server.url(QStringLiteral("/echo?greeting=hello")), answer);
    report.line(QStringLiteral("StartGetRequestSync"), QString::fromUtf8(answer));
    report.promise(QStringLiteral("A GET request returns the server's answer"),
                   isFetched && answer == "/echo?greeting=hello");

    QJsonObject order {{QStringLiteral("item"), QStringLiteral("paper")}, {QStringLiteral("count"), 3}};
    const QString signature = CHttpPostRequest::SignObject(order, QStringLiteral("secret"));
    report.line(QStringLiteral("SignObject"), signature);
    report.promise(QStringLiteral("The signature is the MD5 digest of the members and the secret"),
                   signature == QLatin1String("4d6fe485946b7efee53c94d7ed3a3d39"));

    order.insert(QStringLiteral("sign"), signature);
    const bool isPosted = request.StartRequestSync(server.url(QStringLiteral("/echo")), order, answer);
    report.line(QStringLiteral("StartRequestSync"), QString::fromUtf8(answer));
    report.promise(QStringLiteral("A POST request sends the compact JSON text"),
                   isPosted && answer == QJsonDocument(order).toJson(QJsonDocument::Compact));
}

void showStop(Report &report, const HttpServer &server)
{
    CHttpPostRequest request;
    QString outcome;
    const auto end = [&outcome](const char *signal) {
        return [&outcome, signal] { outcome = QLatin1String(signal); };
    };
    QObject::connect(&request, &CHttpPostRequest::SignalRequestResult, &request, end("result"));
    QObject::connect(&request, &CHttpPostRequest::SignalRequestTimeout, &request, end("timeout"));
    QObject::connect(&request, &CHttpPostRequest::SignalRequestCancel, &request, end("cancel"));
    request.StartGetRequest(server.url(QStringLiteral("/never")), QStringLiteral("a session"));
    QTimer::singleShot(stopAfter, &request, &CHttpPostRequest::SignalStopRequest);
    waitFor([&outcome] { return !outcome.isEmpty(); });
    report.line(QStringLiteral("StartGetRequest, stopped"), outcome);
    report.promise(QStringLiteral("A request without an answer can be cancelled"),
                   outcome == QLatin1String("cancel"));
    runEventLoop(endOfThread);
}

void showDownload(Report &report, const HttpServer &server, const QDir &directory)
{
    DownloadManager manager;
    bool isFinished = false;
    qint64 lastReceived = 0;
    QString path;
    QObject::connect(&manager, &DownloadManager::signalDownloadProgress, &manager,
                     [&](qint64 received, qint64 total, const QString &speed) {
                         lastReceived = received;
                         report.excerpt({QStringLiteral("%1 of %2 bytes, %3 %, %4")
                                             .arg(received)
                                             .arg(total)
                                             .arg(total > 0 ? 100 * received / total : 0)
                                             .arg(speed)});
                     });
    QObject::connect(&manager, &DownloadManager::signalDownloadFinished, &manager,
                     [&](bool, const QString &file) {
                         path = file;
                         isFinished = true;
                     });
    const QUrl url = server.url(
        QStringLiteral("/bytes/%1/a%20file.bin?rate=%2").arg(downloadSizeBytes).arg(bytesPerSecond));
    if (manager.StartDownload(url, directory.path()))
        waitFor([&isFinished] { return isFinished; });
    report.line(QStringLiteral("StartDownload"), directory.relativeFilePath(path));
    report.promise(QStringLiteral("The file is complete; its name comes from the address"),
                   QFileInfo(path).fileName() == QLatin1String("a file.bin")
                       && QFileInfo(path).size() == downloadSizeBytes);
    report.promise(QStringLiteral("The progress reaches the size of the file"),
                   lastReceived == downloadSizeBytes);
}

} // namespace

void showHttp(Report &report, const QDir &directory)
{
    const HttpServer server;
    report.heading(QStringLiteral("HTTP requests"), QStringLiteral("ZyBase/http/CHttpPostRequest.h"));
    report.line(QStringLiteral("server in this process"), server.url(QString()).toString());
    showRequests(report, server);
    showStop(report, server);
    report.heading(QStringLiteral("Downloads"), QStringLiteral("ZyBase/http/DownloadManager.h"));
    showDownload(report, server, directory);
}
