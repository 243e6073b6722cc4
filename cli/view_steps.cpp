#include "cli/view_steps.h"

#include <algorithm>

#include "core/platform.h"
#include "render/png_writer.h"
#include "render/vold_picture.h"
#include "render/wave_painter.h"

namespace orv::cli {

namespace {

FormError refusal(std::string_view word, std::string_view reason) {
    FormError e;
    e.caption = std::string(kUsageErrorCaption);
    e.message = std::string(word) + " is not available now: " + std::string(reason) + ".";
    return e;
}

// The scroll bar of a window W pixels wide zoomed on [lo, hi): its range and position.
ViewSpan zoomedSpan(std::int32_t n, std::int32_t lo, std::int32_t hi, int width) {
    if (n <= 0 || hi <= lo) return {};
    const std::int64_t range = std::int64_t(double(n) * width / double(hi - lo));
    const std::int64_t pos = std::int64_t(double(lo) * double(range) / double(n));
    return visibleSpan(n, true, range, pos, width);
}

}  // namespace

bool ViewSteps::isViewAction(std::string_view word) {
    return word == "ViewWave" || word == "ViewVold" || word == "ZoomIn" || word == "NoZoom";
}

std::optional<FormError> ViewSteps::run(std::string_view word, const TypedFields& fields,
                                        TUnitWave& unit, const FormContext& context) {
    WindowView& v = views_[&unit];
    std::optional<FormError> error;
    if (word == "ViewWave") {
        WaveViewRecord record = v.wave;
        if (!(error = applyTypedFields(record, fields, context))) {
            v.wave = record;
            v.showsVold = false;
        }
    } else if (word == "ViewVold") {
        VoldViewRecord record = v.vold;
        if (!(error = applyTypedFields(record, fields, context))) {
            v.vold = record;
            v.showsVold = true;
        }
    } else if (word == "ZoomIn") {
        if (unit.values() == 0)
            error = refusal(word, "the wave has no samples");
        else if (!unit.hasSelection())
            error = refusal(word, "nothing is selected");
        else {
            v.zoomed = true;
            v.zoomBegin = unit.selBegin();
            v.zoomEnd = unit.selEnd();
        }
    } else {
        if (!v.zoomed)
            error = refusal(word, "the wave is not zoomed");
        else
            v.zoomed = false;
    }
    if (error) error->show();
    return error;
}

namespace {
// The part's bounds; an empty part lies at the cursor.
std::int32_t partBegin(const TUnitWave& u) { return std::min(u.getCursor(), u.getSelEndPos()); }
std::int32_t partEnd(const TUnitWave& u) { return std::max(u.getCursor(), u.getSelEndPos()); }
}  // namespace

void ViewSteps::beforeOperation(const TUnitWave& unit) {
    const WindowView& v = views_[&unit];
    beginOffset_ = v.zoomBegin - partBegin(unit);
    endOffset_ = v.zoomEnd - partEnd(unit);
}

void ViewSteps::afterOperation(const TUnitWave& unit) {
    WindowView& v = views_[&unit];
    if (!v.zoomed) return;
    const std::int32_t n = unit.values();
    const std::int32_t begin = std::clamp(partBegin(unit) + beginOffset_, 0, n);
    const std::int32_t end = std::min(n, partEnd(unit) + endOffset_);
    if (n == 0 || end <= begin) {
        v.zoomed = false;  // an empty wave leaves zoom
        return;
    }
    v.zoomBegin = begin;
    v.zoomEnd = end;
}

bool ViewSteps::render(const TUnitWave& unit, const std::string& file, int width, int height,
                       std::string& reason) {
    const WindowView& v = views_[&unit];
    const std::int32_t n = unit.values();
    const ViewSpan span = v.zoomed ? zoomedSpan(n, v.zoomBegin, std::min(v.zoomEnd, n), width)
                                   : ViewSpan{};
    Canvas canvas(width, height);
    if (v.showsVold) {
        VoldPaintInput in;
        in.sound = unit.getSound();
        in.settings = v.vold;
        in.view = span;
        in.clientWidth = width;
        in.clientHeight = height;
        VoldPicture picture(in);
        CancelFlag never{0};
        picture.compute(never);
        paintVoldColumns(canvas, picture, 0, width, unit.getCursor(), unit.getSelEndPos());
    } else {
        WavePaintInput in;
        in.sound = unit.getSound();
        in.settings = v.wave;
        in.view = span;
        in.cursor = unit.getCursor();
        in.selEndPos = unit.getSelEndPos();
        in.clientWidth = width;
        in.clientHeight = height;
        paintWave(canvas, in);
    }
    return writePng(canvas, file, reason);
}

}  // namespace orv::cli
