// The window steps of the command line: view settings, zoom, and render painting exactly
// what the painters paint for a window of that size.
#include "cli/view_steps.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "cli/runner.h"
#include "cli/script.h"
#include "fileio/wav_file.h"
#include "render/png_writer.h"
#include "render/wave_painter.h"
#include "support/document_test_helpers.h"

namespace orv::cli {
namespace {

using Args = std::vector<std::string>;

std::string bytesOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

class ViewStepsTest : public ::testing::Test {
protected:
    int run(const Args& args) {
        std::vector<Step> steps;
        if (auto e = parseScript(args, steps)) {
            ADD_FAILURE() << "script refused: " << e->text;
            return -1;
        }
        std::ostringstream out;
        ScriptRunner runner(out);
        return runner.run(steps);
    }
    std::string last() const {
        const auto& m = rec.recorder.messages;
        return m.empty() ? "(none)" : m.back().caption + ": " + m.back().text;
    }
    test::TempDir tmp;
    test::RecordingPlatformScope rec;
};

// The picture of `render` is the one paintWave makes of the same wave, settings, selection
// and zoom, pixel for pixel (the PNG files are byte for byte the same).
TEST_F(ViewStepsTest, RenderPaintsWhatTheWindowPaints) {
    const std::string wav = tmp / "a.wav", png = tmp / "a.png", direct = tmp / "direct.png";
    ASSERT_EQ(run({"new", "8000", "16", "2", "MakeSinus", "Frequency=440 Hz", "Length=0.5 s",
                   "save", wav, "select", "0.1s", "0.3s", "ViewWave", "Draw=Points",
                   "Strength=0.5", "Background=#000000", "Single Wave=#00FF00", "ZoomIn",
                   "select", "0.15s", "0.2s", "render", png, "320", "90"}),
              0)
        << last();
    SoundPtr sound;
    int bytes = 0;
    const char* message = "";
    ASSERT_TRUE(readWaveFile(wav, sound, bytes, message));
    WavePaintInput in;
    in.sound = sound.get();
    ASSERT_FALSE(applyTypedFields(in.settings, {{"Draw", "Points"}, {"Strength", "0.5"},
                                                {"Background", "#000000"},
                                                {"Single Wave", "#00FF00"}},
                                  FormContext{}));
    // Zoomed on 800 .. 2400 in a window 320 wide: the scroll bar's range and position.
    const std::int32_t n = sound->GetValues();
    const std::int64_t range = std::int64_t(double(n) * 320 / 1600);
    const std::int64_t pos = std::int64_t(800.0 * double(range) / n);
    in.view = visibleSpan(n, true, range, pos, 320);
    in.cursor = 1200;
    in.selEndPos = 1600;
    in.clientWidth = 320;
    in.clientHeight = 90;
    Canvas canvas(320, 90);
    paintWave(canvas, in);
    std::string reason;
    ASSERT_TRUE(writePng(canvas, direct, reason)) << reason;
    EXPECT_EQ(bytesOf(png), bytesOf(direct));
    EXPECT_GT(bytesOf(png).size(), 100u);
}

TEST_F(ViewStepsTest, RefusalsWordForWord) {
    const std::string png = tmp / "x.png";
    EXPECT_EQ(run({"new", "8000", "16", "1", "MakeNoise", "cursor", "0", "ZoomIn"}), kExitUsage);
    EXPECT_EQ(last(), "Usage Error: ZoomIn is not available now: nothing is selected.");
    EXPECT_EQ(run({"new", "8000", "16", "1", "MakeNoise", "NoZoom"}), kExitUsage);
    EXPECT_EQ(last(), "Usage Error: NoZoom is not available now: the wave is not zoomed.");
    EXPECT_EQ(run({"new", "8000", "16", "1", "ViewWave", "Background=red"}), kExitUsage);
    EXPECT_EQ(last(), "Input Error: In Background: Colour must be written as #RRGGBB.");
    std::vector<Step> steps;
    const auto bad = parseScript({"new", "8000", "16", "1", "render", png, "0", "10"}, steps);
    ASSERT_TRUE(bad);
    EXPECT_EQ(bad->text, "render needs a width and a height of 1 to 16384 pixels, not \"0\" and \"10\".");
}

// Zoomed, then part of the wave deleted: the same margins around the part, cut at the end.
TEST(ViewStepsZoom, StaysZoomedWithTheSameMarginsAcrossAnOperation) {
    test::RecordingPlatformScope rec;
    Workspace ws;
    TUnitWave& u = ws.add(std::make_unique<TUnitWave>(test::mono(test::rampOf(3000)), 2, "a.wav"));
    ViewSteps views;
    test::select(u, 1000, 2000);
    ASSERT_FALSE(views.run("ZoomIn", {}, u, ws.formContext()));
    test::select(u, 1200, 1300);
    views.beforeOperation(u);
    ASSERT_TRUE(ws.runAction("EditDelete").ok());
    views.afterOperation(u);
    // The margins were 200 before and 700 after the part; the part is now empty at 1200.
    EXPECT_TRUE(views.of(u).zoomed);
    EXPECT_EQ(views.of(u).zoomBegin, 1000);
    EXPECT_EQ(views.of(u).zoomEnd, 1900);
    // Zoomed up to the end of the wave, a part that shrinks: the zoom still ends there.
    test::select(u, 2800, 2900);
    ASSERT_FALSE(views.run("ZoomIn", {}, u, ws.formContext()));
    test::select(u, 2850, 2860);
    views.beforeOperation(u);
    ASSERT_TRUE(ws.runAction("MakeSilence", {{"Length", "1 ms"}}).ok());  // 2 samples for 10
    views.afterOperation(u);
    EXPECT_EQ(views.of(u).zoomBegin, 2800);
    EXPECT_EQ(views.of(u).zoomEnd, 2892);  // the new part's end 2852 + 40
    EXPECT_EQ(u.values(), 2892);
    ASSERT_FALSE(views.run("NoZoom", {}, u, ws.formContext()));
    EXPECT_FALSE(views.of(u).zoomed);
}

}  // namespace
}  // namespace orv::cli
