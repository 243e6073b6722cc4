// Import and export through libsndfile, in samples per second.
//
// Without arguments (or with Google Benchmark's own flags) it runs the benchmarks below on
// files in the temporary folder. scripts/bench-import-export uses three extra modes to time
// one long file against SoX in the same run:
//   sound_import_bench --make FILE SECONDS    a 44.1 kHz stereo sound of that length, in the
//                                             format of FILE's extension
//   sound_import_bench --to-wav IN OUT        imports IN, writes OUT as a 16-bit WAV file
//   sound_import_bench --from-wav IN OUT      reads the WAV file IN, exports OUT by extension
// The last two print the time of each half on one line.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <unistd.h>

#include "core/sound.h"
#include "fileio/sound_export.h"
#include "fileio/sound_import.h"
#include "fileio/wav_file.h"

namespace {

using namespace orv;
using Clock = std::chrono::steady_clock;

constexpr std::int32_t kFreq = 44100;

// Something like music for a lossless coder: a few tones whose loudness drifts, over quiet
// noise. Pure noise would not compress and would time the coder's worst case only.
WavePtr makeWave(std::int32_t n, std::uint32_t seed) {
    WaveVal* s = allocateSamples(n);
    if (!s) {
        std::fprintf(stderr, "out of memory for %d samples\n", n);
        std::exit(1);
    }
    std::uint32_t x = seed;
    const double f1 = 220.0 * seed, f2 = 331.0 + 17 * seed, f3 = 1250.0;
    for (std::int32_t i = 0; i < n; ++i) {
        x = x * 1664525u + 1013904223u;
        const double t = double(i) / kFreq;
        const double loud = 0.6 + 0.4 * std::sin(t * 0.7 + seed);
        const double v = loud * (7000 * std::sin(2 * M_PI * f1 * t) +
                                 5000 * std::sin(2 * M_PI * f2 * t) +
                                 2500 * std::sin(2 * M_PI * f3 * t * (1 + 0.01 * std::sin(t)))) +
                         double(std::int32_t(x >> 16) - 32768) / 64;
        s[i] = toWaveVal(v);
    }
    return std::make_unique<Wave>(s, n);
}

SoundPtr makeSound(std::int32_t n) {
    return std::make_unique<StereoSound>(makeWave(n, 1), makeWave(n, 2), kFreq);
}

std::string benchFolder() {
    const std::string dir = "/tmp/orvasto-import-bench-" + std::to_string(::getpid());
    std::filesystem::create_directories(dir);
    return dir;
}

// state.range(0): seconds of stereo sound.
void BM_Import(benchmark::State& state, const char* name) {
    const std::int32_t n = std::int32_t(state.range(0) * kFreq);
    const std::string path = benchFolder() + "/in." + name;
    {
        const SoundPtr sound = makeSound(n);
        std::string reason;
        if (!exportSoundFile(path, name, sound.get(), reason)) {
            state.SkipWithError(reason.c_str());
            return;
        }
    }
    for (auto _ : state) {
        SoundPtr sound;
        std::string reason;
        if (!importSoundFile(path, sound, reason)) {
            state.SkipWithError(reason.c_str());
            break;
        }
        benchmark::DoNotOptimize(sound->GetLeftWave()->data());
    }
    state.SetItemsProcessed(state.iterations() * std::int64_t(n) * 2);
    std::filesystem::remove_all(std::filesystem::path(path).parent_path());
}

void BM_Export(benchmark::State& state, const char* name) {
    const std::int32_t n = std::int32_t(state.range(0) * kFreq);
    const SoundPtr sound = makeSound(n);
    const std::string path = benchFolder() + "/out";
    for (auto _ : state) {
        std::string reason;
        if (!exportSoundFile(path, name, sound.get(), reason)) {
            state.SkipWithError(reason.c_str());
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * std::int64_t(n) * 2);
    std::filesystem::remove_all(std::filesystem::path(path).parent_path());
}

void BM_ImportFlac(benchmark::State& s) { BM_Import(s, "flac"); }
void BM_ImportWav24(benchmark::State& s) { BM_Import(s, "wav24"); }
void BM_ImportFloat(benchmark::State& s) { BM_Import(s, "float"); }
void BM_ImportOgg(benchmark::State& s) { BM_Import(s, "ogg"); }
void BM_ExportFlac(benchmark::State& s) { BM_Export(s, "flac"); }
void BM_ExportWav24(benchmark::State& s) { BM_Export(s, "wav24"); }
void BM_ExportFloat(benchmark::State& s) { BM_Export(s, "float"); }

void seconds60(benchmark::internal::Benchmark* b) {
    b->ArgName("s")->Arg(60)->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK(BM_ImportFlac)->Apply(seconds60);
BENCHMARK(BM_ImportWav24)->Apply(seconds60);
BENCHMARK(BM_ImportFloat)->Apply(seconds60);
BENCHMARK(BM_ImportOgg)->Apply(seconds60);
BENCHMARK(BM_ExportFlac)->Apply(seconds60);
BENCHMARK(BM_ExportWav24)->Apply(seconds60);
BENCHMARK(BM_ExportFloat)->Apply(seconds60);

double secondsSince(Clock::time_point t) {
    return std::chrono::duration<double>(Clock::now() - t).count();
}

int makeMode(const char* path, double seconds) {
    const SoundPtr sound = makeSound(std::int32_t(seconds * kFreq));
    std::string reason;
    if (exportSoundFile(path, "", sound.get(), reason)) return 0;
    std::fprintf(stderr, "%s\n", exportFailureText(path, reason).c_str());
    return 1;
}

int toWavMode(const char* in, const char* out) {
    SoundPtr sound;
    std::string reason;
    auto t = Clock::now();
    if (!importSoundFile(in, sound, reason)) {
        std::fprintf(stderr, "%s\n", importFailureText(in, reason).c_str());
        return 1;
    }
    const double importS = secondsSince(t);
    CancelFlag cancel{0};
    t = Clock::now();
    if (!writeWaveFile(&cancel, out, sound.get(), 2, 0, sound->GetValues(), false)) {
        std::fprintf(stderr, "cannot write %s\n", out);
        return 1;
    }
    const double writeS = secondsSince(t);
    std::printf("samples %d import_s %.4f write_s %.4f\n", sound->GetValues() * sound->MoSt,
                importS, writeS);
    return 0;
}

int fromWavMode(const char* in, const char* out) {
    SoundPtr sound;
    int width = 0;
    const char* message = nullptr;
    auto t = Clock::now();
    if (!readWaveFile(in, sound, width, message)) {
        std::fprintf(stderr, "cannot read %s: %s\n", in, message);
        return 1;
    }
    const double readS = secondsSince(t);
    std::string reason;
    t = Clock::now();
    if (!exportSoundFile(out, "", sound.get(), reason)) {
        std::fprintf(stderr, "%s\n", exportFailureText(out, reason).c_str());
        return 1;
    }
    const double exportS = secondsSince(t);
    std::printf("samples %d read_s %.4f export_s %.4f\n", sound->GetValues() * sound->MoSt,
                readS, exportS);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::strcmp(argv[1], "--make") == 0) return makeMode(argv[2], std::atof(argv[3]));
    if (argc == 4 && std::strcmp(argv[1], "--to-wav") == 0) return toWavMode(argv[2], argv[3]);
    if (argc == 4 && std::strcmp(argv[1], "--from-wav") == 0) return fromWavMode(argv[2], argv[3]);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
