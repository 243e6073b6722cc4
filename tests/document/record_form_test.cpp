#include "document/record_form.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "document/records.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

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

std::string errorText(const std::optional<FormError>& e) { return e ? e->text() : "(accepted)"; }

TEST(FormReading, OnlyTheFirstBadFieldIsReportedAndTheRecordStays) {
    LineRecord line;
    auto e = applyTypedFields(line, {{"Length", "5"}, {"Begin Value", "2"}}, {});
    // Begin Value comes first in the record, whatever order the fields were typed in.
    EXPECT_EQ(errorText(e), "In Begin Value: Wave Value is too high. (maximum: 1)");
    EXPECT_EQ(e->caption, "Input Error");
    EXPECT_EQ(line.beginValue.value, 16383);
    e = applyTypedFields(line, {{"Length", "5"}}, {});
    EXPECT_EQ(errorText(e), "In Length: Wrong unit used, use: 's', 'ms', 'Hz', 'kHz'.");
    EXPECT_DOUBLE_EQ(line.length.value, 0.1);
}

TEST(FormReading, ErrorShowsAsAnInputErrorBox) {
    test::RecordingPlatformScope rec;
    SilenceRecord s;
    auto e = applyTypedFields(s, {{"Length", ""}}, {});
    ASSERT_TRUE(e);
    e->show();
    ASSERT_EQ(rec.recorder.messages.size(), 1u);
    EXPECT_EQ(rec.recorder.messages[0].caption, "Input Error");
    EXPECT_EQ(rec.recorder.messages[0].text, "In Length: Input has no value.");
    EXPECT_EQ(rec.recorder.messages[0].icon, MessageIcon::Information);
}

TEST(FormReading, ValuesKeepTheUnitTheUserTyped) {
    SilenceRecord s;
    ASSERT_FALSE(applyTypedFields(s, {{"Length", "2 s"}}, {}));
    EXPECT_EQ(s.length.value, 2.0);
    EXPECT_EQ(s.length.unit, kUnitSecond);
    FormState st = showRecord(SilenceRecord::table(), s, nullptr);
    EXPECT_EQ(st.fields[0].text, "2 s");

    VolumeRecord v;
    ASSERT_FALSE(applyTypedFields(v, {{"Constant", "-6 dB"}}, {}));
    EXPECT_DOUBLE_EQ(v.factor.value, std::pow(10.0, -0.3));
    EXPECT_EQ(v.factor.unit, kUnitDecibel);
    EXPECT_EQ(showRecord(VolumeRecord::table(), v, nullptr).fields[2].text, "-6 dB");

    LineRecord line;
    ASSERT_FALSE(applyTypedFields(line, {{"Begin Value", "50 %"}, {"End Value", "-32768 $"}}, {}));
    EXPECT_EQ(line.beginValue.value, 16383);  // 50 x 327.67 truncated
    EXPECT_EQ(line.beginValue.unit, kUnitPercent);
    EXPECT_EQ(line.endValue.value, -32768);
    FormState ls = showRecord(LineRecord::table(), line, nullptr);
    EXPECT_EQ(ls.fields[0].text, "50 %");
    EXPECT_EQ(ls.fields[1].text, "-32768 $");
}

TEST(FormOptions, TheOptionFollowsTheFieldLastTypedInto) {
    LengthRecord r;
    ASSERT_EQ(r.lengthKind, kLengthFactor);
    ASSERT_FALSE(applyTypedFields(r, {{"New Length", "3 s"}}, {}));
    EXPECT_EQ(r.lengthKind, kLengthNew);
    EXPECT_EQ(r.newLength.value, 3.0);
    EXPECT_DOUBLE_EQ(lengthFactorOf(r, 0.0, 1.5), 2.0);

    // Typing into "Length Factor" after "New Length" switches back; the new length is then
    // not read, so its typed text is neither checked nor stored.
    LengthRecord r2;
    ASSERT_FALSE(applyTypedFields(r2, {{"New Length", "nonsense"}, {"Length Factor", "25 %"}}, {}));
    EXPECT_EQ(r2.lengthKind, kLengthFactor);
    EXPECT_EQ(r2.lengthFactor.value, 0.25);
    EXPECT_EQ(r2.newLength.value, 2.0);

    // An explicit choice given last wins over the field typed before it.
    LengthRecord r3;
    ASSERT_FALSE(applyTypedFields(r3, {{"New Length", "3 s"}, {"Length", "Length Factor"}}, {}));
    EXPECT_EQ(r3.lengthKind, kLengthFactor);
    EXPECT_EQ(r3.newLength.value, 2.0);
}

TEST(FormOptions, ADialogStateCorrectedAfterARefusalIsAccepted) {
    const auto& t = RotateRecord::table();
    RotateRecord r;
    FormContext ctx;
    ctx.soundSeconds = 2.0;
    FormState st = showRecord(t, r, nullptr);
    typeInto(t, st, t.find("Time"), "3 s");
    EXPECT_EQ(st.fields[t.find("Rotate by")].index, RotateRecord::kByTime);
    EXPECT_EQ(errorText(acceptRecord(t, st, r, ctx)),
              "In Time: Time may not be longer than the time of the sound.");
    EXPECT_EQ(r.kind, RotateRecord::kByFactor);  // nothing taken over yet
    typeInto(t, st, t.find("Time"), "2 s");      // exactly the sound's time is allowed
    EXPECT_FALSE(acceptRecord(t, st, r, ctx));
    EXPECT_EQ(r.kind, RotateRecord::kByTime);
    EXPECT_EQ(r.time.value, 2.0);
    // With the factor chosen, the time is not looked at.
    RotateRecord f;
    EXPECT_FALSE(applyTypedFields(f, {{"Time", "9 s"}, {"Rotate by", "Factor"}}, ctx));
}

TEST(FormChecks, ExponentialLineRefusesZeroAtEitherEnd) {
    LineRecord a;
    EXPECT_EQ(errorText(applyTypedFields(a, {{"Kind", "Exponential"}, {"Begin Value", "0"}}, {})),
              "In Begin Value: Exponential Line may not contain value 0.");
    // 0.00001 x 32767 truncates to 0 as well.
    EXPECT_EQ(errorText(applyTypedFields(a, {{"Kind", "Exponential"}, {"End Value", "0.00001"}}, {})),
              "In End Value: Exponential Line may not contain value 0.");
    EXPECT_EQ(a.kind, LineRecord::kLinear);
    EXPECT_FALSE(applyTypedFields(a, {{"Begin Value", "0"}}, {}));  // linear lines may
    EXPECT_FALSE(applyTypedFields(a, {{"Kind", "Exponential"}, {"Begin Value", "1 $"}}, {}));
}

TEST(FormChecks, SignChecksNameTheField) {
    PerEchoRecord pe;
    EXPECT_EQ(errorText(applyTypedFields(pe, {{"Echo Count", "0"}}, {})),
              "In Count: Value must be positive and more than 0.");
    // The echo time takes either sign.
    EXPECT_FALSE(applyTypedFields(pe, {{"Echo Time", "-20 ms"}}, {}));
    EXPECT_DOUBLE_EQ(pe.time.value, -0.02);

    ResNotchRecord rn;
    EXPECT_EQ(errorText(applyTypedFields(rn, {{"Width Constant", "0"}}, {})),
              "In Width Constant: Value must be positive and more than 0.");
    EXPECT_EQ(errorText(applyTypedFields(rn, {{"Frequency Constant", "0 Hz"}}, {})),
              "In Frequency Constant: You cannot use 0 with 'Hz'.");
}

TEST(FormWaves, AnEnvelopeWithoutAWaveIsRefused) {
    Names names({"drum", "bass"});
    FormContext ctx;
    ctx.waves = &names;

    VolumeRecord v;
    EXPECT_EQ(errorText(applyTypedFields(v, {{"Volume Factor", "Envelope"}}, ctx)),
              "In Volume Factor: You have to select a Wave");
    // A name that is not registered cannot be chosen; the envelope is still asked for.
    EXPECT_EQ(errorText(applyTypedFields(v, {{"Envelope", "flute"}}, ctx)),
              "In Volume Factor: You have to select a Wave");
    ASSERT_FALSE(applyTypedFields(v, {{"Envelope", "drum"}}, ctx));
    EXPECT_EQ(v.kind, kEnvelope);
    EXPECT_EQ(v.envelope, "drum");

    // The names the design gives for the envelope halves, leading blank included.
    PerEchoRecord pe;
    EXPECT_EQ(errorText(applyTypedFields(pe, {{"Echo Volume", "Envelope"}}, ctx)),
              "In  Echo Volume Envelope: You have to select a Wave");
    EXPECT_EQ(errorText(applyTypedFields(pe, {{"Echo Time Envelope", "on"}}, ctx)),
              "In  Echo Time Envelope: You have to select a Wave");
    ResNotchRecord rn;
    EXPECT_EQ(errorText(applyTypedFields(rn, {{"Frequency Width", "Envelope"}}, ctx)),
              "In Frequency Width Envelope: You have to select a Wave");
    DistortRecord d;
    EXPECT_EQ(errorText(applyTypedFields(d, {}, ctx)),
              "In Distort Envelope: You have to select a Wave");
    LengthRecord len;
    EXPECT_EQ(errorText(applyTypedFields(len, {{"Length", "Same Length as"}}, ctx)),
              "In Same Length as: You have to select a Wave");

    // A flag-driven envelope: choosing the wave checks its "Envelope" box.
    BlockFilterRecord bf;
    ASSERT_FALSE(applyTypedFields(bf, {{"Block Time Envelope Wave", "bass"}}, ctx));
    EXPECT_TRUE(bf.hasEnvelope);
    EXPECT_EQ(bf.envelope, "bass");
}

TEST(FormWaves, AStoredWaveThatIsNoLongerRegisteredIsNotShown) {
    Names names({"drum"});
    VolumeRecord v;
    v.kind = kEnvelope;
    v.envelope = "gone";
    FormState st = showRecord(VolumeRecord::table(), v, &names);
    EXPECT_EQ(st.fields[1].text, "");
    FormContext ctx;
    ctx.waves = &names;
    EXPECT_EQ(errorText(acceptRecord(VolumeRecord::table(), st, v, ctx)),
              "In Volume Factor: You have to select a Wave");
}

TEST(FormPositions, BeforeTheEndAndNotBeforeThePrevious) {
    FormContext ctx;
    ctx.soundSeconds = 2.0;
    TempoPitchRecord tp;
    EXPECT_EQ(errorText(applyTypedFields(tp, {{"Start Position", "2 s"}}, ctx)),
              "In Start Position: Position must be before the end of the wave");
    ASSERT_FALSE(applyTypedFields(tp, {{"Start Position", "1500 ms"}}, ctx));
    EXPECT_EQ(tp.startPosition.value, 1.5);
    EXPECT_EQ(tp.startPosition.unit, kUnitMillisecond);

    RollInRecord ri;
    EXPECT_EQ(errorText(applyTypedFields(ri, {{"End at", "3 s"}}, ctx)),
              "In End at: Position must be before the end of the wave");
    EXPECT_EQ(ri.placement, RollInRecord::kStartAt);
}

struct TwoPositions {
    TwoPositions() { table().applyDefaults(*this); }
    static const RecordTable<TwoPositions>& table() {
        using R = TwoPositions;
        static const RecordTable<R> t("Positions", 0, {
            positionField("First", &R::first),
            positionField("Second", &R::second).after("First"),
        });
        return t;
    }
    ValueRecord first, second;
};

TEST(FormPositions, APositionMayNotComeBeforeThePreviousEntry) {
    FormContext ctx;
    ctx.soundSeconds = 10.0;
    TwoPositions p;
    EXPECT_EQ(errorText(applyTypedFields(p, {{"First", "3 s"}, {"Second", "2 s"}}, ctx)),
              "In Second: Position must be not before the start of the previous wave");
    ASSERT_FALSE(applyTypedFields(p, {{"First", "3 s"}, {"Second", "3 s"}}, ctx));
    EXPECT_EQ(p.second.value, 3.0);
}

TEST(FormCommandLine, CaptionsIgnoreCaseAmpersandColonAndBlanks) {
    RandomEchoRecord re;
    ASSERT_FALSE(applyTypedFields(re, {{"random seed", "77"}, {"PITCH SOURCE", "die 0"},
                                       {"Cyclable", "yes"}}, {}));
    EXPECT_EQ(re.seed, 77);
    EXPECT_EQ(re.pitchDie, 0);
    EXPECT_TRUE(re.cyclable);

    BlockRecord b;
    ASSERT_FALSE(applyTypedFields(b, {{"horizontal count", "7"}, {"Height:", "50 %"}}, {}));
    EXPECT_EQ(b.horizontal, BlockRecord::kCount);
    EXPECT_EQ(b.horizontalCount, 7);
    EXPECT_EQ(b.vertical, BlockRecord::kTimeOrHeight);
    EXPECT_EQ(b.height.value, 16383);
}

TEST(FormCommandLine, UsageMistakes) {
    VolumeRecord v;
    auto e = applyTypedFields(v, {{"Colour", "red"}}, {});
    ASSERT_TRUE(e);
    EXPECT_EQ(e->caption, "Usage Error");
    EXPECT_EQ(e->text(), "There is no field \"Colour\" in \"Change Volume\".");
    EXPECT_EQ(errorText(applyTypedFields(v, {{"Volume Factor", "Loud"}}, {})),
              "In Volume Factor: Choose one of: Constant, Envelope.");
    HighLowRecord hl;
    EXPECT_EQ(errorText(applyTypedFields(hl, {{"Maximize Volume", "maybe"}}, {})),
              "In Maximize Volume: Use on or off.");
    ASSERT_FALSE(applyTypedFields(hl, {{"Maximize Volume", "on"}}, {}));
    EXPECT_TRUE(hl.maximize);
    ASSERT_FALSE(applyTypedFields(hl, {{"Maximize Volume", "OFF"}}, {}));
    EXPECT_FALSE(hl.maximize);
}

TEST(FormPresets, AnExampleWritesTheFourFactors) {
    LeftRightRecord lr;
    ASSERT_FALSE(applyTypedFields(lr, {{"Example", "Mono at Left, Surround at Right"}}, {}));
    EXPECT_EQ(lr.leftToLeft.value, 0.4);
    EXPECT_EQ(lr.leftToRight.value, -0.8);
    EXPECT_EQ(lr.rightToLeft.value, 0.4);
    EXPECT_EQ(lr.rightToRight.value, 0.8);
    // A field typed after the example overrides its value.
    ASSERT_FALSE(applyTypedFields(lr, {{"Example", "Surround"}, {"from Left to Left", "1"}}, {}));
    EXPECT_EQ(lr.leftToLeft.value, 1.0);
    EXPECT_EQ(lr.leftToRight.value, -0.5);
    EXPECT_EQ(lr.rightToLeft.value, -0.5);
    EXPECT_EQ(lr.rightToRight.value, 0.5);
}

TEST(FormDefaults, ACheckedDefaultBoxWinsOverTheTypedValue) {
    FrequencyRecord f;
    ASSERT_FALSE(applyTypedFields(f, {{"Start Volume", "0.3"}, {"Start Volume Default", "on"},
                                      {"Volume Factor", "0.2"}}, {}));
    EXPECT_EQ(f.startVolume.value, 0.5);
    EXPECT_TRUE(f.defVolume);
    EXPECT_EQ(f.volumeFactor.value, 0.2);
    // Even an unreadable text is not looked at while the box is checked.
    ASSERT_FALSE(applyTypedFields(f, {{"Frequency", "junk"}, {"Frequency Default", "on"}}, {}));
    EXPECT_EQ(f.frequency.value, 0.001);
}

TEST(FormListing, HelpShowsKindsChoicesAndCurrentValues) {
    Names names({"drum"});
    VolumeRecord v;
    v.factor = ValueRecord{kUnitPercent, 0, 0.75};
    RecordForm<VolumeRecord> form(v);
    EXPECT_EQ(describeForm(form, &names),
              "Volume Factor (option: Constant|Envelope) = Constant\n"
              "Envelope (wave name) =  (unused)\n"
              "Constant (volume factor) = 75 %\n");
    v.kind = kEnvelope;
    v.envelope = "drum";
    std::vector<FieldListing> l = describeFields(form, &names);
    ASSERT_EQ(l.size(), 3u);
    EXPECT_EQ(l[1].value, "drum");
    EXPECT_TRUE(l[1].counts);
    EXPECT_FALSE(l[2].counts);
    EXPECT_EQ(form.spec().caption, "Change Volume");
    EXPECT_EQ(form.spec().helpContext, 9);
}

}  // namespace
}  // namespace orv

namespace orv {
namespace {

TEST(FormRoundTrip, AnglesComeBackInDegrees) {
    BalanceRecord b;
    ASSERT_FALSE(applyTypedFields(b, {{"Direction Constant", "45'"}}, {}));
    EXPECT_DOUBLE_EQ(b.direction.value, 0.5);
    EXPECT_EQ(showRecord(BalanceRecord::table(), b, nullptr).fields[1].text, "45 '");

    RotateRecord r;
    ASSERT_FALSE(applyTypedFields(r, {{"Factor", "-90'"}}, {}));
    EXPECT_DOUBLE_EQ(r.factor.value, 0.75);
    EXPECT_EQ(showRecord(RotateRecord::table(), r, nullptr).fields[0].text, "-90 '");
}

// OK pressed on an untouched dialog reads back what it showed. Four decimals of a wave value
// are not always enough: -16384 shows as -0.5, which reads as -16383.
TEST(FormRoundTrip, AnUntouchedDialogKeepsItsValues) {
    FormContext ctx;
    ctx.soundSeconds = 10.0;
    LineRecord line;
    FormState st = showRecord(LineRecord::table(), line, nullptr);
    ASSERT_FALSE(acceptRecord(LineRecord::table(), st, line, ctx));
    EXPECT_EQ(line.beginValue.value, 16383);
    EXPECT_EQ(line.endValue.value, -16383);
    EXPECT_DOUBLE_EQ(line.length.value, 0.1);
    EXPECT_EQ(line.length.unit, kUnitMillisecond);

    TempoPitchRecord tp;
    st = showRecord(TempoPitchRecord::table(), tp, nullptr);
    ASSERT_FALSE(acceptRecord(TempoPitchRecord::table(), st, tp, ctx));
    EXPECT_DOUBLE_EQ(tp.blockSize.value, 0.04);
    EXPECT_EQ(tp.blockSize.unit, kUnitMillisecond);
    EXPECT_DOUBLE_EQ(tp.frequencyFactor.value, 2.0);

    SinusRecord s;
    st = showRecord(SinusRecord::table(), s, nullptr);
    ASSERT_FALSE(acceptRecord(SinusRecord::table(), st, s, ctx));
    EXPECT_DOUBLE_EQ(s.frequency.value, 0.001);
    EXPECT_EQ(s.frequency.unit, kUnitKilohertz);
}

TEST(FormChecks, HighLowVolumeFactorMustLieBetweenZeroAndOne) {
    // The filters take a root of this factor: 1 or more, or 0 or less, must not reach them.
    FormContext ctx;
    const struct {
        const char* typed;
        const char* error;  // nullptr: accepted
    } rows[] = {
        {"1", "In Volume Factor: Value must be less than 1."},
        {"100 %", "In Volume Factor: Value must be less than 1."},
        {"0", "In Volume Factor: Value must be positive and more than 0."},
        {"-0.5", "In Volume Factor: Value must be positive and more than 0."},
        {"-6 dB", nullptr},
        {"99 %", nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.typed);
        HighLowRecord r;
        const auto err = applyTypedFields(r, {{"Volume Factor", row.typed}}, ctx);
        if (row.error) {
            EXPECT_EQ(errorText(err), row.error);
            EXPECT_EQ(r.volume.value, 0.5);  // unchanged
        } else {
            EXPECT_FALSE(err);
        }
    }
}

}  // namespace
}  // namespace orv
