// The waveform picture of a long wave: sixty minutes of stereo at 44.1 kHz (158.76 M
// samples a channel) in a client area of 1600 x 400.
//
//   paint/constant         a full repaint with the default settings (two bands, lines,
//                          Constant, 15 values per pixel, grid)      goal: at most 4 ms
//   paint/constant_mixed   the same in one band, channels mixed
//   paint/peaks            a full repaint with Peaks, from the summary  goal: at most 4 ms
//   paint/peaks_raw        Peaks without a summary: every sample read (for comparison)
//   paint/columns_8        eight columns, what a selection drag repaints
//   paint/zoomed_10s       a full repaint zoomed to ten seconds (scrolling redraws this
//                          at most; 60 frames per second leave 16 ms)
//   summary/build          the peak summary of the wave         goal: at most 0.15 s, and
//                          its memory at most 1 % of the samples' (counter mem_percent)
//
//   render_bench                          everything (the wave takes a few seconds to make)
//   render_bench --benchmark_filter=peaks
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <memory>

#include "core/sound.h"
#include "core/wave.h"
#include "bench/hour_of_sound.h"
#include "render/peak_summary.h"
#include "render/wave_painter.h"

namespace orv {
namespace {

using namespace orv::bench;

const StereoSound& sound() { return hourOfSound(); }

const PeakSummary& summary() {
    static const std::unique_ptr<PeakSummary> s = [] {
        CancelFlag c{0};
        return buildPeakSummary(sound(), c);
    }();
    return *s;
}

WavePaintInput input() {
    WavePaintInput in;
    in.sound = &sound();
    in.clientWidth = kWidth;
    in.clientHeight = kHeight;
    in.cursor = kValues / 3;
    in.selEndPos = kValues / 2;
    return in;
}

void paintLoop(benchmark::State& state, const WavePaintInput& in, int x1 = 0, int x2 = kWidth) {
    Canvas canvas(kWidth, kHeight);
    for (auto _ : state) {
        paintWaveColumns(canvas, in, x1, x2);
        benchmark::DoNotOptimize(canvas.data());
    }
    state.counters["columns"] = x2 - x1;
}

void paintConstant(benchmark::State& state) { paintLoop(state, input()); }

void paintConstantMixed(benchmark::State& state) {
    WavePaintInput in = input();
    in.settings.twoSingleWaves = false;
    paintLoop(state, in);
}

void paintPeaks(benchmark::State& state) {
    WavePaintInput in = input();
    in.settings.distribution = WaveViewRecord::kPickPeaks;
    in.peaks = &summary();
    paintLoop(state, in);
}

void paintPeaksRaw(benchmark::State& state) {
    WavePaintInput in = input();
    in.settings.distribution = WaveViewRecord::kPickPeaks;
    paintLoop(state, in);
}

void paintColumns8(benchmark::State& state) { paintLoop(state, input(), 700, 708); }

void paintZoomed(benchmark::State& state) {
    WavePaintInput in = input();
    // Ten seconds from the middle, as the scroll bar of a zoomed window gives it.
    const std::int64_t range = std::int64_t(kValues) * kWidth / (10 * kFreq);
    in.view = visibleSpan(kValues, true, range, range / 2, kWidth);
    paintLoop(state, in);
}

void buildSummary(benchmark::State& state) {
    std::size_t bytes = 0;
    for (auto _ : state) {
        CancelFlag c{0};
        auto s = buildPeakSummary(sound(), c);
        bytes = s->bytes();
        benchmark::DoNotOptimize(s.get());
    }
    state.SetItemsProcessed(state.iterations() * 2 * std::int64_t(kValues));
    state.counters["mem_bytes"] = double(bytes);
    state.counters["mem_percent"] = 100.0 * double(bytes) / (2.0 * 2.0 * kValues);
}

BENCHMARK(paintConstant)->Name("paint/constant")->Unit(benchmark::kMillisecond);
BENCHMARK(paintConstantMixed)->Name("paint/constant_mixed")->Unit(benchmark::kMillisecond);
BENCHMARK(paintPeaks)->Name("paint/peaks")->Unit(benchmark::kMillisecond);
BENCHMARK(paintPeaksRaw)->Name("paint/peaks_raw")->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(paintColumns8)->Name("paint/columns_8")->Unit(benchmark::kMicrosecond);
BENCHMARK(paintZoomed)->Name("paint/zoomed_10s")->Unit(benchmark::kMillisecond);
BENCHMARK(buildSummary)->Name("summary/build")->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace orv

BENCHMARK_MAIN();
