#include "document/wave_comparison.h"

#include "core/platform.h"
#include "document/workspace.h"
#include "units/value_writer.h"

namespace orv {

namespace {

// The cells of one wave, in the order of the rows after the heading.
std::vector<std::string> cellsOf(const TUnitWave* w) {
    if (!w) return std::vector<std::string>(4);
    return {
        w->getMonoStereo() == 2 ? "Stereo" : "Mono",
        std::to_string(w->getFreq()) + " Hz",
        w->getBytesPSample() == 1 ? "8 Bits" : "16 Bits",
        writeTime(w->lengthSeconds()),
    };
}

}  // namespace

WaveComparison compareWaves(const TUnitWave* a, const TUnitWave* b, std::string_view headingA,
                            std::string_view headingB) {
    static const char* const kRows[] = {"Mono/Stereo", "Frequency", "Bits", "Length"};
    const std::vector<std::string> ca = cellsOf(a), cb = cellsOf(b);
    WaveComparison table;
    table.push_back({"", std::string(headingA), std::string(headingB)});
    for (std::size_t r = 0; r < std::size(kRows); ++r) table.push_back({kRows[r], ca[r], cb[r]});
    return table;
}

namespace {
std::vector<int> waveFields(const FormSpec& spec) {
    std::vector<int> waves;
    for (std::size_t i = 0; i < spec.fields.size() && waves.size() < 2; ++i)
        if (spec.fields[i].kind == FieldKind::WaveName) waves.push_back(int(i));
    ORV_ASSERT_TEXT(waves.size() == 2, "two wave fields", "Main");
    return waves;
}
}  // namespace

void presetMergeWaves(const FormSpec& spec, FormState& state, const Workspace& workspace,
                      const TUnitWave* active) {
    const std::vector<int> waves = waveFields(spec);
    const std::vector<std::string> names = workspace.waveNames();
    auto known = [&](int field) {
        return workspace.findByName(state.fields[std::size_t(field)].text) != nullptr;
    };
    auto choose = [&](int field, const std::string& name) {
        chooseWave(spec, state, field, name, &workspace);
    };
    if (!known(waves[0])) {
        if (active && !active->getName().empty())
            choose(waves[0], active->getName());
        else if (!names.empty())
            choose(waves[0], names.front());
    }
    if (!known(waves[1]))
        for (const std::string& name : names)
            if (name != state.fields[std::size_t(waves[0])].text) {
                choose(waves[1], name);
                break;
            }
}

const TUnitWave* mergeDisplaySource(const FormSpec& spec, const FormState& state,
                                    const Workspace& workspace) {
    const std::vector<int> waves = waveFields(spec);
    int choice = 0;
    for (std::size_t i = 0; i < spec.fields.size() && i < state.fields.size(); ++i)
        if (captionMatches(spec.fields[i].caption, "Use Display Properties of"))
            choice = state.fields[i].index;
    const int field = waves[choice == 1 ? 1 : 0];
    return workspace.findByName(state.fields[std::size_t(field)].text);
}

std::function<WaveComparison(const FormState&)> mergeSideTable(const Workspace& workspace,
                                                               const FormSpec& spec) {
    const std::vector<int> waves = waveFields(spec);
    return [&workspace, &spec, a = waves[0], b = waves[1]](const FormState& state) {
        auto chosen = [&](int field) -> const TUnitWave* {
            if (std::size_t(field) >= state.fields.size()) return nullptr;
            return workspace.findByName(state.fields[std::size_t(field)].text);
        };
        return compareWaves(chosen(a), chosen(b), plainCaption(spec.fields[std::size_t(a)].caption),
                            plainCaption(spec.fields[std::size_t(b)].caption));
    };
}

}  // namespace orv
