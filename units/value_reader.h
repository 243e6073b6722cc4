// The value entry language, reading side: a number with an optional unit (or a note name),
// converted to the quantity an operation needs, range- and sign-checked. Every reader returns
// true or false; on false the reader holds exactly one English sentence saying why, and the
// output arguments are left as they were. Nothing here throws.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "units/value_record.h"

namespace orv {

// Sign checks of a field (the code kept in ValueRecord::signCheck). A code below 0 or
// above 7 passes everything.
enum SignCheck : std::uint8_t {
    kCheckNone = 0,          // always passes
    kCheckNotZero = 1,       // value != 0
    kCheckNotPositive = 2,   // value <= 0  ("Value must be negative.")
    kCheckNotNegative = 3,   // value >= 0  ("Value must be positive.")
    kCheckNegative = 4,      // value < 0
    kCheckPositive = 5,      // value > 0
    kCheckZeroToOne = 6,     // 0 <= value <= 1
    kCheckOpenZeroToOne = 7, // 0 < value < 1
};

// One reading of one field: a private copy of the text, a read position and the message of
// the failure (empty until a step fails). Use a reader for one value only.
class ValueReader {
public:
    explicit ValueReader(std::string_view text);
    ValueReader(const ValueReader&) = delete;
    ValueReader& operator=(const ValueReader&) = delete;

    const std::string& text() const { return text_; }
    std::size_t pos() const { return pos_; }
    void setPos(std::size_t p) { pos_ = p < text_.size() ? p : text_.size(); }
    bool atEnd() const { return pos_ >= text_.size(); }
    // The character at the read position, '\0' at the end.
    char peek() const { return atEnd() ? '\0' : text_[pos_]; }

    // Empty until a step failed; then the one sentence that says why.
    std::string_view message() const { return message_; }
    bool failed() const { return *message_ != '\0'; }
    // Records `msg` (a constant text that outlives the reader) and returns false.
    bool fail(const char* msg);

    // --- steps shared by the readers --------------------------------------------------
    // Skips spaces and tabs.
    void skipBlanks();
    // At most ten decimal digits into an unsigned 32-bit accumulator (wrapping); `count`
    // gets the number of digits read. An eleventh digit is left in place.
    std::uint32_t readDigits(int& count);
    // Optional "+", then optional "-", then digits. Cannot fail: no digits gives 0 with
    // `count` 0. Used by the integer reader and for the octave of a note.
    std::int32_t readInt(int& count);
    // Sign, digits, and an optional "." / "," decimal part or "/" fraction.
    // Fails with "Input has no value.", "Input has no value before '/'.",
    // "Input has no value after '/'." or "Broke is invalid.".
    bool readNumber(double& value);
    // Skips blanks and names the unit that the rest of the text begins with (case-insensitive):
    // 0 when nothing is left, 11 when no unit matches. What follows the unit is not looked at.
    std::uint8_t readUnit();
    // True when the text's first character is a letter A to G (either case).
    bool startsWithNote() const;
    // Reads a note name (letter, optional "#", optional octave -2..12, 5 when left out)
    // from the read position and gives its frequency: 523.26 x 2^(octave + semitone/12 - 5).
    bool readNote(double& hertz);

private:
    std::string text_;
    std::size_t pos_ = 0;
    const char* message_ = "";
};

// Applies sign check `check` (see SignCheck) to `value`; on failure the reader gets the
// check's message.
bool ValueCheck(ValueReader& r, double value, int check);

// --- the readers ------------------------------------------------------------------------
// `unit` receives the unit code that the user typed (UnitCode), so that the value can be
// written back the same way. A note name in the period or frequency reader reports
// kUnitHertz.

// Signed 32-bit integer, no unit; never fails except on the sign check. Trailing text is
// not looked at.
bool readInteger(ValueReader& r, std::int32_t& value, int check);
// A sample value (the same type as WaveVal): plain -1..1 (x 32767), "%" -100..100
// (x 327.67) or "$" raw -32768..32767; truncated toward zero; sign check on the result.
bool readWaveValue(ValueReader& r, std::int16_t& value, std::uint8_t& unit, int check);
// A plain factor or a percentage (x 0.01); sign check on the factor.
bool readFactor(ValueReader& r, double& value, std::uint8_t& unit, int check);
// A volume factor: plain, "%" or "dB" (10^(0.05 x dB)). No sign check.
bool readLoudness(ValueReader& r, double& value, std::uint8_t& unit);
// A phase as a fraction of a cycle in 0..1: factor form -1 <= v < 1, or degrees ("'")
// -360 <= v < 360 (x 1/360); a negative result gets 1 added. No sign check.
bool readPhase(ValueReader& r, double& value, std::uint8_t& unit);
// A balance -1..1: factor form -1..1, or degrees -90..90 (x 1/90). No sign check.
bool readBalance(ValueReader& r, double& value, std::uint8_t& unit);
// A period in seconds: "s", "ms", "Hz", "kHz" or a note name (0 refused with "Hz"/"kHz").
// Sign check on the seconds; a note skips it.
bool readPeriod(ValueReader& r, double& seconds, std::uint8_t& unit, int check);
// A frequency in hertz: "s", "ms", "Hz", "kHz" or a note name (0 refused with "s"/"ms").
// Sign check on the hertz; a note skips it.
bool readFrequency(ValueReader& r, double& hertz, std::uint8_t& unit, int check);

// --- whole fields -----------------------------------------------------------------------
// Which reader a field uses.
enum class ValueKind : std::uint8_t {
    Integer,
    WaveValue,
    Factor,
    Loudness,
    Phase,
    Balance,
    Period,
    Frequency,
};

// Reads `text` as a field of `kind` with the record's sign check. On success the record
// gets the value (an integer or sample value as a double) and the unit typed; on failure
// the record is left as it was and `message` gets the reader's sentence.
bool readField(ValueKind kind, std::string_view text, ValueRecord& rec, std::string& message);

}  // namespace orv
