// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CFileUtils.h>
#include <ZyBase/files/CStringUtils.h>

#include "ratios.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

using ZyBase::CFileUtils;
using ZyBase::CStringUtils;

namespace {

constexpr qint64 hashedSizeBytes = 1LL << 30;
constexpr int chunkSizeBytes = 4096;
constexpr int pieceLength = 100;
constexpr int existingNames = 100;
constexpr long long secondsSinceEpoch = 1700000000;

QTemporaryDir &directory()
{
    static QTemporaryDir instance;
    return instance;
}

// A sparse file, so that the speed of the disk is not measured.
QString hashedFile()
{
    static const QString path = [] {
        const QString name = directory().filePath(QStringLiteral("large.bin"));
        QFile file(name);
        file.open(QIODevice::WriteOnly);
        file.resize(hashedSizeBytes);
        return name;
    }();
    return path;
}

QString existingFile()
{
    static const QString path = [] {
        const QString name = directory().filePath(QStringLiteral("existing.txt"));
        for (int i = 0; i < existingNames; ++i) {
            QFile file(CFileUtils::getUniqueFileName(name, QString()));
            file.open(QIODevice::WriteOnly);
        }
        return name;
    }();
    return path;
}

double peakMebibytes()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024;
}

void hashWithLibrary(benchmark::State &state)
{
    const QString path = hashedFile();
    const double before = peakMebibytes();
    for (auto _ : state)
        benchmark::DoNotOptimize(getBigFileMd5(path));
    state.counters["MiB_added"] = peakMebibytes() - before;
}

void hashWithQt(benchmark::State &state)
{
    const QString path = hashedFile();
    for (auto _ : state) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        QCryptographicHash hash(QCryptographicHash::Md5);
        char buffer[chunkSizeBytes];
        for (qint64 length = 0; (length = file.read(buffer, chunkSizeBytes)) > 0;)
            hash.addData(buffer, int(length));
        benchmark::DoNotOptimize(hash.result());
    }
}

void splitWithLibrary(benchmark::State &state)
{
    const QString text(int(state.range(0)), QLatin1Char('x'));
    for (auto _ : state)
        benchmark::DoNotOptimize(CStringUtils::SplitString(text));
}

void splitByJoining(benchmark::State &state)
{
    const QString text(int(state.range(0)), QLatin1Char('x'));
    for (auto _ : state) {
        QStringList pieces;
        for (int position = 0; position < text.length(); position += pieceLength)
            pieces << text.mid(position, pieceLength);
        benchmark::DoNotOptimize(pieces.join(QLatin1Char('\n')));
    }
}

QString fileName()
{
    return QStringLiteral("quarterly report (final).pdf");
}

QString drivePath()
{
    return QStringLiteral("C:\\documents\\quarterly report (final).pdf");
}

void checkWithLibrary(benchmark::State &state, bool (*check)(const QString &), QString (*checked)())
{
    const QString name = checked();
    for (auto _ : state)
        benchmark::DoNotOptimize(check(name));
}

void checkNameWithQt(benchmark::State &state)
{
    const QString name = fileName();
    const QString pattern = QStringLiteral("[\\\\/:*?\"<>|]+");
    for (auto _ : state)
        benchmark::DoNotOptimize(!name.contains(QRegularExpression(pattern)));
}

void checkPathWithQt(benchmark::State &state)
{
    const QString path = drivePath();
    const QString pattern = QStringLiteral("[:*?\"<>|]+");
    for (auto _ : state) {
        benchmark::DoNotOptimize(path.contains(QLatin1Char(':'))
                                 && !path.right(path.length() - 3).contains(QRegularExpression(pattern)));
    }
}

void formatSizeWithLibrary(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(CFileUtils::FormatFileSize(123456789));
}

void formatSizeWithQt(benchmark::State &state)
{
    for (auto _ : state) {
        const QStringList units {QStringLiteral("B"), QStringLiteral("KB"), QStringLiteral("MB"),
                                 QStringLiteral("GB"), QStringLiteral("TB")};
        benchmark::DoNotOptimize(
            QStringLiteral("%1 %2").arg(123456789 / 1048576.0, 0, 'f', 2, QLatin1Char(' ')).arg(units.at(2)));
    }
}

void formatTimeWithLibrary(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(CFileUtils::FormatOpenTime(secondsSinceEpoch));
}

void formatTimeWithQt(benchmark::State &state)
{
    const QDate today = QDate::currentDate();
    for (auto _ : state) {
        const QDateTime time = QDateTime::fromSecsSinceEpoch(secondsSinceEpoch, Qt::LocalTime);
        const QString format =
            time.date() == today ? QStringLiteral("HH:mm:ss") : QStringLiteral("MM/dd/yyyy");
        benchmark::DoNotOptimize(time.toString(format));
    }
}

void findNameWithLibrary(benchmark::State &state)
{
    const QString path = existingFile();
    for (auto _ : state)
        benchmark::DoNotOptimize(CFileUtils::getUniqueFileName(path, QString()));
}

void findNameWithQt(benchmark::State &state)
{
    const QString path = existingFile();
    for (auto _ : state) {
        const QFileInfo information(path);
        QString name = QStringLiteral("%1/%2.%3")
                           .arg(information.path(), information.completeBaseName(), information.suffix());
        for (qint64 counter = 1; QFile::exists(name); ++counter) {
            name = QStringLiteral("%1/%2(%3).%4")
                       .arg(information.path(), information.completeBaseName(), QString::number(counter),
                            information.suffix());
        }
        benchmark::DoNotOptimize(name);
    }
}

void once(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Unit(benchmark::kMillisecond)->Iterations(1);
}

BENCHMARK(hashWithLibrary)->Name("hash/getBigFileMd5")->Apply(once);
BENCHMARK(hashWithQt)->Name("hash/Qt")->Apply(once);
BENCHMARK(splitWithLibrary)->Name("split/1M/SplitString")->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(splitWithLibrary)->Name("split/10M/SplitString")->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(splitByJoining)->Name("split/1M/QStringList::join()")->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(splitByJoining)
    ->Name("split/10M/QStringList::join()")
    ->Arg(10000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(checkWithLibrary, name, &CFileUtils::CheckFileNameValid, fileName)
    ->Name("name/CheckFileNameValid");
BENCHMARK(checkNameWithQt)->Name("name/Qt");
BENCHMARK_CAPTURE(checkWithLibrary, path, &CFileUtils::CheckFilePathValid, drivePath)
    ->Name("path/CheckFilePathValid");
BENCHMARK(checkPathWithQt)->Name("path/Qt");
BENCHMARK(formatSizeWithLibrary)->Name("size/FormatFileSize");
BENCHMARK(formatSizeWithQt)->Name("size/Qt");
BENCHMARK(formatTimeWithLibrary)->Name("time/FormatOpenTime");
BENCHMARK(formatTimeWithQt)->Name("time/Qt");
BENCHMARK(findNameWithLibrary)->Name("free/getUniqueFileName");
BENCHMARK(findNameWithQt)->Name("free/Qt");

} // namespace

int main(int argc, char **argv)
{
    registerProgram("hash/md5sum", QStringLiteral("md5sum"), [] { return QStringList {hashedFile()}; });
    return runWithRatios(
        argc, argv,
        {{"MD5 of a file of 1 GiB", "hash/getBigFileMd5", "hash/Qt", 1.02},
         {"MD5 of a file of 1 GiB", "hash/getBigFileMd5", "hash/md5sum"},
         {"split 1 million characters", "split/1M/SplitString", "split/1M/QStringList::join()", 0.5},
         {"split 10 million characters", "split/10M/SplitString", "split/10M/QStringList::join()", 0.5},
         {"check a name", "name/CheckFileNameValid", "name/Qt", 1.0},
         {"check a path", "path/CheckFilePathValid", "path/Qt", 1.0},
         {"format a size", "size/FormatFileSize", "size/Qt", 1.0},
         {"format a time", "time/FormatOpenTime", "time/Qt", 1.0},
         {"find a free name after 100 existing ones", "free/getUniqueFileName", "free/Qt", 1.0}});
}
