// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/http/DownloadManager.h>

#include "ratios.h"

#include <localservices/Nginx.h>

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QNetworkReply>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>

using LocalServices::Nginx;
using ZyBase::DownloadManager;

namespace {

constexpr qint64 mebi = 1024 * 1024;
constexpr qint64 size = 1024 * mebi;

Nginx &server()
{
    static Nginx instance;
    return instance;
}

QUrl url()
{
    return server().url(QStringLiteral("/large"));
}

// In memory where there is such a folder: the network is measured, not the disk.
const QTemporaryDir &directory()
{
    static const QString memory = QStringLiteral("/dev/shm");
    static const QTemporaryDir instance((QFileInfo(memory).isWritable() ? memory : QDir::tempPath())
                                        + QStringLiteral("/bench_download-XXXXXX"));
    return instance;
}

qint64 statusBytes(const QByteArray &key)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(key))
            return line.mid(key.size()).replace("kB", "").trimmed().toLongLong() * 1024;
    }
    return 0;
}

// How much the peak of memory grew since it was made, in MiB.
class Growth
{
public:
    Growth()
    {
        QFile peak(QStringLiteral("/proc/self/clear_refs"));
        if (peak.open(QIODevice::WriteOnly))
            peak.write("5");
    }
    double mebibytes() const { return double(statusBytes("VmHWM:") - m_before) / double(mebi); }

private:
    qint64 m_before = statusBytes("VmRSS:");
};

void byTheLibrary(benchmark::State &state)
{
    DownloadManager manager;
    QEventLoop loop;
    QObject::connect(&manager, &DownloadManager::signalDownloadFinished, &loop, &QEventLoop::quit);
    double growth = 0;
    for (auto _ : state) {
        const Growth peak;
        manager.StartDownload(url(), directory().path());
        loop.exec();
        growth = std::max(growth, peak.mebibytes());
    }
    state.counters["growth_MiB"] = growth;
}

void byQtWithoutABound(benchmark::State &state)
{
    QNetworkAccessManager manager;
    double growth = 0;
    for (auto _ : state) {
        const Growth peak;
        QFile file(directory().filePath(QStringLiteral("large")));
        file.open(QIODevice::WriteOnly);
        QEventLoop loop;
        QNetworkReply *const reply = manager.get(QNetworkRequest(url()));
        QObject::connect(reply, &QNetworkReply::readyRead, [&] { file.write(reply->readAll()); });
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        delete reply;
        growth = std::max(growth, peak.mebibytes());
    }
    state.counters["growth_MiB"] = growth;
}

void byCurl(benchmark::State &state)
{
    const QString target = directory().filePath(QStringLiteral("large"));
    for (auto _ : state) {
        if (QProcess::execute(QStringLiteral("curl"),
                              {QStringLiteral("-s"), QStringLiteral("-o"), target, url().toString()})
            != 0)
            state.SkipWithError("curl failed or is not installed");
    }
}

BENCHMARK(byTheLibrary)->Name("1 GiB/DownloadManager")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(byQtWithoutABound)->Name("1 GiB/Qt, no bound")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(byCurl)->Name("1 GiB/curl")->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (!Nginx::isAvailable()) {
        std::puts("nginx is not installed: nothing to measure with");
        return 0;
    }
    QFile hole(server().filePath(QStringLiteral("large")));
    if (!hole.open(QIODevice::WriteOnly) || !hole.resize(size))
        return 1;
    return runWithRatios(argc, argv,
                         {{"download 1 GiB, to curl", "1 GiB/DownloadManager", "1 GiB/curl", 1.0},
                          {"download 1 GiB, to Qt that reads ahead without a bound", "1 GiB/DownloadManager",
                           "1 GiB/Qt, no bound", 0}});
}
