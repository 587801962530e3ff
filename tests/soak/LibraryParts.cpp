// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Part.h"

#include "OwnedRequest.h"
#include "ProcessFigures.h"

#include <ZyBase/analytics/CGaReportManager.h>
#include <ZyBase/base/LoggerObject.h>
#include <ZyBase/files/CFileUtils.h>
#include <ZyBase/files/CJsonReader.h>
#include <ZyBase/files/ZipManager.h>
#include <ZyBase/http/CHttpPostRequest.h>
#include <ZyBase/http/DownloadManager.h>
#include <ZyBase/netinfo/CNetworkUtils.h>
#include <ZyBase/platform/CSystemUtils.h>

#include <qrencode.h>

#include <QCoreApplication>
#include <QImage>

#include <malloc.h>
#include <memory>

using namespace ZyBase;

namespace {

// --- Log ------------------------------------------------------------------------------------

std::function<bool()> logPart(const Surroundings &surroundings)
{
    const auto init = [surroundings] {
        LoggerObject::InitLogger(surroundings.logName.toUtf8().constData(),
                                 surroundings.logDirectory.toUtf8().constData());
    };
    init();
    return [init, round = 0]() mutable {
        constexpr int messages = 50;
        constexpr int roundsPerLog = 20;
        for (int i = 0; i < messages; ++i)
            LoggerObject::info(QStringLiteral("round %1, message %2").arg(round).arg(i).toUtf8().constData());
        if (++round % roundsPerLog == 0) {
            LoggerObject::ReleaseLogger();
            init();
        }
        return true;
    };
}

// --- Requests -------------------------------------------------------------------------------

// Starts a request whose outcome is counted.
template <typename Start> void startCounted(const std::shared_ptr<int> &outcomes, Start start)
{
    CHttpPostRequest *const request = createRequest(QCoreApplication::instance());
    const auto count = [outcomes] { ++*outcomes; };
    QObject::connect(request, &CHttpPostRequest::SignalRequestResult, request, count);
    QObject::connect(request, &CHttpPostRequest::SignalRequestResultAndStatusCode, request, count);
    QObject::connect(request, &CHttpPostRequest::SignalRequestTimeout, request, count);
    QObject::connect(request, &CHttpPostRequest::SignalRequestCancel, request, count);
    start(request);
}

bool sendRequests(const QUrl &url)
{
    const QJsonObject body {{QStringLiteral("key"), QStringLiteral("value")}};
    const auto outcomes = std::make_shared<int>(0);
    startCounted(outcomes, [&](CHttpPostRequest *request) { request->StartGetRequest(url, {}); });
    startCounted(outcomes, [&](CHttpPostRequest *request) {
        request->StartGetRequestAndStatusCode(url, QStringLiteral("session"));
    });
    startCounted(outcomes, [&](CHttpPostRequest *request) { request->StartRequestAsync(url, body, {}); });
    CHttpPostRequest request;
    QByteArray posted;
    QByteArray got;
    return request.StartRequestSync(url, body, posted) && request.StartGetRequestSync(url, got)
           && !posted.isEmpty() && !got.isEmpty() && waitUntil([outcomes] { return *outcomes == 3; });
}

// 500 requests to a server that does not answer, all in flight at the same time, and then stopped.
bool stopRequests(const QUrl &url)
{
    constexpr int requests = 500;
    const int threads = ProcessFigures::threadCount();
    QObject owner;
    CHttpPostRequest source;
    const auto outcomes = std::make_shared<int>(0);
    for (int i = 0; i < requests; ++i) {
        startCounted(outcomes, [&](CHttpPostRequest *request) {
            QObject::connect(&source, &CHttpPostRequest::SignalStopRequest, request,
                             &CHttpPostRequest::SignalStopRequest);
            request->StartGetRequest(url, {});
        });
    }
    const bool areInFlight =
        waitUntil([threads] { return ProcessFigures::threadCount() >= threads + requests; }, 9000);
    const bool areStopped = waitUntil([&] {
        Q_EMIT source.SignalStopRequest();
        return *outcomes == requests;
    });
    constexpr int deletionMs = 1500;
    runEventLoop(deletionMs);
    return areInFlight && areStopped
           && waitUntil([threads] { return ProcessFigures::threadCount() <= threads; });
}

bool download(const QUrl &url, const QString &directory)
{
    auto *const manager = new DownloadManager;
    bool isFinished = false;
    bool isGood = false;
    QObject::connect(manager, &DownloadManager::signalDownloadFinished, manager,
                     [&](bool success, const QString &) {
                         isFinished = true;
                         isGood = success;
                     });
    const bool isDone = manager->StartDownload(url, directory) && waitUntil([&] { return isFinished; });
    manager->deleteLater();
    return isDone && isGood;
}

// --- Reports --------------------------------------------------------------------------------

bool report()
{
    const int threads = ProcessFigures::threadCount();
    CGaReportManager *const manager = CGaReportManager::getInstance(nullptr);
    manager->SendGaReport(QStringLiteral("key1"), QStringLiteral("label"), false);
    manager->SendGaReport(QStringLiteral("key2"), QString(), true);
    manager->SendXdReport(QStringLiteral("install"), QStringLiteral("end"));
    // Nothing reports the end of a report but the end of its thread.
    return waitUntil([threads] { return ProcessFigures::threadCount() <= threads; });
}

std::function<bool()> reportsPart(const Surroundings &surroundings, int events)
{
    const QString catalogue = surroundings.directory + QStringLiteral("/events%1.json").arg(events);
    writeCatalogue(catalogue, events);
    CGaReportManager *const manager = CGaReportManager::getInstance(nullptr);
    manager->InitXdData(surroundings.statistics.toString(), QStringLiteral("device"), QStringLiteral("soak"),
                        QStringLiteral("1.0"), QStringLiteral("store"));
    const auto read = [manager, catalogue] {
        manager->InitGaData(catalogue, QStringLiteral("client"), QStringLiteral("G-1"),
                            QStringLiteral("secret"));
    };
    read();
    constexpr int usualEvents = 3;
    if (events <= usualEvents)
        return report;
    return [manager, read, events] {
        read();
        for (int i = 0; i < events; ++i) {
            if (manager->GetGaData(QStringLiteral("key%1").arg(i)).size() != 4)
                return false;
        }
        return manager->GetGaData(QStringLiteral("missing")).isEmpty();
    };
}

// --- Files, addresses and symbols -----------------------------------------------------------

bool useFiles(const QString &directory)
{
    const QString path = directory + QStringLiteral("/settings.json");
    const QJsonObject settings {{QStringLiteral("width"), 800},
                                {QStringLiteral("name"), QStringLiteral("soak")}};
    CJsonReader::SaveJsonFile(path, settings);
    const QString identifier = CSystemUtils::GetPCID(QStringLiteral("zybase"), QStringLiteral("soak"));
    CSystemUtils::IsNewUser(QStringLiteral("zybase"), QStringLiteral("soak"));
    return CJsonReader::ParseJsonFileToObject(path) == settings && CFileUtils::GetFileMd5(path).size() == 32
           && getBigFileMd5(path).size() == 16 && identifier.size() == 32
           && CFileUtils::getUniqueFileName(path, QString()) != path;
}

bool getLocation()
{
    QString country;
    QString location;
    double latitude = 0;
    double longitude = 0;
    return CNetworkUtils::GetIPInfo(country, location, latitude, longitude) && !GetIP().isEmpty();
}

constexpr const char *symbolText = "https://example.org/soak";

// GenerateQRCode() does not free the modules of a symbol.
double leakedBytesPerSymbol()
{
    QRcode *const symbol = QRcode_encodeString(symbolText, 0, QR_ECLEVEL_Q, QR_MODE_8, 1);
    const double bytes = double(::malloc_usable_size(symbol->data)) + sizeof(size_t);
    QRcode_free(symbol);
    return bytes;
}

bool drawSymbol()
{
    constexpr int side = 200;
    return !CSystemUtils::GenerateQRCode(QString::fromLatin1(symbolText), QSize(side, side)).isNull();
}

} // namespace

std::vector<Part> libraryParts(const Surroundings &surroundings)
{
    const QString &directory = surroundings.directory;
    const auto path = [&](const char *name) {
        return surroundings.server.resolved(QUrl(QLatin1String(name)));
    };
    const QString archive = directory + QStringLiteral("/archive.zip");
    return {{QStringLiteral("log"), logPart(surroundings)},
            {QStringLiteral("requests"), [url = path("/echo")] { return sendRequests(url); }},
            {QStringLiteral("downloads"),
             [url = path("/bytes/200000/file.bin"), directory] { return download(url, directory); }},
            {QStringLiteral("archive"),
             [archive, directory] {
                 return ZipManager::QuaUnzipFile(archive, directory + QStringLiteral("/extracted"), true);
             }},
            {QStringLiteral("theme"),
             [] {
                 CSystemUtils::IsDarkTheme();
                 return true;
             }},
            {QStringLiteral("reports"), reportsPart(surroundings, 3)},
            {QStringLiteral("address"), getLocation},
            {QStringLiteral("files"), [directory] { return useFiles(directory); }},
            {QStringLiteral("qrcode"), drawSymbol, leakedBytesPerSymbol(),
             QStringLiteral("GenerateQRCode() does not free the modules of a symbol")},
            {QStringLiteral("in-flight"), [url = path("/never")] { return stopRequests(url); }},
            {QStringLiteral("catalogue"), [surroundings, round = std::function<bool()>()]() mutable {
                 constexpr int events = 100000;
                 if (!round)
                     round = reportsPart(surroundings, events);
                 return round();
             }}};
}
