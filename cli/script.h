// The command line of orvasto-cli read as a script: steps, left to right, each a word and
// its arguments. The whole line is read before anything runs, so a typo at the end does not
// leave half the work done.
//
//   open FILE | import FILE | new FREQ BITS CHANNELS | name NAME | use NAME
//   select BEGIN END | cursor POS | save FILE | export FILE [FORMAT]   (a position may be "end")
//   info | dump [BEGIN END] | help [ACTION] | render FILE WIDTH HEIGHT
//   ACTION ["Caption=Value" ...]      any action of the table that works on documents
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "document/record_form.h"

namespace orv::cli {

enum class StepKind : std::uint8_t {
    Open,
    Import,
    New,
    Name,
    Use,
    Select,
    Cursor,
    Save,
    Export,
    Info,
    Dump,
    Help,
    Action,
    View,    // ViewWave, ViewVold, ZoomIn, NoZoom: the window's settings and zoom
    Render,  // render FILE WIDTH HEIGHT
};

struct Step {
    StepKind kind = StepKind::Info;
    std::string word;               // as typed: "open", "Volume"
    std::vector<std::string> args;  // positional arguments
    TypedFields fields;             // "Caption=Value" pairs of an action, in order
};

// A mistake in the script itself, found before anything runs ("Usage Error").
struct ScriptError {
    std::string text;
};

// The step words, in the order help lists them.
const std::vector<std::string_view>& stepWords();
bool isStepWord(std::string_view word);

// Reads the arguments (without the program name) into steps; the first mistake otherwise.
std::optional<ScriptError> parseScript(const std::vector<std::string>& args,
                                       std::vector<Step>& steps);

// A position as typed: a plain integer is a sample index, a number with "s" or "ms" a time,
// "end" the end of the wave.
struct PositionText {
    bool isTime = false;
    std::int64_t sample = 0;
    double seconds = 0.0;
    bool atEnd = false;
};
// False for anything else ("12.5", "3 Hz", "-4", "").
bool readPosition(std::string_view text, PositionText& out);
// The sample a position stands for in a sound of `values` samples at `freq` samples per
// second: a time becomes trunc(freq x seconds), as everywhere else a time becomes a
// position; "end" becomes `values`.
std::int64_t positionSample(const PositionText& p, std::int32_t freq, std::int32_t values);

// The step words and the names of the actions that run here, for "did you mean".
std::vector<std::string> stepAndActionNames();

}  // namespace orv::cli
