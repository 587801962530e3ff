// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/CSystemUtils.h>

#include "ratios.h"

#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>
#include <qrencode.h>

#include <string>
#include <utility>

using ZyBase::CSystemUtils;

namespace {

// The encoder takes most of the time on both sides. Many short runs include some without other load.
constexpr double minimumRunSeconds = 0.02;
constexpr int repetitions = 40;

const char *const shortText = "https://example.org/";
const std::string longText(1000, 'x');

// What an application would write with libqrencode and QPainter.
QImage paintedImage(const QString &text, int side)
{
    QRcode *const symbol = QRcode_encodeString(text.toStdString().c_str(), 2, QR_ECLEVEL_Q, QR_MODE_8, 1);
    QImage image(side, side, QImage::Format_ARGB32);
    QPainter painter(&image);
    painter.setBrush(Qt::white);
    painter.setPen(Qt::NoPen);
    painter.drawRect(0, 0, side, side);
    painter.setBrush(Qt::black);
    const double scale = double(side) / symbol->width;
    for (int y = 0; y < symbol->width; ++y) {
        for (int x = 0; x < symbol->width; ++x) {
            const QRectF module(scale * x, scale * y, scale, scale);
            if (symbol->data[y * symbol->width + x] & 1)
                painter.drawRects(&module, 1);
        }
    }
    painter.end();
    QRcode_free(symbol);
    return image;
}

// The lower limit for every way of painting.
void callEncoder(benchmark::State &state)
{
    for (auto _ : state)
        QRcode_free(QRcode_encodeString(longText.c_str(), 2, QR_ECLEVEL_Q, QR_MODE_8, 1));
}

void callLibrary(benchmark::State &state, const QString &text, int side)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(CSystemUtils::GenerateQRCode(text, QSize(side, side)));
}

void paintWithQt(benchmark::State &state, const QString &text, int side)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(paintedImage(text, side));
}

void add(const std::string &name, const QString &text, int side)
{
    for (const auto &[method, function] :
         {std::make_pair("GenerateQRCode", &callLibrary), std::make_pair("QPainter", &paintWithQt)}) {
        benchmark::RegisterBenchmark((name + '/' + method).c_str(), function, text, side)
            ->Unit(benchmark::kMicrosecond)
            ->MinTime(minimumRunSeconds)
            ->Repetitions(repetitions);
    }
}

} // namespace

int main(int argc, char **argv)
{
    benchmark::RegisterBenchmark("long 256/libqrencode alone", &callEncoder)
        ->Unit(benchmark::kMicrosecond)
        ->MinTime(minimumRunSeconds)
        ->Repetitions(repetitions);
    add("short 256", QString::fromLatin1(shortText), 256);
    add("short 1024", QString::fromLatin1(shortText), 1024);
    add("long 256", QString::fromStdString(longText), 256);
    add("long 1024", QString::fromStdString(longText), 1024);
    registerProgram("long 256/qrencode", QStringLiteral("qrencode"), [] {
        return QStringList {QStringLiteral("-8"), QStringLiteral("-lQ"), QStringLiteral("-o"),
                            QStringLiteral("-"), QString::fromStdString(longText)};
    });
    return runWithRatios(
        argc, argv,
        {{"QR code of 20 bytes, 256 pixels", "short 256/GenerateQRCode", "short 256/QPainter", 0.6},
         {"QR code of 20 bytes, 1024 pixels", "short 1024/GenerateQRCode", "short 1024/QPainter", 0.6},
         {"QR code of 1000 bytes, 256 pixels", "long 256/GenerateQRCode", "long 256/QPainter", 0.6},
         {"QR code of 1000 bytes, 256 pixels", "long 256/GenerateQRCode", "long 256/libqrencode alone"},
         {"QR code of 1000 bytes, 256 pixels", "long 256/GenerateQRCode", "long 256/qrencode"},
         {"QR code of 1000 bytes, 1024 pixels", "long 1024/GenerateQRCode", "long 1024/QPainter", 0.6}});
}
