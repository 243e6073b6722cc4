#include "document/split_merge.h"

#include <gtest/gtest.h>

#include "support/document_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;
using Kind = ActionResult::Kind;

using SplitMerge = WorkspaceFixture;

Samples rightOf(const TUnitWave& u) { return samplesOf(u.getSound()->GetRightWave()); }

TEST_F(SplitMerge, SplitVerticallyMakesTwoMonoWavesInPlaceOfTheStereoOne) {
    TUnitWave& u = ws.add(std::make_unique<TUnitWave>(stereo({1, 2, 3}, {-1, -2, -3}), 1, "s.wav"));
    const TUnitWave* source = &u;
    ASSERT_TRUE(run("SplitV"));
    ASSERT_EQ(ws.documents().size(), 2u);
    ASSERT_EQ(ws.lastMade().size(), 2u);
    for (const TUnitWave* made : ws.lastMade()) {
        EXPECT_NE(made, source);
        EXPECT_EQ(made->getMonoStereo(), 1);
        EXPECT_EQ(made->getFileName(), "NONAME");
        EXPECT_EQ(made->getState(), kStateNew);
        EXPECT_EQ(made->getBytesPSample(), 1);  // the source's width
    }
    EXPECT_EQ(samplesOf(*ws.lastMade()[0]), (Samples{1, 2, 3}));  // left first
    EXPECT_EQ(samplesOf(*ws.lastMade()[1]), (Samples{-1, -2, -3}));
    EXPECT_EQ(ws.active(), ws.lastMade()[1]);
    Lines traces;
    for (const std::string& t : rec.recorder.traces)
        if (t.find("Split") != std::string::npos) traces.push_back(t);
    EXPECT_EQ(traces, (Lines{"begin Split\n", "einde Split\n"}));
    EXPECT_EQ(ws.status("SplitV").reason, "the wave is not stereo");
}

TEST_F(SplitMerge, SplitHorizontallyByTheResultChosen) {
    const struct {
        const char* result;
        std::vector<Samples> pieces;
    } rows[] = {
        {"Three parts", {{0, 1}, {2, 3, 4}, {5, 6, 7}}},
        {"Two parts, both inclusive selected part", {{0, 1, 2, 3, 4}, {2, 3, 4, 5, 6, 7}}},
        {"Two parts, both exclusive selected part", {{0, 1}, {5, 6, 7}}},
    };
    for (const auto& row : rows) {
        TUnitWave& u = load(rampOf(8));
        select(u, 5, 2);
        ASSERT_TRUE(run("SplitH", {{"Result", row.result}})) << row.result;
        ASSERT_EQ(ws.lastMade().size(), row.pieces.size()) << row.result;
        for (std::size_t i = 0; i < row.pieces.size(); ++i)
            EXPECT_EQ(samplesOf(*ws.lastMade()[i]), row.pieces[i]) << row.result << " " << i;
        for (TUnitWave* made : std::vector<TUnitWave*>(ws.lastMade())) ws.close(*made);
        EXPECT_TRUE(ws.documents().empty());  // the source went as well
    }
    // Without a part the wave is cut at the cursor, whatever the choice.
    TUnitWave& u = load(rampOf(5));
    u.setCursor(2);
    ASSERT_TRUE(run("SplitH", {{"Result", "Three parts"}}));
    ASSERT_EQ(ws.lastMade().size(), 2u);
    EXPECT_EQ(samplesOf(*ws.lastMade()[0]), (Samples{0, 1}));
    EXPECT_EQ(samplesOf(*ws.lastMade()[1]), (Samples{2, 3, 4}));
}

TEST_F(SplitMerge, SplitHorizontallyIsOfferedOnlyStrictlyInside) {
    TUnitWave& u = load(rampOf(10));
    const struct { int cursor, selEnd; bool offered; } rows[] = {
        {0, 4, false}, {1, 4, true}, {1, 8, true}, {1, 9, false}, {5, 5, true}, {0, 0, false},
        {9, 9, false}};
    for (const auto& row : rows) {
        select(u, row.cursor, row.selEnd);
        EXPECT_EQ(ws.status("SplitH").enabled, row.offered) << row.cursor << " " << row.selEnd;
    }
}

TEST_F(SplitMerge, MergeHorizontallyConvertsToTheChosenFrequencyBeforeJoining) {
    TUnitWave& a = ws.add(std::make_unique<TUnitWave>(mono(rampOf(40), 11025), 2, "a.wav"));
    TUnitWave& b = ws.add(std::make_unique<TUnitWave>(mono({7, 8, 9}, 22050), 1, "b.wav"));
    ASSERT_TRUE(ws.registerName(a, "a"));
    ASSERT_TRUE(ws.registerName(b, "b"));
    CancelFlag c{0};
    const Samples aAt22k = samplesOf(a.getSound()->ChangeFreq(&c, 22050)->GetLeftWave());
    // The higher frequency and 16 bits, as nothing may be lost where they differ.
    ASSERT_TRUE(run("MergeH", {{"First", "a"}, {"Last", "b"}}));
    ASSERT_EQ(ws.documents().size(), 1u);
    const TUnitWave& m = *ws.lastMade()[0];
    Samples want = aAt22k;
    want.insert(want.end(), {7, 8, 9});
    EXPECT_EQ(samplesOf(m), want);
    EXPECT_EQ((Samples{m.getFreq(), m.getBytesPSample(), m.getMonoStereo()}), (Samples{22050, 2, 1}));
    EXPECT_EQ(m.getName(), "");  // a new wave, not registered
}

TEST_F(SplitMerge, MergeOfAWaveWithItselfIsRefused) {
    TUnitWave& a = load({1, 2});
    load({3});
    ASSERT_TRUE(ws.registerName(a, "a"));
    const ActionResult r = ws.runAction("MergeV", {{"Left", "a"}, {"Right", "a"}});
    EXPECT_EQ(r.kind, Kind::InputError);
    EXPECT_EQ(r.caption, "Input Error");
    EXPECT_EQ(r.text, "The chosen Waves must be different");
    EXPECT_EQ(ws.documents().size(), 2u);
    ASSERT_EQ(shown().size(), 1u);
    EXPECT_EQ(shown()[0].text, "The chosen Waves must be different");
}

TEST_F(SplitMerge, MergeVerticallyMakesTheLengthsEqualAsChosen) {
    // Merges `left` and `right` (11025 Hz) into one stereo wave, which replaces them.
    auto merge = [&](const Samples& left, const Samples& right, const char* how) -> TUnitWave& {
        EXPECT_TRUE(ws.registerName(load(left, 2, "l.wav", 11025), "l"));
        EXPECT_TRUE(ws.registerName(load(right, 2, "r.wav", 11025), "r"));
        EXPECT_TRUE(run("MergeV", {{"Left", "l"}, {"Right", "r"}, {"Make Lengths Equal", how}}));
        EXPECT_EQ(ws.documents().size(), 1u);
        return *ws.lastMade()[0];
    };
    const struct {
        const char* how;
        Samples left, right;
    } rows[] = {
        {"Add Silence at the end of the shortest wave", {10, 20, 30, 0, 0}, {1, 2, 3, 4, 5}},
        {"Add Silence at the begin of the shortest wave", {0, 0, 10, 20, 30}, {1, 2, 3, 4, 5}},
    };
    for (const auto& row : rows) {
        TUnitWave& m = merge({10, 20, 30}, {1, 2, 3, 4, 5}, row.how);
        EXPECT_EQ(Ends(m.getMonoStereo(), m.getFreq()), Ends(2, 11025));
        EXPECT_EQ(samplesOf(m), row.left) << row.how;
        EXPECT_EQ(rightOf(m), row.right) << row.how;
        ws.close(m);
    }
    // Stretching: either way both channels end up with the length asked for.
    EXPECT_EQ(merge(rampOf(300), rampOf(700), "Stretch the shortest wave").values(), 700);
    ws.close(*ws.lastMade()[0]);
    EXPECT_EQ(merge(rampOf(300), rampOf(700), "Stretch the longest wave").values(), 300);
}

}  // namespace
}  // namespace orv
