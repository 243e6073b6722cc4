#include "document/records.h"

#include <gtest/gtest.h>

#include "document/actions.h"

#include <string>
#include <vector>

#include "document/file_props_record.h"
#include "document/register_check.h"
#include "support/document_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;

// The texts a freshly opened dialog shows, field by field, joined by " | ".
template <class R>
std::string shownTexts() {
    R r;
    FormState s = showRecord(R::table(), r, nullptr);
    std::string out;
    for (std::size_t i = 0; i < s.fields.size(); ++i)
        out += (i ? " | " : "") + shownValue(R::table(), s, int(i));
    return out;
}

// Every record's defaults as its dialog shows them: value and display unit together.
// 16383 / 32767 = 0.49998 and -16384 / 32767 = -0.50002 show rounded at four decimals.
TEST(RecordDefaults, AsTheDialogsShowThem) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {shownTexts<LineRecord>(), "0.5 | -0.5 | 100 ms | Linear"},
        {shownTexts<BlockTriangleRecord>(),
         "0.5 | -0.5 | 1 kHz | 0.5 |  | Middle | 5 ms | 5 ms | Frequency | Length New | 1 | 1 s |  | 10 | 0"},
        {shownTexts<VolumeRecord>(), "Constant |  | 0.5"},
        {shownTexts<BlockRecord>(), "Count | 20 | 10 ms | Count | 20 | 0.1"},
        {shownTexts<BalanceRecord>(), "Constant | 0 |  | None | off"},
        {shownTexts<TempoPitchRecord>(),
         "2 | off |  | 1 | off |  | Length Factor | 0.5 | 2 s |  | 3 | 0 s | Low | 40 ms"},
        {shownTexts<ResNotchRecord>(), "Constant | 1 kHz |  | Constant | 0.25 | "},
        {shownTexts<PerEchoRecord>(), "10 ms | off |  | Constant | 1 |  | 1"},
        {shownTexts<HighLowRecord>(), "Constant |  | 1 kHz | 0.5 | 1 | off"},
        {shownTexts<RandomEchoRecord>(),
         "20 | 0 | Linear | Die 0 |  | 1000 ms | No Change | Die 1 |  | No Change | Die 2 |  | No Change | Die 3 |  | None | off | No Change | Die 4 |  | 2 | No Change | Die 5 |  | off | Low | 40 ms"},
        {shownTexts<WaveFilePropsRecord>(), "22 kHz | 16 Bits | Mono"},
    };
    for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i].first, rows[i].second) << i;
}

TEST(RecordDefaults, SignChecksAndTheFrequencyPartial) {  // the dice: in the table above
    EXPECT_EQ(SilenceRecord().length.signCheck, kCheckNotNegative);
    EXPECT_EQ(SinusRecord().frequency.signCheck, kCheckPositive);
    EXPECT_EQ(TempoPitchRecord().speedFactor.signCheck, kCheckNotZero);
    FrequencyRecord f;
    f.frequency.value = 0.0025;
    const MFreqPartial p = f.partial();
    EXPECT_EQ((std::vector<double>{p.volume, p.period, p.startAngle, p.volumeFactor,
                                   p.volumeFactorTime}),
              (std::vector<double>{0.5, 0.0025, 0.0, 0.1, 1.0}));
}

TEST(LengthOptions, FactorFromEachOption) {
    // kind, factor, new length, same-as length, current length (4 s) -> factor
    const struct { std::uint8_t kind; double newLength, sameAs, current, want; } rows[] = {
        {kLengthFactor, 2.0, 3.0, 4.0, 0.5}, {kLengthNew, 6.0, 3.0, 4.0, 1.5},
        {kLengthSameAs, 2.0, 3.0, 4.0, 0.75}, {kLengthCount, 2.0, 3.0, 4.0, 0.0},
        {9, 2.0, 3.0, 4.0, 0.0}, {kLengthNew, 2.0, 3.0, 0.0, 0.0},
    };
    for (const auto& r : rows)
        EXPECT_DOUBLE_EQ(lengthFactor(r.kind, 0.5, r.newLength, r.sameAs, r.current), r.want)
            << int(r.kind) << " " << r.newLength << " " << r.sameAs << " " << r.current;
}

TEST(BlockTriangleGettersDeathTest, WrongModeAsserts) {
    BlockTriangleRecord f;  // frequency mode by default
    EXPECT_DEATH(f.getTime1(), "Assertion failed: BloTriHorKind == bloTriTime, unit DBlockTriangle");
    f.BloTriHorKind = BlockTriangleRecord::bloTriTime;
    f.time1.value = 0.002;
    EXPECT_EQ(f.getTime1(), 0.002);
    EXPECT_EQ(f.getTime2(), 0.005);
}

TEST(WaveFileProperties, DefaultsAndConversion) {
    WaveFileProps in{44100, 2, 1};
    WaveFilePropsRecord from(in);
    EXPECT_EQ(from.bits, WaveFilePropsRecord::k8Bits);
    EXPECT_EQ(from.channels, WaveFilePropsRecord::kStereo);
    FormState s = showRecord(WaveFilePropsRecord::table(), from, nullptr);
    EXPECT_EQ(shownValue(WaveFilePropsRecord::table(), s, 0), "44 kHz");
    // A file at a rate the list does not hold keeps its rate unless another is chosen.
    in.Freq = 48000;
    WaveFilePropsRecord odd(in);
    EXPECT_FALSE(applyTypedFields(odd, {{"Mono/Stereo", "Mono"}}, {}));
    EXPECT_EQ(odd.props().Freq, 48000);
    EXPECT_EQ(odd.props().MonoStereo, 1);
    EXPECT_FALSE(applyTypedFields(odd, {{"sample frequency", "5 kHz"}, {"Wave Values", "16 bits"}}, {}));
    EXPECT_EQ(odd.props().Freq, 5512);
    EXPECT_EQ(odd.props().BytesPSample, 2);
}

TEST(RegisterCheck, RefusesOnlyANameAnotherWaveBears) {
    // Messages, own name and unregistering go through the workspace's test.
    Names names({"drum", "bass"});
    RecordingPlatformScope rec;
    auto e = checkRegisterName("bass", "drum", names);
    ASSERT_TRUE(e);
    e->show();
    ASSERT_EQ(rec.recorder.messages.size(), 1u);
    EXPECT_EQ(rec.recorder.messages[0].icon, MessageIcon::Information);
    EXPECT_FALSE(checkRegisterName("flute", "drum", names));  // free
    EXPECT_FALSE(checkRegisterName("Bass", "", names));       // names compare exactly
}

// Declaration slips the compiler cannot see: a caption used twice (the command line could
// not reach the second), an option default outside its choices, a group that is not an
// option or flag.
TEST(RecordTables, CaptionsUniqueDefaultsInRangeGroupsAreOptions) {
    std::vector<const FormSpec*> specs = operationFormSpecs();
    // 23 operation records, the file properties, split and the two merges, one
    // multi-frequency entry.
    EXPECT_EQ(specs.size(), 28u);
    for (const FormSpec* s : specs) {
        SCOPED_TRACE(std::string(s->caption));
        EXPECT_GT(s->helpContext, 0);
        for (std::size_t i = 0; i < s->fields.size(); ++i) {
            const FieldDef& d = s->fields[i];
            SCOPED_TRACE(std::string(d.caption));
            EXPECT_EQ(s->find(d.caption), int(i));
            if (d.kind == FieldKind::Option) {
                EXPECT_LT(d.defValue, double(d.choices.size()));
            }
            if (d.group == kNoField) continue;
            const FieldDef& g = s->fields[d.group];
            EXPECT_TRUE(g.kind == FieldKind::Option || g.kind == FieldKind::Flag);
            if (g.kind == FieldKind::Option) {
                EXPECT_LT(d.groupValue, g.choices.size());
            }
        }
    }
}

TEST(MultiFrequency, FrequenciesFromTypedEntriesOrNoneOnAFailure) {
    MFreqRecord m;
    ASSERT_FALSE(setFrequencies(m, {{{"Frequency", "440 Hz"}}, {{"Start Volume", "25 %"}}}, {}));
    std::vector<MFreqPartial> p = m.partials();
    ASSERT_EQ(p.size(), 2u);
    EXPECT_DOUBLE_EQ(p[0].period, 1.0 / 440);
    EXPECT_EQ(p[1].volume, 0.25);
    auto e = setFrequencies(m, {{{"Frequency", "100 Hz"}}, {{"Volume Factor at Time", "0 s"}}}, {});
    ASSERT_TRUE(e);
    EXPECT_EQ(e->text(), "In Volume Factor at Time: Value must be positive and more than 0.");
    EXPECT_EQ(m.partials().size(), 2u);  // unchanged
    EXPECT_DOUBLE_EQ(m.partials()[0].period, 1.0 / 440);
    EXPECT_TRUE(setFrequencies(m, {}, {}));
}

}  // namespace
}  // namespace orv
