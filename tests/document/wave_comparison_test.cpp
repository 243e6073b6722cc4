// The merge dialogs' table of the two chosen waves: cells worked out by hand, empty cells for
// a side without a wave, and the names read from the form state at the moment of asking.
#include "document/wave_comparison.h"

#include <gtest/gtest.h>

#include "document/split_merge.h"
#include "support/document_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;
using Table = WaveComparison;

// Mono, 8 bits, 22050 Hz, 11025 samples: half a second.
std::unique_ptr<TUnitWave> lowWave() {
    return std::make_unique<TUnitWave>(mono(Samples(11025), 22050), 1, "low.wav");
}
// Stereo, 16 bits, 44100 Hz, 66150 samples: a second and a half.
std::unique_ptr<TUnitWave> highWave() {
    return std::make_unique<TUnitWave>(stereo(Samples(66150), Samples(66150), 44100), 2,
                                       "high.wav");
}

const Table kLowHigh = {
    {"", "First", "Last"},
    {"Mono/Stereo", "Mono", "Stereo"},
    {"Frequency", "22050 Hz", "44100 Hz"},
    {"Bits", "8 Bits", "16 Bits"},
    {"Length", "0.50000 s", "1.50000 s"},
};

TEST(WaveComparison, TwoWavesSideBySideAndEmptyCellsWithoutAWave) {
    const auto low = lowWave();
    const auto high = highWave();
    EXPECT_EQ(compareWaves(low.get(), high.get(), "First", "Last"), kLowHigh);

    // Over a minute the length is written in minutes, as the status bar does: 65.25 s.
    const TUnitWave minute(mono(Samples(65250), 1000), 2, "m.wav");
    EXPECT_EQ(compareWaves(nullptr, &minute, "Left", "Right"), (Table{
                  {"", "Left", "Right"},
                  {"Mono/Stereo", "", "Mono"},
                  {"Frequency", "", "1000 Hz"},
                  {"Bits", "", "16 Bits"},
                  {"Length", "", "1:05.25000"},
              }));
}

using MergeSideTable = WorkspaceFixture;

TEST_F(MergeSideTable, ReadsTheChosenNamesUnderTheFieldCaptions) {
    TUnitWave& low = ws.add(lowWave());
    TUnitWave& high = ws.add(highWave());
    ASSERT_TRUE(ws.registerName(low, "low"));
    ASSERT_TRUE(ws.registerName(high, "high"));

    const FormSpec& hor = MergeHorRecord::table();
    const auto horTable = mergeSideTable(ws, hor);
    FormState state = showRecord(MergeHorRecord::table(), MergeHorRecord{}, &ws);
    EXPECT_EQ(horTable(state), compareWaves(nullptr, nullptr, "First", "Last"));
    chooseWave(hor, state, 0, "low", &ws);
    chooseWave(hor, state, 1, "high", &ws);
    EXPECT_EQ(horTable(state), kLowHigh);

    // The names are looked up when asked: a wave that lost its name leaves its side empty,
    // and so does a name no wave bears.
    const FormSpec& vert = MergeVertRecord::table();
    const auto vertTable = mergeSideTable(ws, vert);
    FormState v = showRecord(MergeVertRecord::table(), MergeVertRecord{}, &ws);
    chooseWave(vert, v, 0, "high", &ws);
    chooseWave(vert, v, 1, "low", &ws);
    EXPECT_EQ(vertTable(v), compareWaves(&high, &low, "Left", "Right"));
    ASSERT_TRUE(ws.registerName(low, ""));
    EXPECT_EQ(vertTable(v), compareWaves(&high, nullptr, "Left", "Right"));
    v.fields[0].text = "nobody";
    EXPECT_EQ(vertTable(v), compareWaves(nullptr, nullptr, "Left", "Right"));
}

// A dialog without a choice of its own starts from the active wave and another named one;
// names that still belong to open waves stay.
TEST_F(MergeSideTable, PresetChoosesTheActiveWaveThenAnother) {
    TUnitWave& low = ws.add(lowWave());
    TUnitWave& high = ws.add(highWave());
    TUnitWave& unnamed = ws.add(lowWave());
    ASSERT_TRUE(ws.registerName(low, "low"));
    ASSERT_TRUE(ws.registerName(high, "high"));
    const FormSpec& hor = MergeHorRecord::table();
    FormState state = showRecord(MergeHorRecord::table(), MergeHorRecord{}, &ws);
    presetMergeWaves(hor, state, ws, &high);
    EXPECT_EQ(state.fields[0].text, "high");
    EXPECT_EQ(state.fields[1].text, "low");
    // An unnamed active wave cannot be chosen: the named ones in their order.
    state = showRecord(MergeHorRecord::table(), MergeHorRecord{}, &ws);
    presetMergeWaves(hor, state, ws, &unnamed);
    EXPECT_EQ(state.fields[0].text, "low");
    EXPECT_EQ(state.fields[1].text, "high");
    // A choice made before is kept.
    chooseWave(hor, state, 0, "high", &ws);
    chooseWave(hor, state, 1, "low", &ws);
    presetMergeWaves(hor, state, ws, &low);
    EXPECT_EQ(state.fields[0].text, "high");
    EXPECT_EQ(state.fields[1].text, "low");
}

TEST(MergeSideTableDeathTest, AFormWithoutTwoWaveFieldsAsserts) {
    Workspace ws;
    EXPECT_DEATH(mergeSideTable(ws, VolumeRecord::table()),
                 "Assertion failed: two wave fields, unit Main");
}

}  // namespace
}  // namespace orv
