#include "core/filter_passes.h"

namespace orv {

namespace {

SoundPtr onePass(CancelFlag* cancel, const Sound& sound, const HighLowFilter& f, int countBer,
                 int countCmd, std::int32_t begin, std::int32_t end) {
    if (f.filterEnv)
        return sound.ApplyFilterEnv(cancel, f.filterEnv, f.envelope, f.factor, countBer,
                                    countCmd, begin, end);
    return sound.ApplyFilter(cancel, f.filter, f.seconds, f.factor, countBer, countCmd, begin,
                             end);
}

}  // namespace

SoundPtr FilterHighLow(CancelFlag* cancel, const Sound& sound, const HighLowFilter& f,
                       int count, bool maximizeVolume, std::int32_t begin, std::int32_t end) {
    if (!maximizeVolume) return onePass(cancel, sound, f, count, count, begin, end);

    std::int32_t maxEnd = end;
    SoundPtr current = sound.MaxVolumeSoft(cancel, begin, maxEnd);
    for (int pass = 0; pass < count && current; ++pass) {
        // One pass, its coefficient still spread over all `count` passes.
        SoundPtr next = onePass(cancel, *current, f, count, 1, begin, end);
        if (!next) return nullptr;
        std::int32_t passEnd = end;
        next->MaxVolumeSoftInPlace(cancel, begin, passEnd);
        current = std::move(next);
    }
    if (isCancelled(*cancel)) return nullptr;
    return current;
}

}  // namespace orv
