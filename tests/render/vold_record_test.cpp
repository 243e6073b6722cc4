// The "Volume Diagram" record: defaults, fields as the command line types them, and its
// three checks word for word.
#include "document/records_vold.h"

#include <gtest/gtest.h>

#include "support/document_test_helpers.h"

#include <string>

namespace orv {
namespace {

std::string shown(VoldViewRecord& r) { return test::shownFields<VoldViewForm>(r); }

std::string refusal(const TypedFields& typed) {
    VoldViewRecord r;
    const VoldViewRecord before = r;
    const auto e = applyTypedFields(r, typed, FormContext{});
    if (!e) return "accepted";
    EXPECT_EQ(shown(r), [&] { VoldViewRecord b = before; return shown(b); }());
    return e->caption + ": " + e->text();
}

TEST(VoldViewRecord, DefaultsAsTheDialogShowsThem) {
    VoldViewRecord r;
    EXPECT_EQ(VoldViewRecord::table().caption, "Volume Diagram");
    EXPECT_EQ(VoldViewRecord::table().helpContext, 3);
    EXPECT_EQ(shown(r),
              "20 kHz | 20 Hz | 50 | 1 | 1.3 | on | on | on | Logaritmic | Normal (Linear) | "
              "#FFFFFF | #008080 | #FF0000 | #FF00FF | #FF0000 | on");
    EXPECT_DOUBLE_EQ(r.top.value, 0.00005);  // kept as the period
    EXPECT_DOUBLE_EQ(r.bottom.value, 0.05);
}

TEST(VoldViewRecord, CommandLineFields) {
    VoldViewRecord r;
    ASSERT_FALSE(applyTypedFields(
        r,
        {{"Top", "4 kHz"}, {"Bottom", "100 Hz"}, {"Vertical", "400"}, {"Width", "50 %"},
         {"Strength", "2"}, {"Horizontal Distribution", "time linear"},
         {"Sensitivity", "Very High (Fourth root)"}, {"Background", "#000000"},
         {"Volume Single or Both", "#00ff00"}, {"Cursor", "#0000FF"},
         {"2 Single Diagrams when Stereo", "off"}, {"Fill Window Height", "off"}},
        FormContext{}));
    EXPECT_EQ(shown(r), "4 kHz | 100 Hz | 400 | 50 % | 2 | off | on | on | Time Linear | "
                        "Very High (Fourth root) | #000000 | #00FF00 | #FF0000 | #FF00FF | "
                        "#0000FF | off");
    EXPECT_DOUBLE_EQ(r.top.value, 0.00025);
    EXPECT_DOUBLE_EQ(r.width.value, 0.5);
    EXPECT_EQ(r.volumeBoth, 0x00FF00);
    EXPECT_EQ(r.cursor, 0xFF0000);  // 0x00BBGGRR
}

TEST(VoldViewRecord, RefusalsWordForWord) {
    EXPECT_EQ(refusal({{"Vertical", "0"}}),
              "Input Error: In Vertical Resolution: Value must be positive and more than 0.");
    EXPECT_EQ(refusal({{"Width", "-1"}}),
              "Input Error: In Frequency Width: Value must be positive and more than 0.");
    EXPECT_EQ(refusal({{"Cursor", "pink"}}),
              "Input Error: In Cursor: Colour must be written as #RRGGBB.");
    // Top and bottom the same frequency, however typed.
    EXPECT_EQ(refusal({{"Top", "1 kHz"}, {"Bottom", "1000 Hz"}}),
              "Input Error: In Top: Top Frequency and Bottom Frequency must be different.");
    EXPECT_EQ(refusal({{"Top", "20 kHz"}, {"Bottom", "0.05 ms"}}),
              "Input Error: In Top: Top Frequency and Bottom Frequency must be different.");
    // A field that cannot be read goes first; a bad colour comes before the record's check.
    EXPECT_EQ(refusal({{"Top", "1 kHz"}, {"Bottom", "1 kHz"}, {"Strength", "x"}}).substr(0, 24),
              "Input Error: In Strength");
    EXPECT_EQ(refusal({{"Top", "1 kHz"}, {"Bottom", "1 kHz"}, {"Background", "x"}}),
              "Input Error: In Background: Colour must be written as #RRGGBB.");
    EXPECT_EQ(refusal({{"Top", "1 kHz"}, {"Bottom", "2 kHz"}}), "accepted");
}

TEST(VoldViewRecord, FrequenciesAgainstTheSampleFrequency) {
    VoldViewRecord r;  // 20 kHz over 20 Hz
    const auto text = [](const std::optional<FormError>& e) {
        return e ? e->caption + ": " + e->text() : std::string("passes");
    };
    EXPECT_EQ(text(checkVoldFrequencies(r, 44100)), "passes");
    EXPECT_EQ(text(checkVoldFrequencies(r, 20000)), "passes");  // as high is allowed
    EXPECT_EQ(text(checkVoldFrequencies(r, 19999)),
              "Input Error: In Top: Top Frequency may not be higher than the sample Frequency.");
    EXPECT_EQ(checkVoldFrequencies(r, 19999)->fieldIndex, 0);
    // Upside down: the bottom is the higher one.
    std::swap(r.top, r.bottom);
    EXPECT_EQ(text(checkVoldFrequencies(r, 11025)),
              "Input Error: In Bottom: Bottom Frequency may not be higher than the sample "
              "Frequency.");
    EXPECT_EQ(checkVoldFrequencies(r, 11025)->fieldIndex, 1);
    // Top first, then the two against each other, then the bottom.
    r.top = r.bottom;
    EXPECT_EQ(text(checkVoldFrequencies(r, 1000)),
              "Input Error: In Top: Top Frequency may not be higher than the sample Frequency.");
    EXPECT_EQ(text(checkVoldFrequencies(r, 44100)),
              "Input Error: In Top: Top Frequency and Bottom Frequency must be different.");
    // Without a sample frequency only the two against each other.
    r.bottom.value = 1.0;
    EXPECT_EQ(text(checkVoldFrequencies(r, 0)), "passes");
}

}  // namespace
}  // namespace orv
