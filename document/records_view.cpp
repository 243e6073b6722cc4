#include "document/records_view.h"


namespace orv {

WaveViewRecord::WaveViewRecord() { table().applyDefaults(*this); }

// Defaults: teal on white for a mono wave; left red and right grey, so that a selected
// stereo part (background and single-wave colour exchanged, left and right exchanged) still
// shows both channels on its teal background; a black cursor reads on every one of them.
// The grid is on, and a stereo wave shows as two bands, as most editors show it.
const RecordTable<WaveViewRecord>& WaveViewRecord::table() {
    using R = WaveViewRecord;
    static const RecordTable<R> t("Wave View", 23, {
        countField("Values per Pixel:", &R::valuesPerPixel, 15).named("Values per Pixel"),
        factorField("Strength:", &R::strength, 1.0, kCheckZeroToOne)
            .named("Strength")
            .in("Draw", kDrawPoints),
        optionField("Draw", &R::draw, {"Lines", "Points"}, kDrawLines),
        optionField("Distribution", &R::distribution, {"Constant", "Random", "Peaks"},
                    kPickConstant),
        colourField("Background", &R::background, kWhite),
        colourField("Single Wave", &R::singleWave, kTeal),
        colourField("Left", &R::left, kRed),
        colourField("Right", &R::right, kGrey),
        colourField("Grid", &R::grid, kGrey).in("Draw Grid", 1),
        colourField("Cursor", &R::cursor, kBlack),
        optionField("Combine", &R::combine, {"Mixed", "Left at Front", "Right at Front"},
                    kCombineMixed),
        flagField("Draw Grid", &R::drawGrid, true),
        flagField("2 Single Waves when Stereo", &R::twoSingleWaves, true),
    });
    return t;
}

}  // namespace orv
