// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/base/LoggerObject.h>

#include "ratios.h"

#include <log4qt/dailyrollingfileappender.h>
#include <log4qt/logger.h>
#include <log4qt/loggerrepository.h>
#include <log4qt/ttcclayout.h>

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <thread>
#include <vector>

#if defined(ZYBASE_HAVE_SPDLOG)
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#endif

using namespace Log4Qt;
using ZyBase::LoggerObject;

namespace {

constexpr const char *message = "download of 1048576 bytes from mirror.example.org finished in 1.25 s";
constexpr int threadCount = 16;
constexpr int linesPerThread = 500;

QTemporaryDir &directory()
{
    static QTemporaryDir instance;
    return instance;
}

// Returns an appender with the settings of the library's.
AppenderSharedPtr createAppender()
{
    auto *const layout = new TTCCLayout;
    layout->setCategoryPrefixing(false);
    layout->setThreadPrinting(false);
    layout->setDateFormat(QStringLiteral("ISO8601"));
    layout->activateOptions();
    auto *const appender = new DailyRollingFileAppender;
    appender->setLayout(LayoutSharedPtr(layout));
    appender->setFile(directory().filePath(QStringLiteral("direct.log")));
    appender->setAppendFile(true);
    appender->setThreshold(Level(Level::INFO_INT));
    appender->setDatePattern(DailyRollingFileAppender::MONTHLY_ROLLOVER);
    appender->activateOptions();
    return AppenderSharedPtr(appender);
}

void whileOff(benchmark::State &state)
{
    for (auto _ : state)
        LoggerObject::info(message);
}

void throughTheLibrary(benchmark::State &state)
{
    LoggerObject::InitLogger("library.log", directory().path().toUtf8().constData());
    for (auto _ : state)
        LoggerObject::info(message);
    LoggerObject::ReleaseLogger();
    state.SetItemsProcessed(state.iterations());
}

// Writes the lines of all threads once.
template <class Function> void logInThreads(benchmark::State &state, Function logLine)
{
    for (auto _ : state) {
        std::vector<std::thread> threads;
        for (int i = 0; i < threadCount; ++i) {
            threads.emplace_back([&logLine] {
                for (int line = 0; line < linesPerThread; ++line)
                    logLine();
            });
        }
        for (std::thread &thread : threads)
            thread.join();
    }
    state.SetItemsProcessed(state.iterations() * threadCount * linesPerThread);
}

void inThreadsThroughTheLibrary(benchmark::State &state)
{
    LoggerObject::InitLogger("threads.log", directory().path().toUtf8().constData());
    logInThreads(state, [] { LoggerObject::info(message); });
    LoggerObject::ReleaseLogger();
}

void onLog4qtDirectly(benchmark::State &state)
{
    Logger *const root = Logger::rootLogger();
    root->addAppender(createAppender());
    for (auto _ : state)
        root->info(QString::fromUtf8(message));
    root->loggerRepository()->shutdown();
    state.SetItemsProcessed(state.iterations());
}

void inThreadsOnLog4qt(benchmark::State &state)
{
    Logger *const root = Logger::rootLogger();
    root->addAppender(createAppender());
    logInThreads(state, [root] { root->info(QString::fromUtf8(message)); });
    root->loggerRepository()->shutdown();
}

BENCHMARK(whileOff)->Name("off/LoggerObject");
BENCHMARK(throughTheLibrary)->Name("line/LoggerObject");
BENCHMARK(onLog4qtDirectly)->Name("line/log4qt");
BENCHMARK(inThreadsThroughTheLibrary)
    ->Name("16 threads/LoggerObject")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(inThreadsOnLog4qt)->Name("16 threads/log4qt")->Unit(benchmark::kMillisecond)->UseRealTime();

#if defined(ZYBASE_HAVE_SPDLOG)
// Returns a logger with the same lines, flushed at each one. In threads, one write can have several lines.
std::shared_ptr<spdlog::logger> createSpdlog()
{
    const std::string file = directory().filePath(QStringLiteral("spdlog.log")).toStdString();
    auto logger =
        std::make_shared<spdlog::logger>("bench", std::make_shared<spdlog::sinks::basic_file_sink_mt>(file));
    logger->set_pattern("%Y-%m-%d %H:%M:%S.%e %-5l  - %v");
    logger->flush_on(spdlog::level::info);
    return logger;
}

void withSpdlog(benchmark::State &state)
{
    const auto logger = createSpdlog();
    for (auto _ : state)
        logger->info(message);
    state.SetItemsProcessed(state.iterations());
}

void inThreadsWithSpdlog(benchmark::State &state)
{
    const auto logger = createSpdlog();
    logInThreads(state, [&logger] { logger->info(message); });
}

BENCHMARK(withSpdlog)->Name("line/spdlog");
BENCHMARK(inThreadsWithSpdlog)->Name("16 threads/spdlog")->Unit(benchmark::kMillisecond)->UseRealTime();
#endif

} // namespace

int main(int argc, char **argv)
{
    return runWithRatios(argc, argv,
                         {{"log line", "line/LoggerObject", "line/log4qt"},
                          {"log line", "line/LoggerObject", "line/spdlog", 1.15},
                          {"log lines of 16 threads", "16 threads/LoggerObject", "16 threads/log4qt"},
                          {"log lines of 16 threads", "16 threads/LoggerObject", "16 threads/spdlog"}});
}
