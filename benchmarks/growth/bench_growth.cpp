// SPDX-License-Identifier: LGPL-2.1-or-later

// How time and memory grow with the size of the work. Each size is measured once, in a process of its own, so
// that the memory of one does not count for another.

#include <ZyBase/analytics/CGaReportManager.h>
#include <ZyBase/base/LoggerObject.h>
#include <ZyBase/files/CFileUtils.h>
#include <ZyBase/files/ZipManager.h>
#include <ZyBase/http/CHttpPostRequest.h>
#include <ZyBase/platform/CSystemUtils.h>

#include "catalogue.h"
#include "memory.h"

#include <localservices/HttpServer.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QImage>

#include <quazip.h>
#include <quazipfile.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr qint64 bytesPerMiB = 1 << 20;

struct Cost
{
    double seconds;
    double mebibytes;
};

template <class Work> Cost measure(Work work)
{
    const PeakMemoryGrowth memory;
    QElapsedTimer timer;
    timer.start();
    work();
    return {double(timer.nsecsElapsed()) / 1e9, memory.inMiB()};
}

// 160,000 lines, divided among threads.
Cost writeLines(qint64 threadCount, const QTemporaryDir &directory)
{
    ZyBase::LoggerObject::InitLogger("growth.log", directory.path().toUtf8().constData());
    return measure([threadCount] {
        std::vector<std::thread> threads;
        for (qint64 i = 0; i < threadCount; ++i) {
            threads.emplace_back([threadCount] {
                for (qint64 line = 0; line < 160000 / threadCount; ++line)
                    ZyBase::LoggerObject::info("download of 1048576 bytes finished in 1.25 s");
            });
        }
        for (std::thread &thread : threads)
            thread.join();
    });
}

Cost sendRequests(qint64 requestCount, const QTemporaryDir &)
{
    const LocalServices::HttpServer server;
    const QUrl url = server.url(QStringLiteral("/bytes/100"));
    std::vector<std::unique_ptr<ZyBase::CHttpPostRequest>> requests;
    return measure([&] {
        QEventLoop loop;
        qint64 answers = 0;
        for (qint64 i = 0; i < requestCount; ++i) {
            requests.push_back(std::make_unique<ZyBase::CHttpPostRequest>());
            QObject::connect(requests.back().get(), &ZyBase::CHttpPostRequest::SignalRequestResult, &loop,
                             [&] {
                                 if (++answers == requestCount)
                                     loop.quit();
                             });
            requests.back()->StartGetRequest(url, QString());
        }
        loop.exec();
    });
}

Cost loadCatalogue(qint64 eventCount, const QTemporaryDir &directory)
{
    const QString path = writeCatalogue(directory, int(eventCount));
    return measure([&path] {
        ZyBase::CGaReportManager::getInstance(nullptr)->InitGaData(path, QString(), QString(), QString());
    });
}

Cost extractEntries(qint64 entryCount, const QTemporaryDir &directory)
{
    const QString path = directory.filePath(QStringLiteral("archive.zip"));
    QuaZip zip(path);
    zip.open(QuaZip::mdCreate);
    for (qint64 i = 0; i < entryCount; ++i) {
        QuaZipFile file(&zip);
        file.open(QIODevice::WriteOnly, QuaZipNewInfo(QStringLiteral("%1/%2.txt").arg(i / 100).arg(i)));
        file.write(QByteArray(2000, 'x'));
        file.close();
    }
    zip.close();
    return measure(
        [&] { ZyBase::ZipManager::QuaUnzipFile(path, directory.filePath(QStringLiteral("target")), true); });
}

// A sparse file, so that the speed of the disk is not measured.
Cost hashFile(qint64 sizeMiB, const QTemporaryDir &directory)
{
    QFile file(directory.filePath(QStringLiteral("large.bin")));
    file.open(QIODevice::WriteOnly);
    file.resize(sizeMiB * bytesPerMiB);
    return measure([&file] { getBigFileMd5(file.fileName()); });
}

Cost createQrCode(qint64 byteCount, const QTemporaryDir &)
{
    const QString text(int(byteCount), QLatin1Char('x'));
    return measure([&text] { ZyBase::CSystemUtils::GenerateQRCode(text, QSize(512, 512)); });
}

struct Growth
{
    const char *operation;
    const char *unit;
    std::vector<qint64> sizes;
    Cost (*measure)(qint64 size, const QTemporaryDir &directory);
};

const std::vector<Growth> growths {
    {"160,000 log lines", "threads", {1, 4, 16}, writeLines},
    {"GET of 100 bytes", "requests in flight", {1, 10, 100, 1000}, sendRequests},
    {"load a catalogue", "events", {100, 1000, 10000, 100000}, loadCatalogue},
    {"extract files of 2 kB", "entries", {10, 100, 1000, 10000}, extractEntries},
    {"MD5 of a file", "MiB", {16, 256, 4096}, hashFile},
    {"QR code, 512 pixels", "bytes", {20, 200, 1663}, createQrCode}};

void report(const Growth &growth, qint64 size, const Cost &cost)
{
    std::printf("%-24s %8lld %-20s %10.6f s %8.1f MiB\n", growth.operation, static_cast<long long>(size),
                growth.unit, cost.seconds, cost.mebibytes);
    QFile results(qEnvironmentVariable("ZYBASE_BENCHMARK_RESULTS"));
    if (!results.open(QIODevice::Append))
        return;
    const QJsonObject row {{QStringLiteral("growth"), QString::fromUtf8(growth.operation)},
                           {QStringLiteral("size"), size},
                           {QStringLiteral("unit"), QString::fromUtf8(growth.unit)},
                           {QStringLiteral("seconds"), cost.seconds},
                           {QStringLiteral("mebibytes"), cost.mebibytes}};
    results.write(QJsonDocument(row).toJson(QJsonDocument::Compact) + '\n');
}

int measureSize(const Growth &growth, qint64 size, int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir directory;
    report(growth, size, growth.measure(size, directory));
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    for (const Growth &growth : growths) {
        for (const qint64 size : growth.sizes) {
            if (qEnvironmentVariableIsSet("ZYBASE_BENCHMARK_QUICK") && size == growth.sizes.back())
                continue;
            std::fflush(stdout);
            const pid_t child = fork();
            if (child == 0)
                exit(measureSize(growth, size, argc, argv));
            int status = -1;
            waitpid(child, &status, 0);
            if (status != 0)
                return 1;
        }
    }
}
