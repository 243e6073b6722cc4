#include "cli/script.h"

#include <cmath>

#include "cli/suggest.h"
#include "cli/view_steps.h"
#include "core/sample_value.h"
#include "document/actions.h"
#include "fileio/sample_frequency.h"
#include "fileio/sound_export.h"
#include "units/value_reader.h"

namespace orv::cli {

namespace {

std::string_view trim(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
    return s;
}

bool allDigits(std::string_view s) {
    if (s.empty()) return false;
    for (char c : s)
        if (c < '0' || c > '9') return false;
    return true;
}

// A whole positive number that fits 31 bits.
bool readCount(std::string_view s, std::int64_t& out) {
    s = trim(s);
    if (!allDigits(s) || s.size() > 10) return false;
    std::int64_t v = 0;
    for (char c : s) v = v * 10 + (c - '0');
    if (v > INT32_MAX) return false;
    out = v;
    return true;
}

bool isExportFormatName(std::string_view word) {
    for (const ExportFormatInfo& f : allExportFormats())
        if (captionMatches(f.name, word)) return true;
    return false;
}

std::string quoted(std::string_view s) {
    std::string out;
    out.reserve(s.size() + 2);
    out += '"';
    out += s;
    out += '"';
    return out;
}

}  // namespace

const std::vector<std::string_view>& stepWords() {
    static const std::vector<std::string_view> words = {
        "open", "import", "new", "name", "use", "select", "cursor",
        "save", "export", "info", "dump", "help", "render"};
    return words;
}

bool isStepWord(std::string_view word) {
    for (std::string_view w : stepWords())
        if (w == word) return true;
    return false;
}

std::vector<std::string> stepAndActionNames() {
    std::vector<std::string> names(stepWords().begin(), stepWords().end());
    for (const ActionDef& a : actionTable())
        if (a.flow != ActionFlow::Front && a.flow != ActionFlow::Inert) names.emplace_back(a.name);
    return names;
}

bool readPosition(std::string_view text, PositionText& out) {
    const std::string_view t = trim(text);
    if (t == "end") {
        out = PositionText{};
        out.atEnd = true;
        return true;
    }
    if (allDigits(t)) {
        if (t.size() > 10) return false;
        std::int64_t v = 0;
        for (char c : t) v = v * 10 + (c - '0');
        out = PositionText{false, v, 0.0};
        return true;
    }
    ValueReader r(t);
    double value = 0.0;
    if (r.peek() == '-' || !r.readNumber(value)) return false;
    const std::uint8_t unit = r.readUnit();
    if (unit != kUnitSecond && unit != kUnitMillisecond) return false;
    r.skipBlanks();
    if (!r.atEnd() || !std::isfinite(value)) return false;
    out = PositionText{true, 0, unit == kUnitMillisecond ? value / 1000.0 : value};
    return true;
}

std::int64_t positionSample(const PositionText& p, std::int32_t freq, std::int32_t values) {
    if (p.atEnd) return values;
    if (!p.isTime) return p.sample;
    return truncToInt(double(freq) * p.seconds);
}

std::optional<ScriptError> parseScript(const std::vector<std::string>& args,
                                       std::vector<Step>& steps) {
    steps.clear();
    std::size_t i = 0;
    auto need = [&](const Step& step, std::size_t count,
                    std::string_view what) -> std::optional<ScriptError> {
        if (args.size() - i < count)
            return ScriptError{step.word + " needs " + std::string(what) + "."};
        return std::nullopt;
    };
    auto isPosition = [](const std::string& s) {
        PositionText p;
        return readPosition(s, p);
    };

    while (i < args.size()) {
        Step step;
        step.word = args[i++];
        const std::string& w = step.word;
        if (w == "open" || w == "import" || w == "save" || w == "name" || w == "use") {
            step.kind = w == "open"     ? StepKind::Open
                        : w == "import" ? StepKind::Import
                        : w == "save"   ? StepKind::Save
                        : w == "name"   ? StepKind::Name
                                        : StepKind::Use;
            const bool file = w == "open" || w == "import" || w == "save";
            if (auto e = need(step, 1, file ? "a file name" : "a name")) return e;
            step.args.push_back(args[i++]);
        } else if (w == "export") {
            step.kind = StepKind::Export;
            if (auto e = need(step, 1, "a file name")) return e;
            step.args.push_back(args[i++]);
            if (i < args.size() && isExportFormatName(args[i])) step.args.push_back(args[i++]);
        } else if (w == "new") {
            step.kind = StepKind::New;
            if (auto e = need(step, 3, "a frequency, the bits and the channels")) return e;
            std::int64_t freq = 0, bits = 0, channels = 0;
            if (!readCount(args[i], freq) || !isUsableSampleFrequency(freq))
                return ScriptError{"new needs a frequency of " +
                                   std::to_string(kLowestSampleFrequency) + " to " +
                                   std::to_string(kHighestSampleFrequency) +
                                   " samples per second, not " + quoted(args[i]) + "."};
            if (!readCount(args[i + 1], bits) || (bits != 8 && bits != 16))
                return ScriptError{"new needs 8 or 16 bits, not " + quoted(args[i + 1]) + "."};
            if (!readCount(args[i + 2], channels) || (channels != 1 && channels != 2))
                return ScriptError{"new needs 1 or 2 channels, not " + quoted(args[i + 2]) + "."};
            for (int k = 0; k < 3; ++k) step.args.push_back(args[i++]);
        } else if (w == "select") {
            step.kind = StepKind::Select;
            if (auto e = need(step, 2, "a begin and an end")) return e;
            for (int k = 0; k < 2; ++k) {
                if (!isPosition(args[i]))
                    return ScriptError{"Not a position: " + quoted(args[i]) +
                                       " (a sample index, a time in s or ms, or end)."};
                step.args.push_back(args[i++]);
            }
        } else if (w == "cursor") {
            step.kind = StepKind::Cursor;
            if (auto e = need(step, 1, "a position")) return e;
            if (!isPosition(args[i]))
                return ScriptError{"Not a position: " + quoted(args[i]) +
                                   " (a sample index, a time in s or ms, or end)."};
            step.args.push_back(args[i++]);
        } else if (w == "info") {
            step.kind = StepKind::Info;
        } else if (w == "dump") {
            step.kind = StepKind::Dump;
            if (i < args.size() && isPosition(args[i])) {
                if (i + 1 >= args.size() || !isPosition(args[i + 1]))
                    return ScriptError{"dump needs two positions or none."};
                step.args.push_back(args[i++]);
                step.args.push_back(args[i++]);
            }
        } else if (w == "help") {
            step.kind = StepKind::Help;
            if (i < args.size() && !isStepWord(args[i]) &&
                args[i].find('=') == std::string::npos)
                step.args.push_back(args[i++]);
        } else if (w == "render") {
            step.kind = StepKind::Render;
            if (auto e = need(step, 3, "a file name, a width and a height")) return e;
            std::int64_t width = 0, height = 0;
            if (!readCount(args[i + 1], width) || !readCount(args[i + 2], height) || width < 1 ||
                height < 1 || width > 16384 || height > 16384)
                return ScriptError{"render needs a width and a height of 1 to 16384 pixels, not " +
                                   quoted(args[i + 1]) + " and " + quoted(args[i + 2]) + "."};
            for (int k = 0; k < 3; ++k) step.args.push_back(args[i++]);
        } else if (const ActionDef* def = findAction(w)) {
            const bool view = ViewSteps::isViewAction(w);
            if (!view && (def->flow == ActionFlow::Front || def->flow == ActionFlow::Inert))
                return ScriptError{w + " needs the desktop program."};
            step.kind = view ? StepKind::View : StepKind::Action;
            while (i < args.size() && args[i].find('=') != std::string::npos) {
                const std::string& a = args[i++];
                const std::size_t eq = a.find('=');
                step.fields.emplace_back(a.substr(0, eq), a.substr(eq + 1));
            }
        } else if (w.find('=') != std::string::npos) {
            return ScriptError{"The field " + quoted(w) + " does not follow an action."};
        } else {
            return ScriptError{"Unknown step " + quoted(w) + "." + didYouMean(w, stepAndActionNames())};
        }
        steps.push_back(std::move(step));
    }
    return std::nullopt;
}

}  // namespace orv::cli
