// Every field of every action, set to zero, negative, huge, tiny, unreadable, a note, an
// extreme unit, on mono, stereo and one-sample waves, at 1 Hz and at 1,000,000 Hz, with and
// without envelopes. Typed input may be refused with a message, never stop the program: an
// internal check that fails is caught here (the test platform throws instead of aborting)
// and every such case is listed. New actions and fields join the sweep by themselves.
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <sstream>
#include <string>
#include <vector>

#include "cli/runner.h"
#include "cli/script.h"
#include "document/actions.h"
#include "support/cli_test_helpers.h"

using namespace orv;
using namespace orv::cli;
using Args = std::vector<std::string>;

namespace {

struct AssertionHit {
    std::string text;
};

// Messages are expected by the thousand and ignored; a failed internal check is thrown, so
// the sweep can go on and report it.
class SweepPlatform final : public Platform {
public:
    void showMessage(std::string_view, std::string_view, MessageIcon) override {}
    void assertionFailed(std::string_view text) override { throw AssertionHit{std::string(text)}; }
};

// Storage beyond 64 KB per channel is refused, as on a machine without memory to spare:
// huge lengths then take the memory path instead of minutes.
void* smallAllocate(std::size_t bytes) { return bytes > (std::size_t(1) << 16) ? nullptr : std::malloc(bytes); }

const std::vector<std::string> kValues = {
    "0",     "-1",     "1",        "0.5",       "-0.5",   "2",       "100000", "9999999999",
    "-100000", "0.0000001", "NaN", "A4",     "C-2",     "B12",    "$32767", "$-32768",
    "100 %", "-100 %", "1000 %",   "60 dB",     "-60 dB", "90'",     "-360'",  "1 s",
    "0.0001 s", "100 s", "1 ms",   "1 Hz",      "20 kHz", "1000 kHz", "1/3",   "-1/3", ""};

struct WaveCase {
    const char* name;  // the file, also the label in the report
    int freq;
    int channels;
    int frames;
    bool select;  // a part selected before the action
    bool fullValues;  // every value, or only a few extremes
};

const WaveCase kWaves[] = {
    {"mono.wav", 8000, 1, 48, false, true},     {"stereo.wav", 8000, 2, 48, false, true},
    {"one.wav", 8000, 1, 1, false, true},       {"slow.wav", 1, 1, 48, false, true},
    {"fast.wav", 1000000, 2, 48, false, true},  {"part.wav", 44100, 1, 48, true, false},
};

class ValueSweep : public ::testing::Test {
protected:
    void SetUp() override {
        for (const WaveCase& w : kWaves) {
            std::vector<int> frames;
            for (int i = 0; i < w.frames * w.channels; ++i) frames.push_back((i * 7919) % 60001 - 30000);
            test::writeWav16(tmp / w.name, w.freq, w.channels, frames);
        }
        test::writeWav16(tmp / "env.wav", 8000, 1, {-32768, 0, 32767, 12000, -5});
        previous = setPlatform(&quiet);
        previousAllocator = setSampleAllocator(smallAllocate);
    }
    void TearDown() override {
        setSampleAllocator(previousAllocator);
        setPlatform(previous);
    }

    // One script on a fresh runner; the failed check's text, or "".
    std::string attempt(const WaveCase& w, const std::string& action, const TypedFields& fields) {
        Args args = {"open", tmp / "env.wav", "name", "env", "open", tmp / w.name, "EditCopy"};
        if (w.select) args.insert(args.end(), {"select", "8", "40"});
        args.push_back(action);
        for (const auto& [k, v] : fields) args.push_back(k + "=" + v);
        std::vector<Step> steps;
        if (parseScript(args, steps)) return "";  // a value with "=" in it: not this sweep's
        std::ostringstream out;
        ScriptRunner runner(out);
        ++runs;
        if (std::getenv("ORVASTO_SWEEP_TRACE")) std::fprintf(stderr, "%s\n", label(w, action, fields).c_str());
        // Huge counts make long work, which is no fault as long as Ctrl-C stops it: after a
        // moment the watchdog interrupts, as a user would.
        std::mutex m;
        std::condition_variable cv;
        bool done = false;
        std::thread watchdog([&] {
            std::unique_lock lock(m);
            if (cv.wait_for(lock, std::chrono::milliseconds(300), [&] { return done; })) return;
            ++interrupted;
            while (!cv.wait_for(lock, std::chrono::milliseconds(20), [&] { return done; })) runner.interrupt();
        });
        std::string failed;
        try {
            (void)runner.run(steps);
        } catch (const AssertionHit& hit) {
            failed = hit.text;
        }
        {
            std::lock_guard lock(m);
            done = true;
        }
        cv.notify_one();
        watchdog.join();
        return failed;
    }

    static std::string label(const WaveCase& w, const std::string& action, const TypedFields& fields) {
        std::string line = std::string(w.name) + " " + action;
        for (const auto& [k, v] : fields) line += " \"" + k + "=" + v + "\"";
        return line;
    }

    void record(const WaveCase& w, const std::string& action, const TypedFields& fields,
                const std::string& failed) {
        if (!failed.empty()) failures.push_back(label(w, action, fields) + ": " + failed);
    }

    test::TempDir tmp;
    SweepPlatform quiet;
    Platform* previous = nullptr;
    SampleAllocator previousAllocator = nullptr;
    std::vector<std::string> failures;
    int runs = 0;
    int interrupted = 0;
};

// The values a field is swept with: typed values for the fields read from text, every
// entry for a choice, both states of a flag, the registered envelope for a wave name.
std::vector<std::string> valuesFor(const FieldDef& f, bool full) {
    if (isReadKind(f.kind)) {
        if (full) return kValues;
        return {"0", "-1", "9999999999", "0.0000001", "1000 kHz", "100 s", "-360'"};
    }
    switch (f.kind) {
        case FieldKind::Option:
        case FieldKind::Choice:
        case FieldKind::Preset: return std::vector<std::string>(f.choices.begin(), f.choices.end());
        case FieldKind::Flag: return {"on", "off"};
        case FieldKind::WaveName: return {"env"};
        case FieldKind::Text: return {"x", ""};
        default: return {};
    }
}

}  // namespace

TEST_F(ValueSweep, NoTypedValueStopsTheProgram) {
    const auto started = std::chrono::steady_clock::now();
    std::vector<std::string> actions;
    for (const ActionDef& a : actionTable()) {
        if (a.flow == ActionFlow::Front || a.flow == ActionFlow::Inert) continue;
        // Files have tests of their own; a sweep would only write junk files.
        if (a.name == "FileOpenWave" || a.name == "FileSave" || a.name == "FileSaveAs") continue;
        actions.emplace_back(a.name);
    }
    ASSERT_GT(actions.size(), 40u);

    for (const WaveCase& w : kWaves) {
        // The fields each action's form has (on this wave: mono and stereo differ nowhere).
        {
            std::ostringstream out;
            ScriptRunner probe(out);
            std::vector<Step> steps;
            ASSERT_FALSE(parseScript({"open", tmp / w.name}, steps));
            ASSERT_EQ(probe.run(steps), kExitOk) << w.name;
            for (const std::string& action : actions) {
                // Defaults first: every action at 1 Hz and at 1,000,000 Hz among them.
                record(w, action, {}, attempt(w, action, {}));
                std::unique_ptr<FormView> form = probe.workspace().actionForm(action);
                if (!form) continue;
                const FormSpec& spec = form->spec();
                // The envelope fields typed first choose every envelope option; the swept
                // field comes last, so its own option follows it.
                TypedFields envelopes;
                for (const FieldDef& f : spec.fields)
                    if (f.kind == FieldKind::WaveName) envelopes.emplace_back(plainCaption(f.caption), "env");
                for (const FieldDef& f : spec.fields) {
                    for (const std::string& v : valuesFor(f, w.fullValues)) {
                        const TypedFields plain = {{plainCaption(f.caption), v}};
                        record(w, action, plain, attempt(w, action, plain));
                        if (!envelopes.empty() && w.fullValues) {
                            TypedFields both = envelopes;
                            both.emplace_back(plainCaption(f.caption), v);
                            record(w, action, both, attempt(w, action, both));
                        }
                    }
                }
            }
        }
    }
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    std::printf("value sweep: %d runs in %.1f s, %d stopped by the watchdog\n", runs, seconds, interrupted);
    EXPECT_GT(runs, 5000);
    std::string report;
    for (std::size_t i = 0; i < failures.size() && i < 40; ++i) report += failures[i] + "\n";
    EXPECT_TRUE(failures.empty()) << failures.size() << " runs stopped on a failed check:\n" << report;
}
