// The Vold picture: how fast the resonator bank runs.
//
//   whole/<isa>        one minute of stereo 44.1 kHz (music-like: a chord over noise) as one
//                      combined diagram of 400 rows and 1000 columns, every core: the time of
//                      the whole picture (goal: at most 0.3 s on two cores). steps_per_second
//                      counts resonator steps as the literal loop runs them, rows x samples
//                      x 4 (8.47 G here).
//   first/<isa>        the same picture: the time until the first column is published and
//                      the time until the first ten are (first_ms, ten_ms, as counters;
//                      goal: the first on screen within 0.1 s), then the time from raising
//                      the cancel flag to the return of compute (cancel_ms; goal: 50 ms).
//   tail/<isa>         ten seconds of mono: a loud transient and then silence, against
//   noise/<isa>        ten seconds of full-scale noise. The tail must not run slower: its
//                      resonators decay into denormals, which the workers flush to zero.
//   core/<isa>         one thread, 400 rows over ten seconds of noise: resonator steps per
//                      second per core for each instruction set.
//   core/literal       the literal four-step loop, one row at a time, for comparison.
//
// Time is wall-clock (the picture runs on several threads); on a shared machine run with
// --benchmark_repetitions=3 and read the best, together with the load (uptime).
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

#include "core/sound.h"
#include "core/wave.h"
#include "render/vold_bank.h"
#include "render/vold_kernel.h"
#include "render/vold_literal.h"
#include "render/vold_picture.h"

namespace orv {
namespace {

constexpr int kFreq = 44100;

WavePtr waveOf(const std::vector<WaveVal>& v) {
    CancelFlag c{0};
    WavePtr w = newWave(c, std::int32_t(v.size()));
    std::copy(v.begin(), v.end(), w->data());
    return w;
}

std::vector<WaveVal> music(int n, std::uint32_t seed) {
    std::vector<WaveVal> v(static_cast<std::size_t>(n));
    std::uint32_t x = seed;
    for (int i = 0; i < n; ++i) {
        x = x * 1664525u + 1013904223u;
        const double noise = (double(x >> 16) - 32768.0) / 32768.0;
        const double t = double(i) / kFreq;
        v[std::size_t(i)] = WaveVal(std::lround(
            6000 * noise + 9000 * std::sin(2 * M_PI * 110 * t) +
            7000 * std::sin(2 * M_PI * 440 * t * (1 + 0.01 * std::sin(t))) +
            5000 * std::sin(2 * M_PI * 3520 * t)));
    }
    return v;
}

std::vector<WaveVal> noise(int n) {
    std::vector<WaveVal> v(static_cast<std::size_t>(n));
    std::uint32_t x = 99;
    for (auto& s : v) {
        x = x * 1664525u + 1013904223u;
        s = WaveVal(std::int32_t(x >> 16) - 32768);
    }
    return v;
}

// Half a second of a loud ringing click, then silence.
std::vector<WaveVal> transient(int n) {
    std::vector<WaveVal> v(static_cast<std::size_t>(n), 0);
    for (int i = 0; i < kFreq / 2 && i < n; ++i)
        v[std::size_t(i)] = WaveVal(std::lround(32767 * std::exp(-i / 2000.0) *
                                                std::sin(2 * M_PI * 300.0 * i / kFreq)));
    return v;
}

const Sound& minuteStereo() {
    static const SoundPtr s = std::make_unique<StereoSound>(
        waveOf(music(60 * kFreq, 1)), waveOf(music(60 * kFreq, 2)), kFreq);
    return *s;
}

VoldPaintInput wholeInput() {
    VoldPaintInput in;
    in.sound = &minuteStereo();
    in.settings.vertical = 400;
    in.settings.twoDiagrams = false;
    in.clientWidth = 1000;
    in.clientHeight = 400;
    return in;
}

bool skipUnsupported(benchmark::State& state, VoldIsa isa) {
    if (voldIsaSupported(isa)) return false;
    state.SkipWithError("instruction set not supported here");
    return true;
}

void whole(benchmark::State& state, VoldIsa isa) {
    if (skipUnsupported(state, isa)) return;
    std::int64_t steps = 0;
    for (auto _ : state) {
        VoldPicture p(wholeInput());
        CancelFlag cancel{0};
        VoldKernelOptions o;
        o.isa = isa;
        benchmark::DoNotOptimize(p.compute(cancel, o));
        steps += voldSteps({{&p.bank(0), nullptr, nullptr}, {&p.bank(1), nullptr, nullptr}},
                           p.span());
    }
    state.counters["steps_per_second"] = benchmark::Counter(double(steps), benchmark::Counter::kIsRate);
}

void first(benchmark::State& state, VoldIsa isa) {
    if (skipUnsupported(state, isa)) return;
    using Clock = std::chrono::steady_clock;
    double firstMs = 0, tenMs = 0, cancelMs = 0;
    for (auto _ : state) {
        const auto start = Clock::now();
        VoldPicture p(wholeInput());
        CancelFlag cancel{0};
        std::atomic<bool> tenDone{false};
        Clock::time_point firstAt, tenAt;
        VoldKernelOptions o;
        o.isa = isa;
        o.onColumns = [&](int c) {
            if (c >= 1 && firstAt == Clock::time_point{}) firstAt = Clock::now();
            if (c >= 10 && !tenDone) {
                tenAt = Clock::now();
                tenDone = true;
            }
        };
        Clock::time_point cancelledAt;
        std::thread worker([&] { p.compute(cancel, o); });
        while (!tenDone) std::this_thread::sleep_for(std::chrono::microseconds(200));
        // Let it run into the middle of the picture, then stop it.
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        cancelledAt = Clock::now();
        setCancelled(cancel);
        worker.join();
        const auto end = Clock::now();
        firstMs += std::chrono::duration<double, std::milli>(firstAt - start).count();
        tenMs += std::chrono::duration<double, std::milli>(tenAt - start).count();
        cancelMs += std::chrono::duration<double, std::milli>(end - cancelledAt).count();
    }
    const double n = double(state.iterations());
    state.counters["first_ms"] = firstMs / n;
    state.counters["ten_ms"] = tenMs / n;
    state.counters["cancel_ms"] = cancelMs / n;
}

void monoRun(benchmark::State& state, VoldIsa isa, const std::vector<WaveVal>& wave, int threads) {
    if (skipUnsupported(state, isa)) return;
    const VoldViewRecord s;
    const VoldBank bank = makeVoldBank(s, kFreq, 400);
    const VoldSpan span = voldSpanOf(0, double(wave.size()), 1000, std::int32_t(wave.size()), 0);
    std::vector<float> out(std::size_t(span.columns()) * 400);
    std::int64_t steps = 0;
    for (auto _ : state) {
        CancelFlag cancel{0};
        std::atomic<int> ready{0};
        VoldKernelOptions o;
        o.isa = isa;
        o.threads = threads;
        benchmark::DoNotOptimize(runVoldKernel({{&bank, wave.data(), out.data()}}, span, cancel, ready, o));
        steps += voldSteps({{&bank, nullptr, nullptr}}, span);
    }
    state.counters["steps_per_second"] = benchmark::Counter(double(steps), benchmark::Counter::kIsRate);
}

const std::vector<WaveVal>& tenSecondsNoise() {
    static const std::vector<WaveVal> v = noise(10 * kFreq);
    return v;
}
const std::vector<WaveVal>& tenSecondsTail() {
    static const std::vector<WaveVal> v = transient(10 * kFreq);
    return v;
}

void literalCore(benchmark::State& state) {
    const VoldBank bank = makeVoldBank(VoldViewRecord{}, kFreq, 400);
    const std::vector<WaveVal>& wave = tenSecondsNoise();
    // A tenth of a second: the literal loop is slow.
    const VoldSpan span = voldSpanOf(0, kFreq / 10, 100, kFreq / 10, 0);
    std::vector<float> out(std::size_t(span.columns()) * 400);
    std::int64_t steps = 0;
    for (auto _ : state) {
        runVoldLiteral(bank, wave.data(), span, out.data());
        steps += voldSteps({{&bank, nullptr, nullptr}}, span);
    }
    state.counters["steps_per_second"] = benchmark::Counter(double(steps), benchmark::Counter::kIsRate);
}

void registerAll() {
    for (VoldIsa isa : {VoldIsa::Sse2, VoldIsa::Avx2, VoldIsa::Avx512}) {
        const std::string name(voldIsaName(isa));
        benchmark::RegisterBenchmark(("whole/" + name).c_str(), whole, isa)
            ->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(1.0);
        benchmark::RegisterBenchmark(("first/" + name).c_str(), first, isa)
            ->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
        benchmark::RegisterBenchmark(("tail/" + name).c_str(),
                                     [isa](benchmark::State& s) { monoRun(s, isa, tenSecondsTail(), 0); })
            ->Unit(benchmark::kMillisecond)->UseRealTime();
        benchmark::RegisterBenchmark(("noise/" + name).c_str(),
                                     [isa](benchmark::State& s) { monoRun(s, isa, tenSecondsNoise(), 0); })
            ->Unit(benchmark::kMillisecond)->UseRealTime();
        benchmark::RegisterBenchmark(("core/" + name).c_str(),
                                     [isa](benchmark::State& s) { monoRun(s, isa, tenSecondsNoise(), 1); })
            ->Unit(benchmark::kMillisecond)->UseRealTime();
    }
    benchmark::RegisterBenchmark("core/literal", literalCore)->Unit(benchmark::kMillisecond)->UseRealTime();
}

}  // namespace
}  // namespace orv

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    orv::registerAll();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
