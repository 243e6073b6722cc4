#include "document/records.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "document/file_props_record.h"
#include "document/register_check.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

void expectValue(const ValueRecord& v, double value, std::uint8_t unit, std::uint8_t check) {
    EXPECT_DOUBLE_EQ(v.value, value);
    EXPECT_EQ(v.unit, unit);
    EXPECT_EQ(v.signCheck, check);
}

// The texts a freshly opened dialog shows, field by field.
template <class R>
std::vector<std::string> shownTexts() {
    R r;
    FormState s = showRecord(R::table(), r, nullptr);
    std::vector<std::string> out;
    for (std::size_t i = 0; i < s.fields.size(); ++i)
        out.push_back(shownValue(R::table(), s, int(i)));
    return out;
}

TEST(RecordDefaults, GeneratorsWithTheirDisplayUnits) {
    SilenceRecord silence;
    expectValue(silence.length, 0.1, kUnitMillisecond, kCheckNotNegative);
    EXPECT_EQ(shownTexts<SilenceRecord>(), (std::vector<std::string>{"100 ms"}));

    LineRecord line;
    expectValue(line.beginValue, 16383, kUnitNone, 0);
    expectValue(line.endValue, -16384, kUnitNone, 0);
    expectValue(line.length, 0.1, kUnitMillisecond, kCheckNotNegative);
    EXPECT_EQ(line.kind, LineRecord::kLinear);
    // 16383 / 32767 = 0.49998 and -16384 / 32767 = -0.50002 show rounded at four decimals.
    EXPECT_EQ(shownTexts<LineRecord>(),
              (std::vector<std::string>{"0.5", "-0.5", "100 ms", "Linear"}));

    NoiseRecord noise;
    expectValue(noise.volume, 16383, kUnitNone, 0);
    expectValue(noise.length, 0.5, kUnitMillisecond, kCheckNotNegative);

    SinusRecord sinus;
    expectValue(sinus.amplitude, 16383, kUnitNone, 0);
    expectValue(sinus.frequency, 0.001, kUnitKilohertz, kCheckPositive);
    expectValue(sinus.startPhase, 0, kUnitNone, 0);
    expectValue(sinus.length, 0.5, kUnitMillisecond, kCheckNotNegative);
    expectValue(sinus.count, 500, kUnitNone, kCheckPositive);
    EXPECT_EQ(sinus.kind, SinusRecord::kByLength);
    EXPECT_EQ(shownTexts<SinusRecord>(),
              (std::vector<std::string>{"0.5", "1 kHz", "0", "500 ms", "500", "Length"}));

    BlockTriangleRecord bt;
    expectValue(bt.height1, 16383, kUnitNone, 0);
    expectValue(bt.height2, -16383, kUnitNone, 0);
    expectValue(bt.frequency, 0.001, kUnitKilohertz, kCheckPositive);
    expectValue(bt.middle, 0.5, kUnitNone, 0);
    EXPECT_EQ(bt.middleEnvelope, "");
    EXPECT_EQ(bt.middleKind, BlockTriangleRecord::kMiddleConstant);
    expectValue(bt.time1, 0.005, kUnitMillisecond, kCheckNotNegative);
    expectValue(bt.time2, 0.005, kUnitMillisecond, kCheckNotNegative);
    EXPECT_EQ(bt.BloTriHorKind, BlockTriangleRecord::bloTriFreq);
    EXPECT_EQ(bt.lengthKind, kLengthNew);
    expectValue(bt.newLength, 1.0, kUnitSecond, kCheckPositive);
    EXPECT_EQ(bt.lengthCount, 10);
    EXPECT_EQ(bt.sameAs, "");
    expectValue(bt.startPosition, 0, kUnitNone, 0);

    MFreqRecord mfreq;
    expectValue(mfreq.length, 3.0, kUnitSecond, kCheckPositive);
    EXPECT_EQ(mfreq.use, MFreqRecord::kSinus);
    EXPECT_EQ(mfreq.waveForm, "");
    EXPECT_EQ(mfreq.frequencies.count(), 1);
}

TEST(RecordDefaults, Effects) {
    VolumeRecord volume;
    EXPECT_EQ(volume.kind, kConstant);
    EXPECT_EQ(volume.envelope, "");
    expectValue(volume.factor, 0.5, kUnitNone, 0);

    RotateRecord rotate;
    expectValue(rotate.factor, 0.1, kUnitNone, 0);
    expectValue(rotate.time, 0.1, kUnitSecond, kCheckNotNegative);
    EXPECT_EQ(rotate.kind, RotateRecord::kByFactor);
    EXPECT_EQ(rotate.shiftTo, RotateRecord::kLeft);
    EXPECT_EQ(shownTexts<RotateRecord>(),
              (std::vector<std::string>{"0.1", "0.1 s", "Factor", "Left"}));

    BlockRecord block;
    EXPECT_EQ(block.horizontal, BlockRecord::kCount);
    EXPECT_EQ(block.horizontalCount, 20);
    expectValue(block.time, 0.01, kUnitMillisecond, kCheckPositive);
    EXPECT_EQ(block.vertical, BlockRecord::kCount);
    EXPECT_EQ(block.verticalCount, 20);
    expectValue(block.height, 3277, kUnitNone, kCheckPositive);
    EXPECT_EQ(shownTexts<BlockRecord>(),
              (std::vector<std::string>{"Count", "20", "10 ms", "Count", "20", "0.1"}));

    RollInRecord rollIn;
    expectValue(rollIn.length, 1.0, kUnitSecond, kCheckPositive);
    EXPECT_EQ(rollIn.placement, RollInRecord::kStartAt);
    expectValue(rollIn.startAt, 0, kUnitSecond, kCheckNotNegative);
    expectValue(rollIn.endAt, 0, kUnitSecond, kCheckNotNegative);

    UpRecord up;
    expectValue(up.addValue, 16383, kUnitNone, 0);

    LeftRightRecord lr;
    expectValue(lr.leftToLeft, 1, kUnitNone, 0);
    expectValue(lr.leftToRight, 0, kUnitNone, 0);
    expectValue(lr.rightToLeft, 0, kUnitNone, 0);
    expectValue(lr.rightToRight, 1, kUnitNone, 0);

    BalanceRecord balance;
    EXPECT_EQ(balance.directionKind, kConstant);
    expectValue(balance.direction, 0, kUnitNone, 0);
    EXPECT_EQ(balance.volumeDifference, BalanceRecord::kNone);
    EXPECT_FALSE(balance.timeDifference);

    MixRecord mix;
    EXPECT_EQ(mix.place, MixRecord::kAlignBegin);

    DistortRecord distort;
    EXPECT_EQ(distort.envelope, "");
}

TEST(RecordDefaults, TimeScaleWithLengthOptions) {
    TempoPitchRecord tp;
    expectValue(tp.frequencyFactor, 2.0, kUnitNone, kCheckPositive);
    EXPECT_FALSE(tp.frequencyHasEnvelope);
    expectValue(tp.speedFactor, 1.0, kUnitNone, kCheckNotZero);
    EXPECT_FALSE(tp.speedHasEnvelope);
    EXPECT_EQ(tp.lengthKind, kLengthFactor);
    expectValue(tp.lengthFactor, 0.5, kUnitNone, kCheckPositive);
    expectValue(tp.newLength, 2.0, kUnitSecond, kCheckPositive);
    EXPECT_EQ(tp.lengthCount, 3);
    expectValue(tp.startPosition, 0, kUnitSecond, kCheckNotNegative);
    EXPECT_EQ(tp.quality, TempoPitchRecord::kLow);
    expectValue(tp.blockSize, 0.04, kUnitMillisecond, kCheckPositive);

    RollOutRecord ro;
    expectValue(ro.speedFactor, 2.0, kUnitNone, kCheckNotZero);
    EXPECT_EQ(ro.lengthKind, kLengthFactor);
    expectValue(ro.lengthFactor, 0.5, kUnitNone, kCheckPositive);
    expectValue(ro.newLength, 2.0, kUnitSecond, kCheckPositive);
    EXPECT_EQ(ro.lengthCount, 3);

    LengthRecord len;
    EXPECT_EQ(len.lengthKind, kLengthFactor);
    expectValue(len.lengthFactor, 0.5, kUnitNone, kCheckPositive);
    expectValue(len.newLength, 2.0, kUnitSecond, kCheckPositive);
    EXPECT_EQ(shownTexts<LengthRecord>(),
              (std::vector<std::string>{"Length Factor", "0.5", "2 s", ""}));
}

TEST(RecordDefaults, EchoesAndFilters) {
    ResNotchRecord rn;
    EXPECT_EQ(rn.frequencyKind, kConstant);
    expectValue(rn.frequency, 0.001, kUnitKilohertz, kCheckPositive);
    EXPECT_EQ(rn.widthKind, kConstant);
    expectValue(rn.width, 0.25, kUnitNone, kCheckPositive);

    PerEchoRecord pe;
    expectValue(pe.time, 0.01, kUnitMillisecond, kCheckNone);
    EXPECT_FALSE(pe.timeHasEnvelope);
    EXPECT_EQ(pe.volumeKind, kConstant);
    expectValue(pe.volume, 1.0, kUnitNone, 0);
    EXPECT_EQ(pe.count, 1);

    HighLowRecord hl;
    EXPECT_EQ(hl.frequencyKind, kConstant);
    expectValue(hl.frequency, 0.001, kUnitKilohertz, kCheckPositive);
    expectValue(hl.volume, 0.5, kUnitNone, 0);
    EXPECT_EQ(hl.count, 1);
    EXPECT_FALSE(hl.maximize);

    BlockFilterRecord bf;
    expectValue(bf.time, 0.01, kUnitMillisecond, kCheckPositive);
    EXPECT_FALSE(bf.hasEnvelope);

    RandomEchoRecord re;
    EXPECT_EQ(re.count, 20);
    EXPECT_EQ(re.seed, 0);
    expectValue(re.timeDifference, 1.0, kUnitMillisecond, kCheckNotNegative);
    expectValue(re.pitchFactor, 2.0, kUnitNone, kCheckPositive);
    expectValue(re.blockSize, 0.04, kUnitMillisecond, kCheckPositive);
    // Six properties, six dice: each starts on its own.
    EXPECT_EQ((std::vector<int>{re.timeDie, re.volumeDie, re.lengthDie, re.balanceDie,
                                re.pitchDie, re.tempoDie}),
              (std::vector<int>{0, 1, 2, 3, 4, 5}));
    EXPECT_FALSE(re.cyclable);
    EXPECT_EQ(shownTexts<RandomEchoRecord>()[5], "1000 ms");
}

TEST(RecordDefaults, FrequencyRecordAndItsGeneratorForm) {
    FrequencyRecord f;
    expectValue(f.startVolume, 0.5, kUnitNone, 0);
    expectValue(f.frequency, 0.001, kUnitKilohertz, kCheckPositive);
    expectValue(f.startAngle, 0, kUnitNone, 0);
    expectValue(f.volumeFactor, 0.1, kUnitNone, kCheckPositive);
    expectValue(f.volumeFactorTime, 1.0, kUnitSecond, kCheckPositive);
    EXPECT_FALSE(f.defVolume || f.defFrequency || f.defAngle || f.defVolFact || f.defVolFactTime);
    f.frequency.value = 0.0025;
    MFreqPartial p = f.partial();
    EXPECT_EQ(p.volume, 0.5);
    EXPECT_EQ(p.period, 0.0025);
    EXPECT_EQ(p.startAngle, 0.0);
    EXPECT_EQ(p.volumeFactor, 0.1);
    EXPECT_EQ(p.volumeFactorTime, 1.0);
}

TEST(RecordCopies, AreIndependentValues) {
    TempoPitchRecord a;
    a.sameAs = "drum";
    a.newLength.value = 7;
    TempoPitchRecord b = a;
    b.sameAs = "bass";
    b.newLength.value = 1;
    EXPECT_EQ(a.sameAs, "drum");
    EXPECT_EQ(a.newLength.value, 7);
}

TEST(LengthOptions, FactorFromEachOption) {
    // Current sound 4 s long.
    EXPECT_DOUBLE_EQ(lengthFactor(kLengthFactor, 0.5, 2.0, 3.0, 4.0), 0.5);
    EXPECT_DOUBLE_EQ(lengthFactor(kLengthNew, 0.5, 2.0, 3.0, 4.0), 0.5);
    EXPECT_DOUBLE_EQ(lengthFactor(kLengthNew, 0.5, 6.0, 3.0, 4.0), 1.5);
    EXPECT_DOUBLE_EQ(lengthFactor(kLengthSameAs, 0.5, 2.0, 3.0, 4.0), 0.75);
    // "Same Length as" the edited wave itself.
    EXPECT_DOUBLE_EQ(lengthFactor(kLengthSameAs, 0.5, 2.0, 4.0, 4.0), 1.0);
    EXPECT_EQ(lengthFactor(kLengthCount, 0.5, 2.0, 3.0, 4.0), 0.0);
    EXPECT_EQ(lengthFactor(9, 0.5, 2.0, 3.0, 4.0), 0.0);
    EXPECT_EQ(lengthFactor(kLengthNew, 0.5, 2.0, 3.0, 0.0), 0.0);

    RollOutRecord ro;
    ro.lengthKind = kLengthNew;
    ro.newLength.value = 3.0;
    EXPECT_DOUBLE_EQ(lengthFactorOf(ro, 0.0, 1.5), 2.0);
}

TEST(BlockTriangleGetters, UsedInTheirModes) {
    BlockTriangleRecord r;
    EXPECT_EQ(r.getMiddle(), 0.5);
    r.BloTriHorKind = BlockTriangleRecord::bloTriTime;
    r.time1.value = 0.002;
    EXPECT_EQ(r.getTime1(), 0.002);
    EXPECT_EQ(r.getTime2(), 0.005);
}

TEST(BlockTriangleGettersDeathTest, WrongModeAsserts) {
    BlockTriangleRecord r;
    r.middleKind = BlockTriangleRecord::kMiddleEnvelope;
    EXPECT_DEATH(r.getMiddle(), "Assertion failed: !HasMiddleEnvelope\\(\\), unit DBlockTriangle");
    BlockTriangleRecord f;  // frequency mode by default
    EXPECT_DEATH(f.getTime1(),
                 "Assertion failed: BloTriHorKind == bloTriTime, unit DBlockTriangle");
    EXPECT_DEATH(f.getTime2(),
                 "Assertion failed: BloTriHorKind == bloTriTime, unit DBlockTriangle");
}

TEST(WaveFileProperties, DefaultsAndConversion) {
    WaveFilePropsRecord r;
    WaveFileProps p = r.props();
    EXPECT_EQ(p.Freq, 22050);
    EXPECT_EQ(p.BytesPSample, 2);
    EXPECT_EQ(p.MonoStereo, 1);

    WaveFileProps in;
    in.Freq = 44100;
    in.MonoStereo = 2;
    in.BytesPSample = 1;
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

class Names : public WaveNameLookup {
public:
    explicit Names(std::vector<std::string> n) : names_(std::move(n)) {}
    bool waveExists(std::string_view name) const override {
        for (const std::string& n : names_)
            if (n == name) return true;
        return false;
    }

private:
    std::vector<std::string> names_;
};

TEST(RegisterCheck, RefusesANameAnotherWaveBears) {
    Names names({"drum", "bass"});
    auto e = checkRegisterName("bass", "drum", names);
    ASSERT_TRUE(e);
    EXPECT_EQ(e->caption, "Error");
    EXPECT_EQ(e->text(), "A wave with name \"bass\" already exists.");
    test::RecordingPlatformScope rec;
    e->show();
    ASSERT_EQ(rec.recorder.messages.size(), 1u);
    EXPECT_EQ(rec.recorder.messages[0].caption, "Error");
    EXPECT_EQ(rec.recorder.messages[0].text, "A wave with name \"bass\" already exists.");
    EXPECT_EQ(rec.recorder.messages[0].icon, MessageIcon::Information);
}

TEST(RegisterCheck, AcceptsNewOwnAndEmptyNames) {
    Names names({"drum", "bass"});
    EXPECT_FALSE(checkRegisterName("", "drum", names));       // unregisters
    EXPECT_FALSE(checkRegisterName("drum", "drum", names));   // its own name again
    EXPECT_FALSE(checkRegisterName("flute", "drum", names));  // free
    EXPECT_FALSE(checkRegisterName("Bass", "", names));       // names compare exactly
    EXPECT_EQ(nameInUseMessage("a b"), "A wave with name \"a b\" already exists.");

    RegisterRecord r("drum");
    EXPECT_FALSE(applyTypedFields(r, {{"Name", "snare"}}, {}));
    EXPECT_EQ(r.name, "snare");
}

}  // namespace
}  // namespace orv

namespace orv {
namespace {

// Declaration slips that the compiler cannot see: a caption used twice (the command line
// could not reach the second), an option default outside its choices, a group that is not
// an option or flag.
TEST(RecordTables, CaptionsUniqueDefaultsInRangeGroupsAreOptions) {
    std::vector<const FormSpec*> specs = operationFormSpecs();
    EXPECT_EQ(specs.size(), 24u);
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
            if (d.group != kNoField) {
                const FieldDef& g = s->fields[d.group];
                EXPECT_TRUE(g.kind == FieldKind::Option || g.kind == FieldKind::Flag);
                if (g.kind == FieldKind::Option) {
                    EXPECT_LT(d.groupValue, g.choices.size());
                }
            }
        }
    }
}

TEST(MultiFrequency, FrequenciesFromTypedEntries) {
    MFreqRecord m;
    ASSERT_FALSE(setFrequencies(m, {{{"Frequency", "440 Hz"}}, {{"Start Volume", "25 %"}}}, {}));
    std::vector<MFreqPartial> p = m.partials();
    ASSERT_EQ(p.size(), 2u);
    EXPECT_DOUBLE_EQ(p[0].period, 1.0 / 440);
    EXPECT_EQ(p[0].volume, 0.5);
    EXPECT_EQ(p[1].volume, 0.25);
    EXPECT_EQ(p[1].period, 0.001);

    auto e = setFrequencies(m, {{{"Frequency", "100 Hz"}}, {{"Volume Factor at Time", "0 s"}}}, {});
    ASSERT_TRUE(e);
    EXPECT_EQ(e->text(), "In Volume Factor at Time: Value must be positive and more than 0.");
    EXPECT_EQ(m.partials().size(), 2u);  // unchanged
    EXPECT_DOUBLE_EQ(m.partials()[0].period, 1.0 / 440);
    EXPECT_TRUE(setFrequencies(m, {}, {}));
}

}  // namespace
}  // namespace orv
