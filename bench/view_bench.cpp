// What the wave window repaints while the user works, on sixty minutes of stereo at 44.1 kHz
// in a client area of 1600 x 400 with the default settings: the same column arithmetic
// (view/zoom_geometry.h) and the same painter calls as the window, without the toolkit.
//
//   drag/selection    one mouse move of a selection drag: the columns whose look changed
//                     (the part's moving end and the cursor, 3 columns on), painted
//                                                                goal: at most 1 ms a move
//   scroll/zoomed     one step of the scroll bar (W / 10 columns) of a view zoomed onto ten
//                     seconds: the whole client area painted again
//                                                  goal: at least 60 frames a second (fps)
//
//   view_bench                         both (the wave takes a few seconds to make)
//   view_bench --benchmark_filter=drag
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>

#include "core/sound.h"
#include "core/wave.h"
#include "bench/hour_of_sound.h"
#include "render/wave_painter.h"
#include "view/zoom_geometry.h"

namespace orv {
namespace {

using namespace orv::bench;

const StereoSound& sound() { return hourOfSound(); }

WavePaintInput input() {
    WavePaintInput in;
    in.sound = &sound();
    in.clientWidth = kWidth;
    in.clientHeight = kHeight;
    return in;
}

void dragSelection(benchmark::State& state) {
    WavePaintInput in = input();
    const ColumnMap map = in.columnMap();
    Canvas canvas;
    // The drag starts at column 400 and runs right, 3 columns a move, turning back at 1500.
    const std::int32_t anchor = std::int32_t(map.sampleAt(400));
    in.cursor = in.selEndPos = anchor;
    paintWave(canvas, in);
    SelectionMarks painted{anchor, anchor, anchor};
    int x = 400, step = 3;
    std::int64_t columns = 0;
    for (auto _ : state) {
        x += step;
        if (x >= 1500 || x <= 400) step = -step;
        in.cursor = std::int32_t(map.sampleAt(x));
        const SelectionMarks now{std::min(in.cursor, anchor), std::max(in.cursor, anchor),
                                 in.cursor};
        changedColumns(map, kWidth, kValues, painted, now, [&](int x1, int x2) {
            paintWaveColumns(canvas, in, x1, x2);
            columns += x2 - x1;
        });
        painted = now;
        benchmark::DoNotOptimize(canvas.data());
    }
    state.counters["columns_per_move"] =
        benchmark::Counter(double(columns) / double(state.iterations()));
}

void scrollZoomed(benchmark::State& state) {
    WavePaintInput in = input();
    in.cursor = kValues / 3;
    in.selEndPos = kValues / 2;
    // Ten seconds from the middle, as ZoomIn fits the scroll bar to them.
    const ZoomFit fit = fitZoom(kValues, kWidth, kValues / 2.0, kValues / 2.0 + 10.0 * kFreq);
    std::int64_t pos = fit.pos;
    const std::int64_t last = fit.range - kWidth;
    Canvas canvas;
    for (auto _ : state) {
        pos += kWidth / 10;
        if (pos > last) pos = fit.pos;
        in.view = visibleSpan(kValues, true, fit.range, pos, kWidth);
        paintWave(canvas, in);
        benchmark::DoNotOptimize(canvas.data());
    }
    state.counters["fps"] =
        benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

}  // namespace

BENCHMARK(dragSelection)->Name("drag/selection")->Unit(benchmark::kMicrosecond);
BENCHMARK(scrollZoomed)->Name("scroll/zoomed")->Unit(benchmark::kMillisecond);

}  // namespace orv

BENCHMARK_MAIN();
