// WAV reading and writing speed, in samples (and bytes) per second.
//
// Without arguments (or with Google Benchmark's own flags) it runs the benchmarks below on
// files in the temporary folder. scripts/bench-wav-io uses three extra modes to measure one
// big file against another program in the same run:
//   wav_io_bench --make FILE SECONDS   writes a 44.1 kHz stereo 16-bit file of that length
//   wav_io_bench --read FILE           reads it (run under /usr/bin/time for peak memory)
//   wav_io_bench --copy IN OUT [--temporary]
//                                      reads IN, writes OUT; prints both times and speeds
//                                      (--temporary: saved without the flush to disk)
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <unistd.h>

#include "core/sound.h"
#include "fileio/wav_file.h"

namespace {

using namespace orv;
using Clock = std::chrono::steady_clock;

constexpr std::int32_t kFreq = 44100;

// A wave with something in it: a cheap pseudo-random walk, so that nothing downstream can
// take shortcuts over runs of equal samples.
WavePtr makeWave(std::int32_t n, std::uint32_t seed) {
    WaveVal* s = allocateSamples(n);
    if (!s) {
        std::fprintf(stderr, "out of memory for %d samples\n", n);
        std::exit(1);
    }
    std::uint32_t x = seed;
    for (std::int32_t i = 0; i < n; ++i) {
        x = x * 1664525u + 1013904223u;
        s[i] = WaveVal(x >> 16);
    }
    return std::make_unique<Wave>(s, n);
}

SoundPtr makeSound(int channels, std::int32_t n) {
    if (channels == 2) return std::make_unique<StereoSound>(makeWave(n, 1), makeWave(n, 2), kFreq);
    return std::make_unique<MonoSound>(makeWave(n, 1), kFreq);
}

std::string benchFolder() {
    const std::string dir = "/tmp/orvasto-wav-bench-" + std::to_string(::getpid());
    std::filesystem::create_directories(dir);
    return dir;
}

// state.range(0): channels, range(1): bytes per sample, range(2): seconds of sound.
void BM_Write(benchmark::State& state, bool temporary) {
    const int channels = int(state.range(0));
    const int width = int(state.range(1));
    const std::int32_t n = std::int32_t(state.range(2) * kFreq);
    const SoundPtr sound = makeSound(channels, n);
    const std::string path = benchFolder() + "/write.wav";
    CancelFlag cancel{0};
    for (auto _ : state) {
        if (!writeWaveFile(&cancel, path, sound.get(), width, 0, n, temporary)) {
            state.SkipWithError("write failed");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * std::int64_t(n) * channels);
    state.SetBytesProcessed(state.iterations() * std::int64_t(n) * channels * width);
    std::filesystem::remove_all(std::filesystem::path(path).parent_path());
}

void BM_WriteDurable(benchmark::State& state) { BM_Write(state, false); }
void BM_WriteTemporary(benchmark::State& state) { BM_Write(state, true); }

void BM_Read(benchmark::State& state) {
    const int channels = int(state.range(0));
    const int width = int(state.range(1));
    const std::int32_t n = std::int32_t(state.range(2) * kFreq);
    const std::string path = benchFolder() + "/read.wav";
    {
        const SoundPtr sound = makeSound(channels, n);
        CancelFlag cancel{0};
        if (!writeWaveFile(&cancel, path, sound.get(), width, 0, n, true)) {
            state.SkipWithError("could not make the input file");
            return;
        }
    }
    for (auto _ : state) {
        SoundPtr sound;
        int bytes = 0;
        const char* message = nullptr;
        if (!readWaveFile(path, sound, bytes, message)) {
            state.SkipWithError(message);
            break;
        }
        benchmark::DoNotOptimize(sound->GetLeftWave()->data());
    }
    state.SetItemsProcessed(state.iterations() * std::int64_t(n) * channels);
    state.SetBytesProcessed(state.iterations() * std::int64_t(n) * channels * width);
    std::filesystem::remove_all(std::filesystem::path(path).parent_path());
}

void layouts(benchmark::internal::Benchmark* b) {
    b->ArgNames({"ch", "bytes", "s"});
    for (int ch : {1, 2})
        for (int width : {1, 2}) b->Args({ch, width, 60});
    b->Args({2, 2, 600});
    b->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK(BM_Read)->Apply(layouts);
BENCHMARK(BM_WriteTemporary)->Apply(layouts);
BENCHMARK(BM_WriteDurable)->Apply(layouts);

double secondsSince(Clock::time_point t) {
    return std::chrono::duration<double>(Clock::now() - t).count();
}

int makeMode(const char* path, double seconds) {
    const std::int32_t n = std::int32_t(seconds * kFreq);
    const SoundPtr sound = makeSound(2, n);
    CancelFlag cancel{0};
    return writeWaveFile(&cancel, path, sound.get(), 2, 0, n, false) ? 0 : 1;
}

int readMode(const char* path) {
    SoundPtr sound;
    int width = 0;
    const char* message = nullptr;
    const auto t = Clock::now();
    if (!readWaveFile(path, sound, width, message)) {
        std::fprintf(stderr, "cannot read %s: %s\n", path, message);
        return 1;
    }
    const double s = secondsSince(t);
    const double bytes = double(sound->GetValues()) * sound->MoSt * 2;
    std::printf("read %.0f sample bytes in %.3f s: %.2f GB/s\n", bytes, s, bytes / s / 1e9);
    return 0;
}

int copyMode(const char* in, const char* out, bool temporary) {
    SoundPtr sound;
    int width = 0;
    const char* message = nullptr;
    auto t = Clock::now();
    if (!readWaveFile(in, sound, width, message)) {
        std::fprintf(stderr, "cannot read %s: %s\n", in, message);
        return 1;
    }
    const double readS = secondsSince(t);
    const double bytes = double(std::filesystem::file_size(in));
    CancelFlag cancel{0};
    t = Clock::now();
    if (!writeWaveFile(&cancel, out, sound.get(), width, 0, sound->GetValues(), temporary)) {
        std::fprintf(stderr, "cannot write %s\n", out);
        return 1;
    }
    const double writeS = secondsSince(t);
    // One line, easy for a script to take apart.
    std::printf("bytes %.0f read_s %.4f write_s %.4f read_GBps %.3f write_GBps %.3f\n", bytes,
                readS, writeS, bytes / readS / 1e9, bytes / writeS / 1e9);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::strcmp(argv[1], "--make") == 0) return makeMode(argv[2], std::atof(argv[3]));
    if (argc == 3 && std::strcmp(argv[1], "--read") == 0) return readMode(argv[2]);
    if ((argc == 4 || argc == 5) && std::strcmp(argv[1], "--copy") == 0)
        return copyMode(argv[2], argv[3], argc == 5 && std::strcmp(argv[4], "--temporary") == 0);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
