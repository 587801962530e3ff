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
#include <QTimer>

#include <benchmark/benchmark.h>

#include <thread>

using LocalServices::HttpServer;
using ZyBase::CHttpPostRequest;

namespace {

constexpr int mebi = 1024 * 1024;

HttpServer &server()
{
    static HttpServer instance;
    return instance;
}

QUrl urlOf(int size)
{
    return server().url(QStringLiteral("/bytes/%1").arg(size));
}

// The shortest way to a whole answer by Qt alone: a manager, a request, a loop.
QByteArray getByQt(const QUrl &url)
{
    QNetworkAccessManager manager;
    QEventLoop loop;
    QNetworkReply *const reply = manager.get(QNetworkRequest(url));
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    return reply->readAll();
}

void getSyncByTheLibrary(benchmark::State &state)
{
    const QUrl url = urlOf(int(state.range(0)));
    for (auto _ : state) {
        QByteArray data;
        CHttpPostRequest().StartGetRequestSync(url, data);
        benchmark::DoNotOptimize(data);
    }
}

void getSyncByQt(benchmark::State &state)
{
    const QUrl url = urlOf(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(getByQt(url));
}

void getAsyncByTheLibrary(benchmark::State &state)
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

void getAsyncByQt(benchmark::State &state)
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

QJsonObject objectOf(int64_t members)
{
    QJsonObject object;
    for (int i = 0; i < members; ++i)
        object.insert(QStringLiteral("key%1").arg(i), QStringLiteral("value %1").arg(i));
    return object;
}

void sign(benchmark::State &state)
{
    const QJsonObject object = objectOf(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(CHttpPostRequest::SignObject(object, QStringLiteral("secret")));
}

// One member's share: in ratio to that of a small object it shows whether the work grows in line.
void signPerMember(benchmark::State &state)
{
    constexpr int total = 100000;
    const int members = int(state.range(0));
    const QJsonObject object = objectOf(members);
    for (auto _ : state) {
        for (int signedMembers = 0; signedMembers < total; signedMembers += members)
            benchmark::DoNotOptimize(CHttpPostRequest::SignObject(object, QStringLiteral("secret")));
    }
}

void hashTheTextOnly(benchmark::State &state)
{
    const QByteArray text = QJsonDocument(objectOf(state.range(0))).toJson(QJsonDocument::Compact);
    for (auto _ : state)
        benchmark::DoNotOptimize(QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex());
}

constexpr auto ms = benchmark::kMillisecond;
BENCHMARK(getSyncByTheLibrary)->Name("get/small/CHttpPostRequest")->Arg(100)->Unit(ms)->UseRealTime();
BENCHMARK(getSyncByQt)->Name("get/small/Qt")->Arg(100)->Unit(ms)->UseRealTime();
BENCHMARK(getSyncByTheLibrary)->Name("get/1 MiB/CHttpPostRequest")->Arg(mebi)->Unit(ms)->UseRealTime();
BENCHMARK(getSyncByQt)->Name("get/1 MiB/Qt")->Arg(mebi)->Unit(ms)->UseRealTime();
BENCHMARK(getAsyncByTheLibrary)->Name("thread/small/CHttpPostRequest")->Arg(100)->Unit(ms)->UseRealTime();
BENCHMARK(getAsyncByQt)->Name("thread/small/Qt")->Arg(100)->Unit(ms)->UseRealTime();
BENCHMARK(getAsyncByTheLibrary)->Name("thread/1 MiB/CHttpPostRequest")->Arg(mebi)->Unit(ms)->UseRealTime();
BENCHMARK(getAsyncByQt)->Name("thread/1 MiB/Qt")->Arg(mebi)->Unit(ms)->UseRealTime();
BENCHMARK(sign)->Name("sign/20 members")->Arg(20)->Unit(benchmark::kMicrosecond);
BENCHMARK(hashTheTextOnly)->Name("sign/digest of 20 members")->Arg(20)->Unit(benchmark::kMicrosecond);
BENCHMARK(signPerMember)->Name("sign/100,000 by 100")->Arg(100)->Unit(ms);
BENCHMARK(signPerMember)->Name("sign/100,000 by 10,000")->Arg(10000)->Unit(ms);
BENCHMARK(signPerMember)->Name("sign/100,000 at once")->Arg(100000)->Unit(ms);

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    return runWithRatios(
        argc, argv,
        {{"a small GET that waits, to plain Qt", "get/small/CHttpPostRequest", "get/small/Qt", 1.05},
         {"a GET of 1 MiB that waits, to plain Qt", "get/1 MiB/CHttpPostRequest", "get/1 MiB/Qt", 1.05},
         {"a small GET in a thread, to plain Qt in one", "thread/small/CHttpPostRequest", "thread/small/Qt",
          1.05},
         {"a GET of 1 MiB in a thread, to plain Qt in one", "thread/1 MiB/CHttpPostRequest",
          "thread/1 MiB/Qt", 1.05},
         {"sign objects of 10,000 members, to 100 times those of 100", "sign/100,000 by 10,000",
          "sign/100,000 by 100", 0},
         {"sign one object of 100,000 members, to 1,000 of 100", "sign/100,000 at once",
          "sign/100,000 by 100", 0}});
}
