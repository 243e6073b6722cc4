#include "document/tag.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "core/platform.h"

namespace orv {
namespace {

TEST(TagList, TypedValuesDefaultsASecondAddRefusedAndTypeNames) {
    TagList tags;
    EXPECT_TRUE(tags.addString("file", "a.wav"));
    EXPECT_TRUE(tags.addInt("temp", 1));
    EXPECT_TRUE(tags.addLong("begin", 1200));
    EXPECT_TRUE(tags.addDouble("gain", 0.25));
    EXPECT_TRUE(tags.addWaveVal("peak", WaveVal(-32768)));
    EXPECT_EQ(tags.getString("file", ""), "a.wav");
    EXPECT_EQ(tags.getInt("temp", 0), 1);
    EXPECT_EQ(tags.getLong("begin", 0), 1200);
    EXPECT_EQ(tags.getDouble("gain", 0.0), 0.25);
    EXPECT_EQ(tags.getWaveVal("peak", 0), -32768);
    EXPECT_EQ(tags.getLong("end", 44100), 44100);
    EXPECT_EQ(tags.getInt("Temp", 7), 7);  // names compare exactly
    EXPECT_FALSE(tags.addLong("begin", 20));
    EXPECT_FALSE(tags.addString("begin", "x"));  // refused whatever its type
    EXPECT_EQ(tags.getLong("begin", 0), 1200);
    const char* names[] = {"int", "double", "long", "WaveVal", "string", "*<type>",
                           "<onbekende type!>"};
    for (int i = 0; i < 7; ++i) EXPECT_EQ(tagTypeName(i), names[i]) << i;
}

// Prints the icon along with the caption so the death test can see it.
class IconPlatform : public Platform {
public:
    void showMessage(std::string_view caption, std::string_view text, MessageIcon icon) override {
        std::fprintf(stderr, "[%s] %.*s | %.*s\n", icon == MessageIcon::Stop ? "stop" : "info",
                     int(caption.size()), caption.data(), int(text.size()), text.data());
    }
};

TEST(TagListDeathTest, WrongTypeShowsTheInternalErrorWithTheStopIconAndStops) {
    EXPECT_DEATH(
        {
            IconPlatform p;
            setPlatform(&p);
            TagList tags;
            tags.addInt("temp", 1);
            tags.getLong("temp", 0);
        },
        "\\[stop\\] Tag Error \\(Internal\\) \\| Tag \"temp\" has type int but type long is "
        "expected\\.\nAssertion failed: false, unit tag");
}

}  // namespace
}  // namespace orv
