// What a frame of each visualisation costs.
#include "model/MeterValues.h"
#include "ui/visualisers/LEDMeterView.h"
#include "ui/visualisers/ScopeView.h"
#include "ui/visualisers/SpectrumView.h"
#include "ui/visualisers/VUMeterView.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <cmath>

using namespace quorel;

namespace {

constexpr double kBrightness = 0.8;

/// As lively as loud music, and different in every frame.
MeterValues valuesAt(double time) {
    MeterValues values;
    for (std::size_t i = 0; i < values.spectrumBars.size(); ++i) {
        const auto bar = static_cast<double>(i);
        values.spectrumBars[i] =
            static_cast<float>(0.5 + 0.45 * std::sin(time * (1.3 + bar * 0.17) + bar));
    }
    for (std::size_t i = 0; i < values.waveform.size(); ++i) {
        const auto at = static_cast<double>(i);
        values.waveform[i] =
            static_cast<float>(0.6 * std::sin(at * 0.11 + time * 9) + 0.3 * std::sin(at * 1.3));
    }
    values.vuLeftDb = -6 + 8 * std::sin(time * 1.7);
    values.vuRightDb = -6 + 8 * std::sin(time * 1.9);
    values.peakLeftDb = -9 + 8 * std::sin(time * 2.1);
    values.peakRightDb = -9 + 8 * std::sin(time * 2.3);
    values.peakHoldLeftDb = values.peakHoldRightDb = -1;
    return values;
}

template <class Paint>
void run(benchmark::State& state, Paint paint) {
    const QSize size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    double time = 0;
    for (const auto step : state) {
        static_cast<void>(step);
        const MeterValues values = valuesAt(time += 1.0 / 15);
        QPainter painter(&image);
        paint(painter, QSizeF(size), values);
    }
}

void spectrum(benchmark::State& state) {
    SpriteCache sprites;
    run(state, [&](QPainter& painter, QSizeF size, const MeterValues& values) {
        SpectrumView{values.spectrumBars}.paint(painter, size, kBrightness, sprites);
    });
}

void scope(benchmark::State& state) {
    ScopeTrace trace;
    run(state, [&](QPainter& painter, QSizeF size, const MeterValues& values) {
        ScopeView{values.waveform}.paint(painter, size, kBrightness, trace);
    });
}

void vu(benchmark::State& state) {
    VUFaces faces;
    run(state, [&](QPainter& painter, QSizeF size, const MeterValues& values) {
        VUMeterView view;
        view.leftDb = values.vuLeftDb;
        view.rightDb = values.vuRightDb;
        view.paint(painter, size, kBrightness, faces);
    });
}

void led(benchmark::State& state) {
    SpriteCache sprites;
    run(state, [&](QPainter& painter, QSizeF size, const MeterValues& values) {
        LEDMeterView view;
        view.leftDb = values.peakLeftDb;
        view.rightDb = values.peakRightDb;
        view.holdL = values.peakHoldLeftDb;
        view.holdR = values.peakHoldRightDb;
        view.brightness = kBrightness;
        view.paint(painter, size, sprites);
    });
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Args({206, 100})->Args({600, 150})->Unit(benchmark::kMicrosecond);
}

BENCHMARK(spectrum)->Apply(sizes);
BENCHMARK(scope)->Apply(sizes);
BENCHMARK(vu)->Apply(sizes);
BENCHMARK(led)->Apply(sizes);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
