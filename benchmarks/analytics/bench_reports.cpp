// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/analytics/CGaReportManager.h>
#include <ZyBase/files/CJsonReader.h>

#include "catalogue.h"
#include "ratios.h"

#include <localservices/HttpServer.h>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDateTime>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSemaphore>
#include <QUrl>

#include <benchmark/benchmark.h>

#include <ctime>
#include <thread>

using LocalServices::HttpServer;
using ZyBase::CGaReportManager;
using ZyBase::CJsonReader;

namespace {

constexpr int eventCount = 100000;
constexpr int lookupCount = 1000000;

using Catalogue = QMap<QString, QJsonObject>;

const QString &cataloguePath()
{
    static const QTemporaryDir directory;
    static const QString path = writeCatalogue(directory, eventCount);
    return path;
}

// Known and unknown keys, not sorted.
const QStringList &keys()
{
    static const QStringList list = [] {
        QStringList result;
        for (int i = 0; i < lookupCount; ++i)
            result << QStringLiteral("key_%1").arg(qint64(i) * 7919 % (eventCount + eventCount / 10));
        return result;
    }();
    return list;
}

CGaReportManager *manager()
{
    return CGaReportManager::getInstance(nullptr);
}

void loadInto(Catalogue &catalogue)
{
    const QJsonArray events = CJsonReader::ParseJsonFileToArray(cataloguePath());
    for (const QJsonValue &value : events) {
        const QJsonObject event = value.toObject();
        catalogue.insert(event.value(QStringLiteral("event_key")).toString(), event);
    }
}

void initByLibrary(benchmark::State &state)
{
    const QString path = cataloguePath();
    for (auto _ : state) {
        manager()->InitGaData(path, QString(), QString(), QString());
        state.PauseTiming();
        delete CGaReportManager::s_instance;
        CGaReportManager::s_instance = nullptr;
        state.ResumeTiming();
    }
}

void initByQt(benchmark::State &state)
{
    cataloguePath();
    for (auto _ : state) {
        auto *const catalogue = new Catalogue;
        loadInto(*catalogue);
        state.PauseTiming();
        delete catalogue;
        state.ResumeTiming();
    }
}

void lookUpByLibrary(benchmark::State &state)
{
    manager()->InitGaData(cataloguePath(), QString(), QString(), QString());
    for (auto _ : state) {
        for (const QString &key : keys())
            benchmark::DoNotOptimize(manager()->GetGaData(key));
    }
}

// Tests for the key and reads its value.
void lookUpByQt(benchmark::State &state)
{
    Catalogue catalogue;
    loadInto(catalogue);
    for (auto _ : state) {
        for (const QString &key : keys())
            benchmark::DoNotOptimize(catalogue.contains(key) ? catalogue.value(key) : QJsonObject());
    }
}

QUrl echoUrl()
{
    static const HttpServer server;
    return server.url(QStringLiteral("/echo"));
}

// Measures the CPU time of the calling thread only, not that of the thread that it starts.
template <typename Call> void measure(benchmark::State &state, Call call)
{
    const auto cpuSeconds = [] {
        timespec time {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
    };
    const double startSeconds = cpuSeconds();
    call();
    state.SetIterationTime(cpuSeconds() - startSeconds);
}

void sendByLibrary(benchmark::State &state)
{
    CXdReport reporter;
    reporter.InitData(echoUrl().toString(), QStringLiteral("device"), QStringLiteral("reader"),
                      QStringLiteral("1.2.3"), QStringLiteral("store"));
    for (auto _ : state) {
        measure(state, [&] { reporter.ReportXdData(QStringLiteral("install"), QStringLiteral("end")); });
        while (!reporter.children().isEmpty())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

// The Qt calls that a record needs on the caller's thread: two clock readings, the JSON, the digest and the
// URL.
QUrl prepareByQt()
{
    const QString day = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    const QString seconds = QString::number(QDateTime::currentDateTime().toSecsSinceEpoch());
    const QJsonObject record {{QStringLiteral("action"), QStringLiteral("install")},
                              {QStringLiteral("day"), day},
                              {QStringLiteral("device_id"), QStringLiteral("device")},
                              {QStringLiteral("os"), QStringLiteral("linux")},
                              {QStringLiteral("product"), QStringLiteral("reader")},
                              {QStringLiteral("qd"), QStringLiteral("store")},
                              {QStringLiteral("status"), QStringLiteral("end")},
                              {QStringLiteral("version"), QStringLiteral("1.2.3")}};
    const QByteArray json = QJsonDocument(record).toJson(QJsonDocument::Compact);
    const QByteArray digest = QCryptographicHash::hash(json, QCryptographicHash::Md5).toHex();
    return QUrl(echoUrl().toString() + QStringLiteral("?sign=") + QString::fromLatin1(digest)
                + QStringLiteral("&timestamp=") + seconds);
}

void postByQt(const QUrl &url)
{
    QNetworkAccessManager manager;
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    QEventLoop loop;
    const QNetworkReply *const reply = manager.post(request, QByteArrayLiteral("{}"));
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
}

template <typename Prepare> void measureStart(benchmark::State &state, Prepare prepare)
{
    QSemaphore requestsEnded;
    for (auto _ : state) {
        measure(state, [&] {
            std::thread([&requestsEnded, url = prepare()] {
                postByQt(url);
                requestsEnded.release();
            }).detach();
        });
        requestsEnded.acquire();
    }
}

void startThreadOnly(benchmark::State &state)
{
    measureStart(state, echoUrl);
}

void startThreadWithRecord(benchmark::State &state)
{
    measureStart(state, prepareByQt);
}

BENCHMARK(initByLibrary)->Name("init/InitGaData")->Unit(benchmark::kMillisecond);
BENCHMARK(initByQt)->Name("init/QMap")->Unit(benchmark::kMillisecond);
BENCHMARK(lookUpByLibrary)->Name("lookup/GetGaData")->Unit(benchmark::kMillisecond);
BENCHMARK(lookUpByQt)->Name("lookup/QMap")->Unit(benchmark::kMillisecond);
BENCHMARK(sendByLibrary)
    ->Name("send/ReportXdData")
    ->UseManualTime()
    ->Iterations(200)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(startThreadOnly)
    ->Name("send/thread")
    ->UseManualTime()
    ->Iterations(200)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(startThreadWithRecord)
    ->Name("send/thread and record")
    ->UseManualTime()
    ->Iterations(200)
    ->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    return runWithRatios(argc, argv,
                         {{"load a catalogue of 100,000 events", "init/InitGaData", "init/QMap"},
                          {"1,000,000 lookups in it", "lookup/GetGaData", "lookup/QMap", 1.0},
                          {"start a record", "send/ReportXdData", "send/thread and record"},
                          {"start a record", "send/ReportXdData", "send/thread"}});
}
