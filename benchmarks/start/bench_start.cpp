// SPDX-License-Identifier: LGPL-2.1-or-later

// The time from the start of the tour to its first line, and from the start of the gallery to the first
// painting of its window, compared with small programs of Qt alone. The windows have no screen.

#include "ratios.h"

#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

constexpr int longestStartMs = 30000;
constexpr const char *painted = "Flushing top level"; // by Qt, after it has painted the window

// Starts a program and waits until its output contains a text. Ends the program.
bool printsInTime(const char *program, const char *text)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QString::fromLocal8Bit(program), QStringList());
    QByteArray output;
    while (!output.contains(text) && process.waitForReadyRead(longestStartMs))
        output += process.readAll();
    process.kill();
    process.waitForFinished();
    return output.contains(text);
}

void measureStart(benchmark::State &state, const char *program, const char *text)
{
    for (auto _ : state) {
        if (!printsInTime(program, text))
            state.SkipWithError("the program did not start");
    }
}

void registerStart(const char *name, const char *program, const char *text)
{
    benchmark::RegisterBenchmark(name, measureStart, program, text)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

} // namespace

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    for (const char *variable : {"HOME", "TMPDIR", "XDG_RUNTIME_DIR"})
        qputenv(variable, home.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "qt.widgets.painting=true"); // Qt prints when a window is painted

    registerStart("line/tour", TOUR, "\n");
    registerStart("line/a program of one line", FIRST_LINE, "\n");
    registerStart("window/gallery", GALLERY, painted);
    registerStart("window/an empty window", FIRST_WINDOW, painted);
    return runWithRatios(
        argc, argv,
        {{"start of the tour to its first line", "line/tour", "line/a program of one line"},
         {"start of the gallery to its window", "window/gallery", "window/an empty window"}});
}
