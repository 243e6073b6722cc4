// The desktop program's responsiveness, on Qt's offscreen platform:
//   startup     a new main frame shown and idle (warm: the process and Qt are up)
//   open60      a 60-minute 44.1 kHz stereo WAV opened into a shown window
//   heartbeat   the longest gap of a 10 ms timer on the user-interface thread while a
//               10-minute stereo TempoPitch computes as a job (goal: never above 50 ms)
//   overhead    a command on a tiny wave from run() to the document changed: what the frame,
//               the runner and the job flow add around the computation (goal: <= 10 ms)
//   playstart   FilePlay on a 10-minute stereo wave until the sound server has played the
//               first of it (goal: 150 ms); needs a sound server (scripts/sound-server)
// Times are wall-clock (manual time); run it alone on the machine.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <string>

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include "app/main_form.h"
#include "fileio/wav_file.h"

namespace orv {
namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point t0) {
    return std::chrono::duration<double>(Clock::now() - t0).count();
}

// Runs the event loop until `done` or the time is up.
template <class Done>
void spin(Done&& done, int maxMs = 600000) {
    QElapsedTimer t;
    t.start();
    while (!done() && t.elapsed() < maxMs) QApplication::processEvents(QEventLoop::AllEvents, 5);
}

SoundPtr stereoMinutes(int minutes) {
    CancelFlag c{0};
    const std::int32_t n = 44100 * 60 * minutes;
    WavePtr l = newWave(c, n), r = newWave(c, n);
    if (!l || !r) return nullptr;
    for (std::int32_t i = 0; i < n; ++i) {
        (*l)[i] = WaveVal((std::int64_t(i) * 37) % 20000 - 10000);
        (*r)[i] = WaveVal((std::int64_t(i) * 53) % 16000 - 8000);
    }
    return std::make_unique<StereoSound>(std::move(l), std::move(r), 44100);
}

const std::string& file60() {
    static const std::string path = [] {
        const std::string p = "/tmp/orvasto-app-bench-60min.wav";
        CancelFlag c{0};
        SoundPtr s = stereoMinutes(60);
        writeWaveFile(&c, p, s.get(), 2, 0, s->GetValues(), true);
        return p;
    }();
    return path;
}

void BM_Startup(benchmark::State& state) {
    for (auto _ : state) {
        const auto t0 = Clock::now();
        TMainForm frame;
        frame.show();
        QApplication::processEvents();
        state.SetIterationTime(secondsSince(t0));
    }
}
BENCHMARK(BM_Startup)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_Open60MinuteStereo(benchmark::State& state) {
    const std::string& path = file60();
    for (auto _ : state) {
        TMainForm frame;
        frame.show();
        QApplication::processEvents();
        const auto t0 = Clock::now();
        frame.openFiles({QString::fromStdString(path)});
        QApplication::processEvents();
        state.SetIterationTime(secondsSince(t0));
        if (frame.workspace().documents().size() != 1) state.SkipWithError("not opened");
    }
}
BENCHMARK(BM_Open60MinuteStereo)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_HeartbeatDuringTempoPitch(benchmark::State& state) {
    for (auto _ : state) {
        TMainForm frame;
        frame.show();
        Workspace& ws = frame.workspace();
        ws.add(std::make_unique<TUnitWave>(stereoMinutes(10), 2, "ten.wav"));
        QElapsedTimer sinceBeat;
        qint64 longest = 0;
        QTimer beat;
        QObject::connect(&beat, &QTimer::timeout, [&] {
            longest = std::max(longest, sinceBeat.restart());
        });
        const auto t0 = Clock::now();
        bool finished = false;
        ActionResult result;
        sinceBeat.start();
        beat.start(10);
        frame.runner().run("TempoPitch", {}, [&](const ActionResult& r) {
            result = r;
            finished = true;
        });
        spin([&] { return finished; });
        beat.stop();
        state.SetIterationTime(secondsSince(t0));
        if (result.kind != ActionResult::Kind::Done) state.SkipWithError(result.text.c_str());
        state.counters["longest_gap_ms"] = double(longest);
        state.counters["samples_made"] = double(ws.active()->values());
    }
}
BENCHMARK(BM_HeartbeatDuringTempoPitch)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_CommandOverhead(benchmark::State& state) {
    TMainForm frame;
    frame.show();
    Workspace& ws = frame.workspace();
    ws.newWave(WaveFileProps{44100, 1, 2});
    ws.runAction("MakeSinus", {{"Length", "10 ms"}});
    for (auto _ : state) {
        bool finished = false;
        const auto t0 = Clock::now();
        frame.runner().run("Reverse", {}, [&](const ActionResult&) { finished = true; });
        spin([&] { return finished; });
        state.SetIterationTime(secondsSince(t0));
    }
}
BENCHMARK(BM_CommandOverhead)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(50);

void BM_PlayStart10MinuteStereo(benchmark::State& state) {
    TMainForm frame;
    frame.show();
    Workspace& ws = frame.workspace();
    ws.add(std::make_unique<TUnitWave>(stereoMinutes(10), 2, "ten.wav"));
    frame.updateActions();
    QAction* play = frame.action("FilePlay");
    QAction* stop = frame.action("FileStop");
    for (auto _ : state) {
        const auto t0 = Clock::now();
        play->trigger();
        const double handed = secondsSince(t0);
        spin([&] { return frame.audioPlayer()->heardFrame() > 0 || !play->isChecked(); }, 5000);
        state.SetIterationTime(secondsSince(t0));
        state.counters["handed_to_sink_ms"] = handed * 1000;
        if (frame.audioPlayer()->heardFrame() <= 0) {
            state.SkipWithError("nothing was heard: is a sound server running (scripts/sound-server)?");
            break;
        }
        stop->trigger();
    }
}
BENCHMARK(BM_PlayStart10MinuteStereo)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

}  // namespace
}  // namespace orv

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::remove("/tmp/orvasto-app-bench-60min.wav");
    return 0;
}
