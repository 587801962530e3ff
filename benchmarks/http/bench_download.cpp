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

constexpr qint64 bytesPerMiB = 1024 * 1024;
constexpr qint64 fileSizeBytes = 1024 * bytesPerMiB;

Nginx &server()
{
    static Nginx instance;
    return instance;
}

QUrl url()
{
    return server().url(QStringLiteral("/large"));
}

// Uses a directory in memory if there is one, to measure the network and not the disk.
const QTemporaryDir &directory()
{
    static const QString inMemory = QStringLiteral("/dev/shm");
    static const QTemporaryDir instance((QFileInfo(inMemory).isWritable() ? inMemory : QDir::tempPath())
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

// Measures by how many MiB the peak memory use has grown since the object was created.
class PeakMemoryGrowth
{
public:
    PeakMemoryGrowth()
    {
        QFile resetPeak(QStringLiteral("/proc/self/clear_refs"));
        if (resetPeak.open(QIODevice::WriteOnly))
            resetPeak.write("5");
    }
    double inMiB() const { return double(statusBytes("VmHWM:") - m_sizeAtStartBytes) / double(bytesPerMiB); }

private:
    qint64 m_sizeAtStartBytes = statusBytes("VmRSS:");
};

void downloadByLibrary(benchmark::State &state)
{
    DownloadManager manager;
    QEventLoop loop;
    QObject::connect(&manager, &DownloadManager::signalDownloadFinished, &loop, &QEventLoop::quit);
    double growthMiB = 0;
    for (auto _ : state) {
        const PeakMemoryGrowth peak;
        manager.StartDownload(url(), directory().path());
        loop.exec();
        growthMiB = std::max(growthMiB, peak.inMiB());
    }
    state.counters["growth_MiB"] = growthMiB;
}

void downloadByQtWithoutLimit(benchmark::State &state)
{
    QNetworkAccessManager manager;
    double growthMiB = 0;
    for (auto _ : state) {
        const PeakMemoryGrowth peak;
        QFile file(directory().filePath(QStringLiteral("large")));
        file.open(QIODevice::WriteOnly);
        QEventLoop loop;
        QNetworkReply *const reply = manager.get(QNetworkRequest(url()));
        QObject::connect(reply, &QNetworkReply::readyRead, [&] { file.write(reply->readAll()); });
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        delete reply;
        growthMiB = std::max(growthMiB, peak.inMiB());
    }
    state.counters["growth_MiB"] = growthMiB;
}

void downloadByCurl(benchmark::State &state)
{
    const QString target = directory().filePath(QStringLiteral("large"));
    for (auto _ : state) {
        if (QProcess::execute(QStringLiteral("curl"),
                              {QStringLiteral("-s"), QStringLiteral("-o"), target, url().toString()})
            != 0)
            state.SkipWithError("curl is not installed, or the download failed");
    }
}

BENCHMARK(downloadByLibrary)->Name("1 GiB/DownloadManager")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(downloadByQtWithoutLimit)
    ->Name("1 GiB/Qt, no read limit")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(downloadByCurl)->Name("1 GiB/curl")->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (!Nginx::isAvailable()) {
        std::puts("The benchmark is skipped: nginx is not installed.");
        return 0;
    }
    QFile sparseFile(server().filePath(QStringLiteral("large")));
    if (!sparseFile.open(QIODevice::WriteOnly) || !sparseFile.resize(fileSizeBytes))
        return 1;
    return runWithRatios(
        argc, argv,
        {{"download of 1 GiB, compared with curl", "1 GiB/DownloadManager", "1 GiB/curl", 1.0},
         {"download of 1 GiB, compared with Qt without a read limit", "1 GiB/DownloadManager",
          "1 GiB/Qt, no read limit", 0}});
}
