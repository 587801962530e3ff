// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Part.h"

#include "OwnedRequest.h"
#include "RunningRequests.h"
#include "Waiting.h"

#include <ZyBase/analytics/CGaReportManager.h>
#include <ZyBase/base/LoggerObject.h>
#include <ZyBase/files/CFileUtils.h>
#include <ZyBase/files/CJsonReader.h>
#include <ZyBase/files/ZipManager.h>
#include <ZyBase/http/CHttpPostRequest.h>
#include <ZyBase/http/DownloadManager.h>
#include <ZyBase/netinfo/CNetworkUtils.h>
#include <ZyBase/platform/CSystemUtils.h>

#include <localservices/HttpServer.h>

#include <qrencode.h>

#include <QCoreApplication>
#include <QImage>

#include <malloc.h>
#include <memory>

using namespace ZyBase;

namespace {

bool writeLog(const Surroundings &surroundings, int round)
{
    constexpr int messages = 50;
    constexpr int roundsPerLog = 20;
    if (round % roundsPerLog == 0) {
        LoggerObject::ReleaseLogger();
        LoggerObject::InitLogger(surroundings.logName.toUtf8().constData(),
                                 surroundings.logDirectory.toUtf8().constData());
    }
    for (int i = 0; i < messages; ++i)
        LoggerObject::info(QStringLiteral("round %1, message %2").arg(round).arg(i).toUtf8().constData());
    return true;
}

// Each form of a request once.
bool sendRequests(const QUrl &url)
{
    const QJsonObject body {{QStringLiteral("key"), QStringLiteral("value")}};
    const auto answers = std::make_shared<int>(0);
    const auto create = [&answers] {
        CHttpPostRequest *const request = createRequest(QCoreApplication::instance());
        const auto count = [answers](const QByteArray &data) { *answers += data.isEmpty() ? 0 : 1; };
        QObject::connect(request, &CHttpPostRequest::SignalRequestResult, request, count);
        QObject::connect(request, &CHttpPostRequest::SignalRequestResultAndStatusCode, request, count);
        return request;
    };
    create()->StartGetRequest(url, QString());
    create()->StartGetRequestAndStatusCode(url, QStringLiteral("session"));
    create()->StartRequestAsync(url, body, QString());
    CHttpPostRequest request;
    QByteArray posted;
    QByteArray got;
    request.StartRequestSync(url, body, posted);
    request.StartGetRequestSync(url, got);
    return !posted.isEmpty() && !got.isEmpty()
           && QTest::qWaitFor([&answers] { return *answers == 3; }, longestWaitMs);
}

// Stops many requests that are in flight at the same time.
bool stopRequests()
{
    constexpr std::chrono::seconds timeToStop(30);
    constexpr int deletionMs = 1500; // createRequest() deletes a request one second after its outcome
    bool areStopped = false;
    {
        const LocalServices::HttpServer server;
        RunningRequests requests;
        for (int i = 0; i < manyRequests; ++i) {
            CHttpPostRequest *const request = createRequest(&requests);
            requests.add(request);
            request->StartGetRequest(server.url(QStringLiteral("/never")), QString());
        }
        const bool areInFlight = QTest::qWaitFor(
            [&server] { return server.requests().size() == manyRequests; }, beforeTimeLimitMs);
        areStopped = requests.stopAll(timeToStop) && areInFlight;
    }
    QTest::qWait(deletionMs);
    return areStopped;
}

bool download(const QUrl &url, const QString &directory)
{
    DownloadManager manager;
    bool isFinished = false;
    bool isGood = false;
    QObject::connect(&manager, &DownloadManager::signalDownloadFinished, &manager,
                     [&](bool success, const QString &) {
                         isFinished = true;
                         isGood = success;
                     });
    return manager.StartDownload(url, directory)
           && QTest::qWaitFor([&isFinished] { return isFinished; }, longestWaitMs) && isGood;
}

CGaReportManager *readCatalogue(const Surroundings &surroundings, int events)
{
    CGaReportManager *const manager = CGaReportManager::getInstance(nullptr);
    manager->InitGaData(surroundings.catalogue(events), QStringLiteral("client"), QStringLiteral("G-1"),
                        QStringLiteral("secret"));
    return manager;
}

bool report(const Surroundings &surroundings)
{
    CGaReportManager *const manager = readCatalogue(surroundings, 2);
    manager->InitXdData(surroundings.statistics.toString(), QStringLiteral("device"), QStringLiteral("soak"),
                        QStringLiteral("1.0"), QStringLiteral("store"));
    manager->SendXdReport(QStringLiteral("install"), QStringLiteral("end"));
    manager->SendGaReport(QStringLiteral("key_0"), QStringLiteral("label"), false);
    manager->SendGaReport(QStringLiteral("key_1"), QString(), true);
    return true;
}

bool findEvents(const Surroundings &surroundings)
{
    CGaReportManager *const manager = readCatalogue(surroundings, manyEvents);
    int found = 0;
    for (int i = 0; i < manyEvents; ++i)
        found += manager->GetGaData(QStringLiteral("key_%1").arg(i)).size() == 4 ? 1 : 0;
    return found == manyEvents && manager->GetGaData(QStringLiteral("missing")).isEmpty();
}

bool useFiles(const QString &path)
{
    const QJsonObject settings {{QStringLiteral("width"), 800},
                                {QStringLiteral("name"), QStringLiteral("soak")}};
    static const QString identifier = CSystemUtils::GetPCID(QStringLiteral("zybase"), QStringLiteral("soak"));
    CJsonReader::SaveJsonFile(path, settings);
    CSystemUtils::IsNewUser(QStringLiteral("zybase"), QStringLiteral("soak"));
    return CSystemUtils::GetPCID(QStringLiteral("zybase"), QStringLiteral("soak")) == identifier
           && CJsonReader::ParseJsonFileToObject(path) == settings
           && CFileUtils::GetFileMd5(path).size() == 32 && getBigFileMd5(path).size() == 16
           && CFileUtils::getUniqueFileName(path, QString()) != path;
}

bool findAddress()
{
    QString country;
    QString location;
    double latitude = 0;
    double longitude = 0;
    return CNetworkUtils::GetIPInfo(country, location, latitude, longitude) && !GetIP().isEmpty();
}

bool drawSymbol()
{
    constexpr int side = 200;
    return !CSystemUtils::GenerateQRCode(QString::fromLatin1(symbolText), QSize(side, side)).isNull();
}

double sizeOfSymbol()
{
    QRcode *const symbol = QRcode_encodeString(symbolText, 0, QR_ECLEVEL_Q, QR_MODE_8, 1);
    const size_t bytes = ::malloc_usable_size(symbol->data) + sizeof(size_t);
    QRcode_free(symbol);
    return double(bytes);
}

} // namespace

std::vector<Part> libraryParts(const Surroundings &s)
{
    return {{"log", [&s, round = 0]() mutable { return writeLog(s, round++); }},
            {"requests", [&s] { return sendRequests(s.url("/echo")); }},
            {"downloads", [&s] { return download(s.url("/bytes/200000/file.bin"), s.directory); }},
            {"archive", [&s] { return ZipManager::QuaUnzipFile(s.archive(), s.path("extracted"), true); }},
            {"theme",
             [] {
                 CSystemUtils::IsDarkTheme();
                 return true;
             }},
            {"reports", [&s] { return report(s); }},
            {"address", findAddress},
            {"files", [&s] { return useFiles(s.path("settings.json")); }},
            {"qrcode", drawSymbol, true, sizeOfSymbol(),
             "GenerateQRCode() does not free the modules of a symbol"},
            {"in-flight", stopRequests, false},
            {"catalogue", [&s] { return findEvents(s); }, false}};
}
