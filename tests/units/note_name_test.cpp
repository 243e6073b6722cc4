#include <gtest/gtest.h>

#include <cmath>

#include "units/value_reader.h"

namespace orv {
namespace {

double note(const char* text) {
    ValueReader r(text);
    double hz = -1;
    EXPECT_TRUE(r.readNote(hz)) << text << ": " << r.message();
    return hz;
}

std::string noteError(const char* text) {
    ValueReader r(text);
    double hz = -1;
    EXPECT_FALSE(r.readNote(hz)) << text;
    EXPECT_EQ(hz, -1) << text;
    return std::string(r.message());
}

TEST(NoteName, ReferenceAndOctaves) {
    EXPECT_DOUBLE_EQ(note("C5"), 523.26);
    EXPECT_DOUBLE_EQ(note("C"), 523.26);  // octave 5 when left out
    EXPECT_DOUBLE_EQ(note("C6"), 1046.52);
    EXPECT_DOUBLE_EQ(note("C4"), 261.63);
    EXPECT_DOUBLE_EQ(note("C-2"), 523.26 / 128);
    EXPECT_DOUBLE_EQ(note("C12"), 523.26 * 128);
    EXPECT_DOUBLE_EQ(note("C+3"), 523.26 / 4);
    // 523.26 x 2^-0.25 = 440.00746...: A4 is 440 Hz within the reference's rounding.
    EXPECT_NEAR(note("A4"), 440.0, 0.01);
    EXPECT_NEAR(note("A4"), 440.007458, 0.000001);
    EXPECT_NEAR(note("A"), 880.014916, 0.000001);
}

TEST(NoteName, LettersAndSharps) {
    const double semitone = std::pow(2.0, 1.0 / 12);
    const struct {
        const char* text;
        int semitones;
    } cases[] = {{"C5", 0}, {"C#5", 1}, {"D5", 2}, {"D#5", 3}, {"E5", 4}, {"F5", 5},
                 {"F#5", 6}, {"G5", 7}, {"G#5", 8}, {"A5", 9}, {"A#5", 10}, {"B5", 11}};
    for (const auto& c : cases)
        EXPECT_NEAR(note(c.text), 523.26 * std::pow(semitone, c.semitones), 1e-9) << c.text;
    // Lower case is the same note.
    EXPECT_DOUBLE_EQ(note("a4"), note("A4"));
    EXPECT_DOUBLE_EQ(note("g#-1"), note("G#-1"));
    // What follows the octave is not looked at.
    EXPECT_DOUBLE_EQ(note("A4 Hz"), note("A4"));
    EXPECT_DOUBLE_EQ(note("abc"), note("A"));
}

TEST(NoteName, Refusals) {
    EXPECT_EQ(noteError("B#4"), "This note cannot have a \"#\".");
    EXPECT_EQ(noteError("E#4"), "This note cannot have a \"#\".");
    EXPECT_EQ(noteError("b#"), "This note cannot have a \"#\".");
    EXPECT_EQ(noteError("C13"), "The maximum Octave number is 12.");
    EXPECT_EQ(noteError("C#13"), "The maximum Octave number is 12.");
    EXPECT_EQ(noteError("C-3"), "The minimum Octave number is -2.");
    EXPECT_EQ(noteError("H4"), "Input has no value.");
}

TEST(NoteName, SharpRefusalPutsThePositionBackOnTheLetter) {
    ValueReader r("xE#4");
    r.setPos(1);
    double hz = 0;
    EXPECT_FALSE(r.readNote(hz));
    EXPECT_EQ(r.pos(), 1u);
}

TEST(NoteName, OnlyAToGAtTheStartAreNotes) {
    for (const char* t : {"A", "g4", "b", "C#", "e-1", "dB"}) EXPECT_TRUE(ValueReader(t).startsWithNote()) << t;
    for (const char* t : {"", "H", "h", "5 Hz", " A4", "#", "z", "\xc1"})
        EXPECT_FALSE(ValueReader(t).startsWithNote()) << t;
}

}  // namespace
}  // namespace orv
