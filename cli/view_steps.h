// What the command line keeps of each wave's window: the view settings (wave or Vold
// picture, each with its record), whether it is zoomed and on which part. ViewWave and
// ViewVold set the settings from "Caption=Value" pairs and choose the picture, ZoomIn and
// NoZoom zoom as the window does, and render paints the wave as a window of a given client
// size would show it, with the same painters, into a PNG file.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "document/records_view.h"
#include "document/records_vold.h"
#include "document/unit_wave.h"

namespace orv::cli {

struct WindowView {
    WaveViewRecord wave;
    VoldViewRecord vold;
    bool showsVold = false;
    bool zoomed = false;
    std::int32_t zoomBegin = 0;  // the part zoomed into, in samples
    std::int32_t zoomEnd = 0;
};

class ViewSteps {
public:
    // The steps that are window actions here.
    static bool isViewAction(std::string_view word);

    // ViewWave, ViewVold, ZoomIn or NoZoom on `unit`; the refusal (shown already) or
    // nothing.
    std::optional<FormError> run(std::string_view word, const TypedFields& fields,
                                 TUnitWave& unit, const FormContext& context);
    // Paints `unit` into `file`; the reason when that failed.
    bool render(const TUnitWave& unit, const std::string& file, int width, int height,
                std::string& reason);

    // An operation that may change the length keeps the zoom as the window keeps it: the
    // margins around the part stay, cut at the end of the wave.
    void beforeOperation(const TUnitWave& unit);
    void afterOperation(const TUnitWave& unit);

    const WindowView& of(const TUnitWave& unit) { return views_[&unit]; }
    // A wave that closed.
    void forget(const TUnitWave& unit) { views_.erase(&unit); }

private:
    std::map<const TUnitWave*, WindowView> views_;
    std::int32_t beginOffset_ = 0;  // visible begin - part begin, before the operation
    std::int32_t endOffset_ = 0;    // visible end - part end
};

}  // namespace orv::cli
