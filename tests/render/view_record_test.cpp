#include "document/records_view.h"

#include <gtest/gtest.h>

#include "support/document_test_helpers.h"

#include <string>

namespace orv {
namespace {

std::string shown(WaveViewRecord& r) { return test::shownFields<WaveViewForm>(r); }

TEST(WaveViewRecord, DefaultsAsTheDialogShowsThem) {
    WaveViewRecord r;
    EXPECT_EQ(shown(r),
              "15 | 1 | Lines | Constant | #FFFFFF | #008080 | #FF0000 | #808080 | #808080 | "
              "#000000 | Mixed | on | on");
    EXPECT_EQ(r.singleWave, 0x808000);  // kept as 0x00BBGGRR
}

TEST(WaveViewRecord, CommandLineFieldsAndTheOptionsTheyBelongTo) {
    WaveViewRecord r;
    ASSERT_FALSE(applyTypedFields(
        r,
        {{"Values per Pixel", "1"}, {"draw", "Points"}, {"Strength:", "0.5"},
         {"Background", "#000000"}, {"Single Wave", "#00FF00"}, {"Draw Grid", "off"},
         {"Distribution", "Peaks"}, {"Combine", "right at front"}, {"Right", " #0a0B0c\t"}},
        FormContext{}));
    EXPECT_EQ(shown(r), "1 | 0.5 | Points | Peaks | #000000 | #00FF00 | #FF0000 | #0A0B0C | "
                        "#808080 | #000000 | Right at Front | off | on");
    EXPECT_EQ(r.right, 0x0C0B0A);  // kept as 0x00BBGGRR
    // Typing the strength chooses points and typing the grid colour the grid; a field whose
    // option is off is not read at all.
    WaveViewRecord follow;
    follow.drawGrid = false;
    ASSERT_FALSE(applyTypedFields(follow, {{"Strength", "0.25"}, {"Grid", "#FF0000"}}, FormContext{}));
    EXPECT_EQ(shown(follow), "15 | 0.25 | Points | Constant | #FFFFFF | #008080 | #FF0000 | "
                             "#808080 | #FF0000 | #000000 | Mixed | on | on");
    WaveViewRecord unread;
    ASSERT_FALSE(applyTypedFields(unread, {{"Grid", "nonsense"}, {"Draw Grid", "off"},
                                           {"Strength", "7"}, {"Draw", "Lines"}},
                                  FormContext{}));
    EXPECT_EQ(unread.grid, kGrey);
    EXPECT_EQ(unread.strength.value, 1.0);
}

TEST(WaveViewRecord, RefusalsWordForWordFirstFieldFirst) {
    const struct { TypedFields typed; const char* caption; const char* text; } rows[] = {
        {{{"Background", "green"}}, "Input Error",
         "In Background: Colour must be written as #RRGGBB."},
        {{{"Grid", "#00FF0"}}, "Input Error", "In Grid: Colour must be written as #RRGGBB."},
        {{{"Left", "#00FF00 x"}}, "Input Error", "In Left: Colour must be written as #RRGGBB."},
        {{{"Values per Pixel", "0"}}, "Input Error",
         "In Values per Pixel: Value must be positive and more than 0."},
        {{{"Draw", "Points"}, {"Strength", "1.5"}}, "Input Error",
         "In Strength: Value must be no more than 1."},
        // Two wrong: the one that comes first in the dialog is reported.
        {{{"Left", "red"}, {"Values per Pixel", "-3"}}, "Input Error",
         "In Values per Pixel: Value must be positive and more than 0."},
        {{{"Strength", "2"}, {"Background", "white"}}, "Input Error",
         "In Strength: Value must be no more than 1."},
        {{{"Cursor", "#1"}, {"Single Wave", "#1"}}, "Input Error",
         "In Single Wave: Colour must be written as #RRGGBB."},
        {{{"Combine", "Middle"}}, "Usage Error",
         "In Combine: Choose one of: Mixed, Left at Front, Right at Front."},
    };
    for (const auto& row : rows) {
        WaveViewRecord r, fresh;
        const auto error = applyTypedFields(r, row.typed, FormContext{});
        ASSERT_TRUE(error) << row.text;
        EXPECT_EQ(error->caption, row.caption);
        EXPECT_EQ(error->text(), row.text);
        EXPECT_EQ(shown(r), shown(fresh));  // left as it was
    }
}

}  // namespace
}  // namespace orv
