// Note names as an alternative to a number in period and frequency fields: "A4", "C#",
// "g-1". C5 is 523.26 Hz and every semitone is a twelfth of an octave.
#include <cmath>

#include "units/value_reader.h"

namespace orv {

namespace {

const char* const kNoValue = "Input has no value.";
const char* const kNoSharp = "This note cannot have a \"#\".";
const char* const kOctaveTooLow = "The minimum Octave number is -2.";
const char* const kOctaveTooHigh = "The maximum Octave number is 12.";

constexpr double kC5Hertz = 523.26;
constexpr int kReferenceOctave = 5;  // the octave of kC5Hertz
constexpr int kDefaultOctave = 5;

// Lower case is folded by taking 32 off anything from 'H' upward; only A..G survive as notes.
unsigned char foldNoteLetter(char c) {
    unsigned char u = static_cast<unsigned char>(c);
    if (u >= 'H') u = static_cast<unsigned char>(u - 32);
    return u;
}

// Semitone of the letter within its octave, -1 when it is not a note letter.
int semitoneOf(unsigned char letter) {
    switch (letter) {
    case 'C': return 0;
    case 'D': return 2;
    case 'E': return 4;
    case 'F': return 5;
    case 'G': return 7;
    case 'A': return 9;
    case 'B': return 11;
    default: return -1;
    }
}

}  // namespace

bool ValueReader::startsWithNote() const {
    return !text_.empty() && semitoneOf(foldNoteLetter(text_[0])) >= 0;
}

bool ValueReader::readNote(double& hertz) {
    const std::size_t letterPos = pos_;
    const unsigned char letter = foldNoteLetter(peek());
    int semitone = semitoneOf(letter);
    if (semitone < 0) return fail(kNoValue);
    ++pos_;

    if (peek() == '#') {
        if (letter == 'B' || letter == 'E') {
            pos_ = letterPos;
            return fail(kNoSharp);
        }
        ++semitone;
        ++pos_;
    }

    int digits = 0;
    std::int32_t octave = readInt(digits);
    if (digits == 0) octave = kDefaultOctave;
    if (octave < -2) return fail(kOctaveTooLow);
    if (octave > 12) return fail(kOctaveTooHigh);

    // Whatever follows the octave is not looked at.
    hertz = kC5Hertz * std::pow(2.0, double(octave) + semitone / 12.0 - kReferenceOctave);
    return true;
}

}  // namespace orv
