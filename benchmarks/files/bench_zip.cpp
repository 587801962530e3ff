// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/ZipManager.h>

#include "ratios.h"

#include <QDir>
#include <QStorageInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <quazip.h>
#include <quazipfile.h>
#include <quazipfileinfo.h>

using ZyBase::ZipManager;

namespace {

constexpr int smallFileCount = 5000;
constexpr int smallSizeBytes = 2000;
constexpr int largeSizeBytes = 512 << 20;

// Returns a directory in memory if it has enough space, so that the speed of the disk is not measured.
QString parentDirectory()
{
    const QString memory = QStringLiteral("/dev/shm");
    const QStorageInfo storage(memory);
    return storage.isValid() && storage.bytesAvailable() > 2LL * largeSizeBytes ? memory : QDir::tempPath();
}

QTemporaryDir &directory()
{
    static QTemporaryDir instance(QDir(parentDirectory()).filePath(QStringLiteral("bench_zip-XXXXXX")));
    return instance;
}

QString target()
{
    return directory().filePath(QStringLiteral("target"));
}

QByteArray sample(int length)
{
    QByteArray bytes;
    bytes.reserve(length + 32);
    for (unsigned i = 0; bytes.length() < length; ++i)
        bytes += "line " + QByteArray::number(i * 2654435761U) + '\n';
    bytes.truncate(length);
    return bytes;
}

void addEntry(QuaZip &zip, const QString &name, const QByteArray &content)
{
    QuaZipFile file(&zip);
    file.open(QIODevice::WriteOnly, QuaZipNewInfo(name), nullptr, 0, Z_DEFLATED, Z_BEST_SPEED);
    file.write(content);
    file.close();
}

// Creates an archive and extracts it once, so that each measured extraction replaces existing files.
QString createArchive(const QString &name, void (*addEntries)(QuaZip &zip))
{
    const QString path = directory().filePath(name);
    QuaZip zip(path);
    zip.open(QuaZip::mdCreate);
    addEntries(zip);
    zip.close();
    ZipManager::QuaUnzipFile(path, target(), true);
    return path;
}

QString smallArchive()
{
    static const QString path = createArchive(QStringLiteral("small.zip"), [](QuaZip &zip) {
        const QByteArray content = sample(smallSizeBytes);
        for (int i = 0; i < smallFileCount; ++i)
            addEntry(zip, QStringLiteral("%1/%2.txt").arg(i / 100).arg(i), content);
    });
    return path;
}

QString largeArchive()
{
    static const QString path = createArchive(QStringLiteral("large.zip"), [](QuaZip &zip) {
        addEntry(zip, QStringLiteral("large.txt"), sample(1 << 20).repeated(largeSizeBytes >> 20));
    });
    return path;
}

void extractWithLibrary(benchmark::State &state, QString (*archive)())
{
    const QString path = archive();
    for (auto _ : state)
        ZipManager::QuaUnzipFile(path, target(), true);
}

void extractWithQuaZip(benchmark::State &state, QString (*archive)())
{
    const QString path = archive();
    const QDir directory(target());
    for (auto _ : state) {
        QuaZip zip(path);
        zip.open(QuaZip::mdUnzip);
        QuaZipFile zipFile(&zip);
        QuaZipFileInfo info;
        for (bool more = zip.goToFirstFile(); more; more = zip.goToNextFile()) {
            zip.getCurrentFileInfo(&info);
            const QString name = directory.filePath(info.name);
            directory.mkpath(QFileInfo(name).absolutePath());
            zipFile.open(QIODevice::ReadOnly);
            QFile file(name);
            file.open(QIODevice::WriteOnly | QIODevice::Truncate);
            file.write(zipFile.readAll());
            file.close();
            zipFile.close();
        }
    }
}

void registerPrograms(const std::string &name, QString (*archive)())
{
    registerProgram(name + "/unzip", QStringLiteral("unzip"), [archive] {
        return QStringList {QStringLiteral("-qqo"), archive(), QStringLiteral("-d"), target()};
    });
    registerProgram(name + "/bsdtar", QStringLiteral("bsdtar"), [archive] {
        return QStringList {QStringLiteral("-xf"), archive(), QStringLiteral("-C"), target()};
    });
}

void large(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Unit(benchmark::kMillisecond)->Iterations(1);
}

BENCHMARK_CAPTURE(extractWithLibrary, small, smallArchive)
    ->Name("small/QuaUnzipFile")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(extractWithQuaZip, small, smallArchive)
    ->Name("small/QuaZip")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(extractWithLibrary, large, largeArchive)->Name("large/QuaUnzipFile")->Apply(large);
BENCHMARK_CAPTURE(extractWithQuaZip, large, largeArchive)->Name("large/QuaZip")->Apply(large);

} // namespace

int main(int argc, char **argv)
{
    // The library logs one message for each entry. They are not printed.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    registerPrograms("small", smallArchive);
    registerPrograms("large", largeArchive);
    return runWithRatios(argc, argv,
                         {{"extract 5,000 files of 2 kB", "small/QuaUnzipFile", "small/QuaZip", 1.05},
                          {"extract 5,000 files of 2 kB", "small/QuaUnzipFile", "small/unzip"},
                          {"extract 5,000 files of 2 kB", "small/QuaUnzipFile", "small/bsdtar"},
                          {"extract a file of 512 MiB", "large/QuaUnzipFile", "large/QuaZip", 1.05},
                          {"extract a file of 512 MiB", "large/QuaUnzipFile", "large/unzip"},
                          {"extract a file of 512 MiB", "large/QuaUnzipFile", "large/bsdtar"}});
}
