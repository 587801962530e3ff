// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/http/CHttpPostRequest.h>

#include "ratios.h"

#include <localservices/HttpServer.h>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QEventLoop>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslConfiguration>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <thread>

using LocalServices::HttpServer;
using ZyBase::CHttpPostRequest;

namespace {

constexpr int bytesPerMiB = 1024 * 1024;
constexpr int timeoutMs = 10000;

HttpServer &server()
{
    static HttpServer instance;
    return instance;
}

QUrl urlOf(int sizeBytes)
{
    return server().url(QStringLiteral("/bytes/%1").arg(sizeBytes));
}

QNetworkRequest createRequest(const QUrl &url)
{
    QNetworkRequest request(url);
    QSslConfiguration configuration = request.sslConfiguration();
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
    configuration.setProtocol(QSsl::TlsV1_2);
    request.setSslConfiguration(configuration);
    request.setRawHeader("User-Agent", "Mozilla/5.0 (Windows NT 10.0; Win64; x64) AppleWebKit/537.36 "
                                       "(KHTML, like Gecko) Chrome/60.0.3100.0 Safari/537.36");
    return request;
}

// Sends the same request with the same time limit by Qt alone, with as little code as possible.
QByteArray getByQt(const QUrl &url, QNetworkAccessManager &manager)
{
    QEventLoop loop;
    QTimer timer;
    QNetworkReply *const reply = manager.get(createRequest(url));
    QObject::connect(&timer, &QTimer::timeout, reply, &QNetworkReply::abort);
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    timer.start(timeoutMs);
    loop.exec();
    reply->deleteLater();
    return reply->readAll();
}

QByteArray getByQt(const QUrl &url)
{
    QNetworkAccessManager manager;
    return getByQt(url, manager);
}

void getAndWaitByLibrary(benchmark::State &state)
{
    const QUrl url = urlOf(int(state.range(0)));
    for (auto _ : state) {
        QByteArray data;
        CHttpPostRequest().StartGetRequestSync(url, data);
        benchmark::DoNotOptimize(data);
    }
}

void getAndWaitByQt(benchmark::State &state)
{
    const QUrl url = urlOf(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(getByQt(url));
}

void getAndWaitByLastingManager(benchmark::State &state)
{
    const QUrl url = urlOf(int(state.range(0)));
    QNetworkAccessManager manager;
    for (auto _ : state)
        benchmark::DoNotOptimize(getByQt(url, manager));
}

void getInThreadByLibrary(benchmark::State &state)
{
    const QUrl url = urlOf(int(state.range(0)));
    CHttpPostRequest request;
    QEventLoop loop;
    QObject::connect(&request, &CHttpPostRequest::SignalRequestResult, &loop, &QEventLoop::quit);
    for (auto _ : state) {
        request.StartGetRequest(url, QString());
        loop.exec();
    }
}

void getInThreadByQt(benchmark::State &state)
{
    const QUrl url = urlOf(int(state.range(0)));
    QEventLoop loop;
    for (auto _ : state) {
        std::thread([&loop, url] {
            benchmark::DoNotOptimize(getByQt(url));
            QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
        }).detach();
        loop.exec();
    }
}

QJsonObject objectOf(int64_t memberCount)
{
    QJsonObject object;
    for (int i = 0; i < memberCount; ++i)
        object.insert(QStringLiteral("key%1").arg(i), QStringLiteral("value %1").arg(i));
    return object;
}

void sign(benchmark::State &state)
{
    const QJsonObject object = objectOf(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(CHttpPostRequest::SignObject(object, QStringLiteral("secret")));
}

QString memberString(const QJsonValue &value)
{
    if (value.isString())
        return value.toString();
    return value.isDouble() ? QStringLiteral("%1").arg(int(value.toDouble())) : QString();
}

// Signs as the signature is defined, one step after the other.
QString signStepByStep(const QJsonObject &object, const QString &secret)
{
    QStringList keys = object.keys();
    std::sort(keys.begin(), keys.end());
    QStringList items;
    for (const QString &key : qAsConst(keys))
        items << key + QLatin1Char('=') + memberString(object.value(key));
    const QString text = items.join(QLatin1Char('&')) + secret;
    return QString::fromLatin1(QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Md5).toHex());
}

void signByQt(benchmark::State &state)
{
    const QJsonObject object = objectOf(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(signStepByStep(object, QStringLiteral("secret")));
}

// Signs 100,000 members in objects of a given size. The ratio to small objects shows whether the time grows
// linearly.
void signPerMember(benchmark::State &state)
{
    constexpr int totalMemberCount = 100000;
    const int memberCount = int(state.range(0));
    const QJsonObject object = objectOf(memberCount);
    for (auto _ : state) {
        for (int signedCount = 0; signedCount < totalMemberCount; signedCount += memberCount)
            benchmark::DoNotOptimize(CHttpPostRequest::SignObject(object, QStringLiteral("secret")));
    }
}

void hashOnly(benchmark::State &state)
{
    const QByteArray json = QJsonDocument(objectOf(state.range(0))).toJson(QJsonDocument::Compact);
    for (auto _ : state)
        benchmark::DoNotOptimize(QCryptographicHash::hash(json, QCryptographicHash::Md5).toHex());
}

constexpr auto ms = benchmark::kMillisecond;
BENCHMARK(getAndWaitByLibrary)->Name("get/small/CHttpPostRequest")->Arg(100)->Unit(ms)->UseRealTime();
BENCHMARK(getAndWaitByQt)->Name("get/small/Qt")->Arg(100)->Unit(ms)->UseRealTime();
BENCHMARK(getAndWaitByLastingManager)
    ->Name("get/small/Qt with a lasting manager")
    ->Arg(100)
    ->Unit(ms)
    ->UseRealTime();
BENCHMARK(getAndWaitByLibrary)->Name("get/1 MiB/CHttpPostRequest")->Arg(bytesPerMiB)->Unit(ms)->UseRealTime();
BENCHMARK(getAndWaitByQt)->Name("get/1 MiB/Qt")->Arg(bytesPerMiB)->Unit(ms)->UseRealTime();
BENCHMARK(getInThreadByLibrary)->Name("thread/small/CHttpPostRequest")->Arg(100)->Unit(ms)->UseRealTime();
BENCHMARK(getInThreadByQt)->Name("thread/small/Qt")->Arg(100)->Unit(ms)->UseRealTime();
BENCHMARK(getInThreadByLibrary)
    ->Name("thread/1 MiB/CHttpPostRequest")
    ->Arg(bytesPerMiB)
    ->Unit(ms)
    ->UseRealTime();
BENCHMARK(getInThreadByQt)->Name("thread/1 MiB/Qt")->Arg(bytesPerMiB)->Unit(ms)->UseRealTime();
BENCHMARK(sign)->Name("sign/20 members")->Arg(20)->Unit(benchmark::kMicrosecond);
BENCHMARK(hashOnly)->Name("sign/digest of 20 members")->Arg(20)->Unit(benchmark::kMicrosecond);
BENCHMARK(sign)->Name("sign/1,000 members/CHttpPostRequest")->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(signByQt)->Name("sign/1,000 members/Qt")->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(signPerMember)->Name("sign/100 at a time")->Arg(100)->Unit(ms);
BENCHMARK(signPerMember)->Name("sign/10,000 at a time")->Arg(10000)->Unit(ms);
BENCHMARK(signPerMember)->Name("sign/100,000 at a time")->Arg(100000)->Unit(ms);

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    return runWithRatios(
        argc, argv,
        {{"GET of 100 bytes that waits", "get/small/CHttpPostRequest", "get/small/Qt", 1.05},
         {"GET of 100 bytes that waits", "get/small/CHttpPostRequest", "get/small/Qt with a lasting manager"},
         {"GET of 1 MiB that waits", "get/1 MiB/CHttpPostRequest", "get/1 MiB/Qt", 1.05},
         {"GET of 100 bytes in a thread", "thread/small/CHttpPostRequest", "thread/small/Qt", 1.05},
         {"GET of 1 MiB in a thread", "thread/1 MiB/CHttpPostRequest", "thread/1 MiB/Qt", 1.05},
         {"sign an object of 1,000 members", "sign/1,000 members/CHttpPostRequest", "sign/1,000 members/Qt",
          0.6},
         {"sign objects of 10,000 members", "sign/10,000 at a time", "sign/100 at a time"},
         {"sign an object of 100,000 members", "sign/100,000 at a time", "sign/100 at a time"}});
}
