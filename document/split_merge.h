// Splitting one wave into new waves and merging two waves into one: the new documents, built
// without windows. The desktop program places a window for each and closes the sources;
// orvasto-cli runs the same steps.
//
// Choices of this program where the design leaves them open:
//   - Split pieces and merged waves are new documents "NONAME" with the source's sample width
//     (a merge: the width chosen), state New, cursor at 0.
//   - SplitV: the left channel is the first (upper) piece.
//   - A horizontal merge converts each wave to the chosen channels (a mono wave becomes two
//     equal channels; a stereo wave keeps its left one), frequency (resampled) and width.
//     Its defaults, taken from the two waves where they differ, lose nothing: stereo when
//     either is, the higher frequency, 16 bits when either has them.
//   - A vertical merge takes the mono wave of each (a stereo wave gives its left channel),
//     resamples both to the chosen frequency, then makes the lengths equal: silence added at
//     the begin or at the end of the shorter one, or the shorter or the longer one stretched
//     (resampled in time) to the other's length.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/cancel.h"
#include "document/field_table.h"
#include "document/record_form.h"
#include "document/unit_wave.h"

namespace orv {

inline constexpr std::string_view kWavesMustDifferMessage = "The chosen Waves must be different";

// "Split Horizontally".
struct SplitHorRecord {
    enum : std::uint8_t { kThree = 0, kTwoInclusive = 1, kTwoExclusive = 2 };
    SplitHorRecord();
    static const RecordTable<SplitHorRecord>& table();
    std::uint8_t result;
};

// "Merge Horizontally": "First" followed by "Last", converted to the properties chosen.
struct MergeHorRecord {
    enum : std::uint8_t { kMono = 0, kStereo = 1 };
    enum : std::uint8_t { k8Bits = 0, k16Bits = 1 };
    enum : std::uint8_t { kDisplayFirst = 0, kDisplayLast = 1 };
    MergeHorRecord();
    static const RecordTable<MergeHorRecord>& table();
    // The properties where the two waves differ, chosen so that nothing is lost.
    void takeDefaultsFrom(const TUnitWave& first, const TUnitWave& last);
    WaveFileProps props() const;
    std::string first;
    std::string last;
    std::uint8_t channels;
    std::int32_t freq;
    std::uint8_t bits;
    std::uint8_t display;
};

// "Merge Vertically": "Left" and "Right" become the channels of one stereo wave.
struct MergeVertRecord {
    enum : std::uint8_t {
        kSilenceAtBegin = 0,
        kSilenceAtEnd = 1,
        kStretchShortest = 2,
        kStretchLongest = 3,
    };
    enum : std::uint8_t { k8Bits = 0, k16Bits = 1 };
    enum : std::uint8_t { kDisplayLeft = 0, kDisplayRight = 1 };
    MergeVertRecord();
    static const RecordTable<MergeVertRecord>& table();
    void takeDefaultsFrom(const TUnitWave& left, const TUnitWave& right);
    std::string left;
    std::string right;
    std::uint8_t lengths;
    std::int32_t freq;
    std::uint8_t bits;
    std::uint8_t display;
};

// Each returns the new documents, or nothing when the cancel flag stopped the work (the
// sources are untouched either way).
using NewDocuments = std::vector<std::unique_ptr<TUnitWave>>;

// Two mono documents, left channel first. The source must be stereo.
std::optional<NewDocuments> splitVertically(const TUnitWave& source, CancelFlag& cancel);
// An empty part cuts at the cursor into two; otherwise the choice decides. The part must
// lie strictly inside the wave (the command is offered only then).
std::optional<NewDocuments> splitHorizontally(const TUnitWave& source,
                                              const SplitHorRecord& choice, CancelFlag& cancel);
std::optional<NewDocuments> mergeHorizontally(const TUnitWave& first, const TUnitWave& last,
                                              const MergeHorRecord& choice, CancelFlag& cancel);
std::optional<NewDocuments> mergeVertically(const TUnitWave& left, const TUnitWave& right,
                                            const MergeVertRecord& choice, CancelFlag& cancel);

}  // namespace orv
