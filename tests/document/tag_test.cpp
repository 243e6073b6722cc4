#include "document/tag.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "support/recording_platform.h"

namespace orv {
namespace {

TEST(TagList, AddAndGetTypedValuesWithDefaults) {
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
    // Absent names give the caller's default, whatever the type asked for.
    EXPECT_EQ(tags.getLong("end", 44100), 44100);
    EXPECT_EQ(tags.getString("nothing", "x"), "x");
    EXPECT_EQ(tags.getInt("Temp", 7), 7);  // names compare exactly
}

TEST(TagList, SecondAddOfANameIsRefusedAndKeepsTheFirstValue) {
    TagList tags;
    EXPECT_TRUE(tags.addLong("end", 10));
    EXPECT_FALSE(tags.addLong("end", 20));
    EXPECT_FALSE(tags.addString("end", "x"));  // refused whatever its type
    EXPECT_EQ(tags.getLong("end", 0), 10);
}

TEST(TagList, TypeNames) {
    EXPECT_EQ(tagTypeName(0), "int");
    EXPECT_EQ(tagTypeName(1), "double");
    EXPECT_EQ(tagTypeName(2), "long");
    EXPECT_EQ(tagTypeName(3), "WaveVal");
    EXPECT_EQ(tagTypeName(4), "string");
    EXPECT_EQ(tagTypeName(5), "*<type>");
    EXPECT_EQ(tagTypeName(6), "<onbekende type!>");
}

TEST(TagListDeathTest, WrongTypeShowsTheInternalErrorAndStops) {
    // The default platform writes "caption: text" to stderr before the assertion line.
    EXPECT_DEATH(
        {
            TagList tags;
            tags.addLong("begin", 5);
            tags.getString("begin", "");
        },
        "Tag Error \\(Internal\\): Tag \"begin\" has type long but type string is expected\\.\n"
        "Assertion failed: false, unit tag");
}

// Prints the icon along with the caption so the death test can see it.
class IconPlatform : public Platform {
public:
    void showMessage(std::string_view caption, std::string_view text, MessageIcon icon) override {
        std::fprintf(stderr, "[%s] %.*s | %.*s\n", icon == MessageIcon::Stop ? "stop" : "info",
                     int(caption.size()), caption.data(), int(text.size()), text.data());
    }
};

TEST(TagListDeathTest, WrongTypeUsesTheStopIconAndNamesBothTypes) {
    EXPECT_DEATH(
        {
            IconPlatform p;
            setPlatform(&p);
            TagList tags;
            tags.addInt("temp", 1);
            tags.getLong("temp", 0);
        },
        "\\[stop\\] Tag Error \\(Internal\\) \\| Tag \"temp\" has type int but type long is "
        "expected\\.");
}

}  // namespace
}  // namespace orv
