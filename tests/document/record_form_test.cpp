#include "document/record_form.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "document/records.h"
#include "support/document_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;

std::string errorText(const std::optional<FormError>& e) {
    return e ? e->caption + " / " + e->text() : "(accepted)";
}

// Two positions, the second not before the first.
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

// Every check a dialog makes, on a 2 s sound with the waves "drum" and "bass" registered.
TEST(FormChecks, MessagesWordForWord) {
    Names names({"drum", "bass"});
    FormContext ctx;
    ctx.soundSeconds = 2.0;
    ctx.waves = &names;
    auto check = [&](auto record, TypedFields fields) {
        return errorText(applyTypedFields(record, fields, ctx));
    };
    const std::string sel = "You have to select a Wave";
    const std::string positive = "Value must be positive and more than 0.";
    const std::vector<std::pair<std::string, std::string>> rows = {
        // Begin Value comes first in the record, whatever order the fields were typed in.
        {check(LineRecord{}, {{"Length", "5"}, {"Begin Value", "2"}}),
         "Input Error / In Begin Value: Wave Value is too high. (maximum: 1)"},
        {check(LineRecord{}, {{"Length", "5"}}),
         "Input Error / In Length: Wrong unit used, use: 's', 'ms', 'Hz', 'kHz'."},
        {check(RotateRecord{}, {{"Time", "3 s"}}),
         "Input Error / In Time: Time may not be longer than the time of the sound."},
        {check(RotateRecord{}, {{"Time", "2 s"}}), "(accepted)"},  // exactly the sound's time
        {check(RotateRecord{}, {{"Time", "9 s"}, {"Rotate by", "Factor"}}), "(accepted)"},
        {check(LineRecord{}, {{"Kind", "Exponential"}, {"Begin Value", "0"}}),
         "Input Error / In Begin Value: Exponential Line may not contain value 0."},
        // 0.00001 x 32767 truncates to 0 as well.
        {check(LineRecord{}, {{"Kind", "Exponential"}, {"End Value", "0.00001"}}),
         "Input Error / In End Value: Exponential Line may not contain value 0."},
        {check(LineRecord{}, {{"Kind", "Exponential"}, {"Begin Value", "1 $"}}),
         "Input Error / In End Value: Exponential Line may not contain value 0."},  // to -16384
        {check(LineRecord{}, {{"Kind", "Exponential"}, {"Begin Value", "-1 $"}}), "(accepted)"},
        {check(TempoPitchRecord{}, {{"Speed Factor", "-1"}, {"Frequency Envelope", "on"},
                                    {"Frequency Envelope Wave", "drum"}}),
         "Input Error / In Factor: Value must be positive when the pitch follows an envelope."},
        {check(LineRecord{}, {{"Begin Value", "0"}}), "(accepted)"},
        {check(PerEchoRecord{}, {{"Echo Count", "0"}}), "Input Error / In Count: " + positive},
        {check(PerEchoRecord{}, {{"Echo Time", "-20 ms"}}), "(accepted)"},
        {check(ResNotchRecord{}, {{"Frequency Constant", "0 Hz"}}),
         "Input Error / In Frequency Constant: You cannot use 0 with 'Hz'."},
        {check(VolumeRecord{}, {{"Volume Factor", "Envelope"}}),
         "Input Error / In Volume Factor: " + sel},
        // A name that is not registered cannot be chosen.
        {check(VolumeRecord{}, {{"Envelope", "flute"}}), "Input Error / In Volume Factor: " + sel},
        {check(VolumeRecord{}, {{"Envelope", "drum"}}), "(accepted)"},
        // The envelope halves' names, leading blank included.
        {check(PerEchoRecord{}, {{"Echo Volume", "Envelope"}}),
         "Input Error / In  Echo Volume Envelope: " + sel},
        {check(LengthRecord{}, {{"Length", "Same Length as"}}),
         "Input Error / In Same Length as: " + sel},
        {check(TempoPitchRecord{}, {{"Start Position", "2 s"}}),
         "Input Error / In Start Position: Position must be before the end of the wave"},
        {check(TwoPositions{}, {{"First", "1 s"}, {"Second", "0.5 s"}}),
         "Input Error / In Second: Position must be not before the start of the previous wave"},
        {check(TwoPositions{}, {{"First", "1 s"}, {"Second", "1 s"}}), "(accepted)"},
        {check(VolumeRecord{}, {{"Colour", "red"}}),
         "Usage Error / There is no field \"Colour\" in \"Change Volume\"."},
        // A word is a choice mistyped; a value with a digit goes to the one typed field.
        {check(VolumeRecord{}, {{"Volume Factor", "Loud"}}),
         "Usage Error / In Volume Factor: Choose one of: Constant, Envelope."},
        {check(VolumeRecord{}, {{"Volume Factor", "-6 dB"}}), "(accepted)"},
        {check(VolumeRecord{}, {{"Volume Factor", "6 apples"}}),
         "Input Error / In Volume Factor: This unit does not exist, use: '%', 'dB' or no unit."},
        // Two typed fields behind the option: no guessing which one was meant.
        {check(RotateRecord{}, {{"Rotate by", "3"}}),
         "Usage Error / In Rotate by: Choose one of: Factor, Time."},
        {check(HighLowRecord{}, {{"Maximize Volume", "maybe"}}),
         "Usage Error / In Maximize Volume: Use on or off."},
    };
    for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i].first, rows[i].second) << i;
}

// "Echo Volume=50%": an option given a value that is none of its choices sets its one
// typed field, and the option follows it, whatever it was before.
TEST(FormReading, AnOptionGivenAValueSetsItsOneTypedField) {
    Names names({"drum"});
    FormContext ctx;
    ctx.waves = &names;
    PerEchoRecord echo;
    ASSERT_FALSE(applyTypedFields(echo, {{"Echo Volume", "Envelope"}, {"Echo Volume Envelope", "drum"},
                                         {"Echo Volume", "50 %"}}, ctx));
    EXPECT_EQ(echo.volumeKind, kConstant);
    EXPECT_EQ(echo.volume.value, 0.5);
    EXPECT_EQ(echo.volume.unit, kUnitPercent);
    BalanceRecord balance;
    ASSERT_FALSE(applyTypedFields(balance, {{"Direction", "-1"}}, ctx));
    EXPECT_EQ(balance.direction.value, -1.0);
    ResNotchRecord res;
    ASSERT_FALSE(applyTypedFields(res, {{"Frequency Width", "0.3"}}, ctx));
    EXPECT_EQ(res.widthKind, kConstant);
    EXPECT_DOUBLE_EQ(res.width.value, 0.3);
}

TEST(FormReading, ARefusedEntryLeavesTheRecordAndShowsAnInformationBox) {
    LineRecord line;
    ASSERT_TRUE(applyTypedFields(line, {{"Length", "5 s"}, {"Begin Value", "2"}}, {}));
    EXPECT_EQ(line.beginValue.value, 16383);
    EXPECT_DOUBLE_EQ(line.length.value, 0.1);
    RecordingPlatformScope rec;
    SilenceRecord s;
    auto e = applyTypedFields(s, {{"Length", ""}}, {});
    ASSERT_TRUE(e);
    e->show();
    ASSERT_EQ(rec.recorder.messages.size(), 1u);
    EXPECT_EQ(rec.recorder.messages[0].caption, "Input Error");
    EXPECT_EQ(rec.recorder.messages[0].text, "In Length: Input has no value.");
    EXPECT_EQ(rec.recorder.messages[0].icon, MessageIcon::Information);
}

// Types `text` into `field` of a fresh record; gives what the dialog shows for it again and
// the value stored.
template <class R>
std::pair<std::string, double> typedBack(const char* field, const char* text,
                                         ValueRecord R::*member) {
    FormContext ctx;
    ctx.soundSeconds = 2.0;
    R r;
    EXPECT_FALSE(applyTypedFields(r, {{field, text}}, ctx)) << field;
    FormState st = showRecord(R::table(), r, nullptr);
    return {st.fields[R::table().find(field)].text, (r.*member).value};
}

TEST(FormReading, ValuesKeepTheUnitTheUserTyped) {
    const struct { std::pair<std::string, double> got; const char* shown; double value; } rows[] = {
        {typedBack("Constant", "-6 dB", &VolumeRecord::factor), "-6 dB", std::pow(10.0, -0.3)},
        {typedBack("Begin Value", "50 %", &LineRecord::beginValue), "50 %", 16383},  // truncated
        {typedBack("End Value", "-32768 $", &LineRecord::endValue), "-32768 $", -32768},
        {typedBack("Start Position", "1500 ms", &TempoPitchRecord::startPosition), "1500 ms", 1.5},
        {typedBack("Direction Constant", "45'", &BalanceRecord::direction), "45 '", 0.5},
        {typedBack("Factor", "-90'", &RotateRecord::factor), "-90 '", 0.75},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(r.got.first, r.shown);
        EXPECT_DOUBLE_EQ(r.got.second, r.value) << r.shown;
    }
}

// OK pressed on an untouched dialog reads back what it showed. Four decimals of a wave value
// are not always enough: -16384 shows as -0.5, which reads as -16383.
TEST(FormReading, AnUntouchedDialogKeepsItsValues) {
    FormContext ctx;
    ctx.soundSeconds = 10.0;
    LineRecord line;
    FormState st = showRecord(LineRecord::table(), line, nullptr);
    ASSERT_FALSE(acceptRecord(LineRecord::table(), st, line, ctx));
    EXPECT_EQ(line.beginValue.value, 16383);
    EXPECT_EQ(line.endValue.value, -16383);
    EXPECT_DOUBLE_EQ(line.length.value, 0.1);
    EXPECT_EQ(line.length.unit, kUnitMillisecond);
}

TEST(FormOptions, TheOptionFollowsTheFieldLastTypedInto) {
    LengthRecord r;
    ASSERT_FALSE(applyTypedFields(r, {{"New Length", "3 s"}}, {}));
    EXPECT_EQ(r.lengthKind, kLengthNew);
    EXPECT_DOUBLE_EQ(lengthFactorOf(r, 0.0, 1.5), 2.0);
    // Typing into "Length Factor" afterwards switches back; the new length is then not read,
    // so its typed text is neither checked nor stored.
    LengthRecord r2;
    ASSERT_FALSE(applyTypedFields(r2, {{"New Length", "nonsense"}, {"Length Factor", "25 %"}}, {}));
    EXPECT_EQ(r2.lengthKind, kLengthFactor);
    EXPECT_EQ(r2.newLength.value, 2.0);
    // An explicit choice given last wins over the field typed before it.
    LengthRecord r3;
    ASSERT_FALSE(applyTypedFields(r3, {{"New Length", "3 s"}, {"Length", "Length Factor"}}, {}));
    EXPECT_EQ(r3.lengthKind, kLengthFactor);
    EXPECT_EQ(r3.newLength.value, 2.0);
    // A flag-driven envelope: choosing the wave checks its "Envelope" box.
    Names names({"bass"});
    FormContext ctx;
    ctx.waves = &names;
    BlockFilterRecord bf;
    ASSERT_FALSE(applyTypedFields(bf, {{"Block Time Envelope Wave", "bass"}}, ctx));
    EXPECT_TRUE(bf.hasEnvelope);
    EXPECT_EQ(bf.envelope, "bass");
}

TEST(FormOptions, ADialogStateCorrectedAfterARefusalIsAccepted) {
    const auto& t = RotateRecord::table();
    RotateRecord r;
    FormContext ctx;
    ctx.soundSeconds = 2.0;
    FormState st = showRecord(t, r, nullptr);
    typeInto(t, st, t.find("Time"), "3 s");
    EXPECT_EQ(st.fields[t.find("Rotate by")].index, RotateRecord::kByTime);
    EXPECT_TRUE(acceptRecord(t, st, r, ctx));
    EXPECT_EQ(r.kind, RotateRecord::kByFactor);  // nothing taken over yet
    typeInto(t, st, t.find("Time"), "2 s");
    EXPECT_FALSE(acceptRecord(t, st, r, ctx));
    EXPECT_EQ(r.kind, RotateRecord::kByTime);
    EXPECT_EQ(r.time.value, 2.0);
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
              "Input Error / In Volume Factor: You have to select a Wave");
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
    EXPECT_EQ(b.horizontalCount, 7);
    EXPECT_EQ(b.vertical, BlockRecord::kTimeOrHeight);
    EXPECT_EQ(b.height.value, 16383);
    HighLowRecord hl;
    ASSERT_FALSE(applyTypedFields(hl, {{"maximize volume", "ON"}}, {}));
    EXPECT_TRUE(hl.maximize);
}

TEST(FormPresets, AnExampleWritesTheFourFactorsAndALaterFieldOverrides) {
    LeftRightRecord lr;
    auto factors = [&] {
        return std::vector<double>{lr.leftToLeft.value, lr.leftToRight.value,
                                   lr.rightToLeft.value, lr.rightToRight.value};
    };
    ASSERT_FALSE(applyTypedFields(lr, {{"Example", "Mono at Left, Surround at Right"}}, {}));
    EXPECT_EQ(factors(), (std::vector<double>{0.4, -0.8, 0.4, 0.8}));
    ASSERT_FALSE(applyTypedFields(lr, {{"Example", "Surround"}, {"from Left to Left", "1"}}, {}));
    EXPECT_EQ(factors(), (std::vector<double>{1.0, -0.5, -0.5, 0.5}));
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
}

}  // namespace
}  // namespace orv
