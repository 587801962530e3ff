// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/http/DownloadManager.h>

#include "memory.h"
#include "ratios.h"

#include <localservices/Nginx.h>

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QNetworkReply>
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

void registerPrograms()
{
    const QString target = directory().filePath(QStringLiteral("large"));
    registerProgram("1 GiB/curl", QStringLiteral("curl"), [target] {
        return QStringList {QStringLiteral("-sSo"), target, url().toString()};
    });
    registerProgram("1 GiB/wget", QStringLiteral("wget"), [target] {
        return QStringList {QStringLiteral("-qO"), target, url().toString()};
    });
    registerProgram("1 GiB/aria2c", QStringLiteral("aria2c"), [] {
        return QStringList {QStringLiteral("-q"),
                            QStringLiteral("--no-conf"),
                            QStringLiteral("--allow-overwrite=true"),
                            QStringLiteral("--file-allocation=none"),
                            QStringLiteral("-d"),
                            directory().path(),
                            url().toString()};
    });
}

BENCHMARK(downloadByLibrary)->Name("1 GiB/DownloadManager")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(downloadByQtWithoutLimit)->Name("1 GiB/Qt")->Unit(benchmark::kMillisecond)->UseRealTime();

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
    registerPrograms();
    return runWithRatios(argc, argv,
                         {{"download of 1 GiB", "1 GiB/DownloadManager", "1 GiB/Qt"},
                          {"download of 1 GiB", "1 GiB/DownloadManager", "1 GiB/curl", 1.0},
                          {"download of 1 GiB", "1 GiB/DownloadManager", "1 GiB/wget"},
                          {"download of 1 GiB", "1 GiB/DownloadManager", "1 GiB/aria2c"}});
}
