// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/base/LoggerObject.h>

#include "ratios.h"

#include <log4qt/dailyrollingfileappender.h>
#include <log4qt/logger.h>
#include <log4qt/loggerrepository.h>
#include <log4qt/ttcclayout.h>

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#if defined(ZYBASE_HAVE_SPDLOG)
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#endif

using namespace Log4Qt;
using ZyBase::LoggerObject;

namespace {

constexpr const char *message = "download of 1048576 bytes from mirror.example.org finished in 1.25 s";

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

void onLog4qtDirectly(benchmark::State &state)
{
    Logger *const root = Logger::rootLogger();
    root->addAppender(createAppender());
    for (auto _ : state)
        root->info(QString::fromUtf8(message));
    root->loggerRepository()->shutdown();
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(whileOff)->Name("off/LoggerObject");
BENCHMARK(throughTheLibrary)->Name("line/LoggerObject");
BENCHMARK(onLog4qtDirectly)->Name("line/log4qt");

#if defined(ZYBASE_HAVE_SPDLOG)
void withSpdlog(benchmark::State &state)
{
    const std::string file = directory().filePath(QStringLiteral("spdlog.log")).toStdString();
    const auto logger = spdlog::basic_logger_mt("bench", file);
    logger->set_pattern("%Y-%m-%d %H:%M:%S.%e %-5l  - %v");
    logger->flush_on(spdlog::level::info);
    for (auto _ : state)
        logger->info(message);
    spdlog::drop("bench");
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(withSpdlog)->Name("line/spdlog");
#endif

} // namespace

int main(int argc, char **argv)
{
    return runWithRatios(argc, argv,
                         {{"log line", "line/LoggerObject", "line/log4qt"},
                          {"log line", "line/LoggerObject", "line/spdlog", 1.15}});
}
