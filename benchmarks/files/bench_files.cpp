// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CFileUtils.h>
#include <ZyBase/files/CStringUtils.h>

#include "ratios.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

using ZyBase::CFileUtils;
using ZyBase::CStringUtils;

namespace {

constexpr qint64 hashedSize = 1LL << 30;
constexpr int chunkSize = 4096;
constexpr int pieceLength = 100;
constexpr int takenNames = 100;
constexpr long long moment = 1700000000;

QTemporaryDir &directory()
{
    static QTemporaryDir instance;
    return instance;
}

// Sparse: no disk has a part in what is measured.
QString hashedFile()
{
    static const QString path = [] {
        const QString name = directory().filePath(QStringLiteral("large.bin"));
        QFile file(name);
        file.open(QIODevice::WriteOnly);
        file.resize(hashedSize);
        return name;
    }();
    return path;
}

QString takenFile()
{
    static const QString path = [] {
        const QString name = directory().filePath(QStringLiteral("taken.txt"));
        for (int i = 0; i < takenNames; ++i) {
            QFile file(CFileUtils::getUniqueFileName(name, QString()));
            file.open(QIODevice::WriteOnly);
        }
        return name;
    }();
    return path;
}

double peakMegabytes()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024;
}

void hashWithTheLibrary(benchmark::State &state)
{
    const QString path = hashedFile();
    const double before = peakMegabytes();
    for (auto _ : state)
        benchmark::DoNotOptimize(getBigFileMd5(path));
    state.counters["MB_more"] = peakMegabytes() - before;
}

void hashWithQt(benchmark::State &state)
{
    const QString path = hashedFile();
    for (auto _ : state) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        QCryptographicHash hash(QCryptographicHash::Md5);
        char buffer[chunkSize];
        for (qint64 length = 0; (length = file.read(buffer, chunkSize)) > 0;)
            hash.addData(buffer, int(length));
        benchmark::DoNotOptimize(hash.result());
    }
}

void hashWithMd5sum(benchmark::State &state)
{
    const QString path = hashedFile();
    for (auto _ : state)
        QProcess::execute(QStringLiteral("sh"),
                          {QStringLiteral("-c"), QStringLiteral("md5sum '%1' >/dev/null").arg(path)});
}

void splitWithTheLibrary(benchmark::State &state)
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

void checkNameWithTheLibrary(benchmark::State &state)
{
    const QString name = QStringLiteral("quarterly report (final).pdf");
    for (auto _ : state)
        benchmark::DoNotOptimize(CFileUtils::CheckFileNameValid(name));
}

void checkNameWithQt(benchmark::State &state)
{
    const QString name = QStringLiteral("quarterly report (final).pdf");
    const QString pattern = QStringLiteral("[\\\\/:*?\"<>|]+");
    for (auto _ : state)
        benchmark::DoNotOptimize(!name.contains(QRegularExpression(pattern)));
}

void checkPathWithTheLibrary(benchmark::State &state)
{
    const QString path = QStringLiteral("C:\\documents\\quarterly report (final).pdf");
    for (auto _ : state)
        benchmark::DoNotOptimize(CFileUtils::CheckFilePathValid(path));
}

void checkPathWithQt(benchmark::State &state)
{
    const QString path = QStringLiteral("C:\\documents\\quarterly report (final).pdf");
    const QString pattern = QStringLiteral("[:*?\"<>|]+");
    for (auto _ : state) {
        benchmark::DoNotOptimize(path.contains(QLatin1Char(':'))
                                 && !path.right(path.length() - 3).contains(QRegularExpression(pattern)));
    }
}

void formatSizeWithTheLibrary(benchmark::State &state)
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

void formatTimeWithTheLibrary(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(CFileUtils::FormatOpenTime(moment));
}

void formatTimeWithQt(benchmark::State &state)
{
    const QDate today = QDate::currentDate();
    for (auto _ : state) {
        const QDateTime time = QDateTime::fromSecsSinceEpoch(moment, Qt::LocalTime);
        const QString format =
            time.date() == today ? QStringLiteral("HH:mm:ss") : QStringLiteral("MM/dd/yyyy");
        benchmark::DoNotOptimize(time.toString(format));
    }
}

void findNameWithTheLibrary(benchmark::State &state)
{
    const QString path = takenFile();
    for (auto _ : state)
        benchmark::DoNotOptimize(CFileUtils::getUniqueFileName(path, QString()));
}

void findNameWithQt(benchmark::State &state)
{
    const QString path = takenFile();
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
    benchmark->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(5);
}

BENCHMARK(hashWithTheLibrary)->Name("hash/getBigFileMd5")->Apply(once);
BENCHMARK(hashWithQt)->Name("hash/Qt")->Apply(once);
BENCHMARK(hashWithMd5sum)->Name("hash/md5sum")->Apply(once);
BENCHMARK(splitWithTheLibrary)->Name("split/1M")->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(splitWithTheLibrary)->Name("split/10M")->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(splitByJoining)->Name("join/1M")->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(splitByJoining)->Name("join/10M")->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(checkNameWithTheLibrary)->Name("name/CheckFileNameValid");
BENCHMARK(checkNameWithQt)->Name("name/Qt");
BENCHMARK(checkPathWithTheLibrary)->Name("path/CheckFilePathValid");
BENCHMARK(checkPathWithQt)->Name("path/Qt");
BENCHMARK(formatSizeWithTheLibrary)->Name("size/FormatFileSize");
BENCHMARK(formatSizeWithQt)->Name("size/Qt");
BENCHMARK(formatTimeWithTheLibrary)->Name("time/FormatOpenTime");
BENCHMARK(formatTimeWithQt)->Name("time/Qt");
BENCHMARK(findNameWithTheLibrary)->Name("free/getUniqueFileName");
BENCHMARK(findNameWithQt)->Name("free/Qt");

} // namespace

int main(int argc, char **argv)
{
    return runWithRatios(
        argc, argv,
        {{"hash 1 GiB, to a bare loop of Qt", "hash/getBigFileMd5", "hash/Qt", 1.02},
         {"hash 1 GiB, to md5sum", "hash/getBigFileMd5", "hash/md5sum", 0},
         {"wrap 1 million characters, to cutting and joining", "split/1M", "join/1M", 0.5},
         {"wrap 10 million characters, to cutting and joining", "split/10M", "join/10M", 0.5},
         {"wrap 10 million characters, to 1 million (linear is 10)", "split/10M", "split/1M", 0},
         {"check a name, to plain Qt", "name/CheckFileNameValid", "name/Qt", 1.0},
         {"check a path, to plain Qt", "path/CheckFilePathValid", "path/Qt", 1.0},
         {"format a size, to plain Qt", "size/FormatFileSize", "size/Qt", 1.0},
         {"format a time, to plain Qt", "time/FormatOpenTime", "time/Qt", 1.0},
         {"find the free name behind 100 taken, to plain Qt", "free/getUniqueFileName", "free/Qt", 1.0}});
}
