// "Select and Zoom": the cursor, or a part, and the zoom of the current wave, typed as times
// from its start. The dialog stays open beside the frame; "Apply" reads the fields for the
// wave that is current at that moment and asks the frame to show the result, "Close" hides
// it. The fields go through the shared form logic (the option follows the field last typed
// into, "In " + field + ": " + message under "Input Error"), then the dialog's own checks:
//   every position that counts must lie before the end of the wave,
//   with "Part" its begin before its end, with "Zoomed" the zoom's begin before its end.
// A time becomes a sample position as every position does: trunc(seconds x frequency).
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include <QDialog>

#include "document/record_form.h"

class QCheckBox;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace orv {

inline constexpr std::string_view kSelZoomAfterEndMessage =
    "Must be prior before the end of the wave.";
inline constexpr std::string_view kSelZoomPartOrderMessage =
    "Part Begin must be prior before Part End.";
inline constexpr std::string_view kSelZoomZoomOrderMessage =
    "Zoom Begin must be prior before Zoom End.";

struct SelZoomRecord {
    enum : std::uint8_t { kCursor = 0, kPart = 1 };

    SelZoomRecord();
    static const RecordTable<SelZoomRecord>& table();

    std::uint8_t select;   // kCursor, kPart
    ValueRecord cursorAt;  // seconds
    ValueRecord partBegin;
    ValueRecord partEnd;
    bool zoomed;
    ValueRecord zoomBegin;
    ValueRecord zoomEnd;
};

// What "Apply" asks of the current window, in samples.
struct SelZoomRequest {
    bool part = false;          // select [begin, end); else put the cursor at `cursor`
    std::int32_t cursor = 0;
    std::int32_t begin = 0, end = 0;
    bool zoomed = false;        // show [zoomBegin, zoomEnd); else the whole wave
    std::int32_t zoomBegin = 0, zoomEnd = 0;
};

// The wave "Apply" works on.
struct SelZoomTarget {
    std::int32_t values = 0;
    std::int32_t freq = 0;
};

// The record's times as sample positions of a wave of `values` samples at `freq`.
SelZoomRequest selZoomRequest(const SelZoomRecord& record, std::int32_t freq, std::int32_t values);

class TDlgSelZoom final : public QDialog {
    Q_OBJECT
public:
    // `target` tells at each "Apply" which wave is current; nothing happens without one.
    explicit TDlgSelZoom(std::function<std::optional<SelZoomTarget>()> target,
                         QWidget* parent = nullptr);

    const SelZoomRecord& record() const { return record_; }
    const FormState& state() const { return state_; }

    // "Apply": reads and checks the fields; a failure is shown and the failed field gets the
    // focus, else the record takes the fields and applyRequested goes out.
    void apply();

signals:
    void applyRequested(const orv::SelZoomRequest& request);
    void helpRequested(int context);

private:
    // The controls follow the state; the field typed into keeps its text as typed.
    void showState(int typedField = kNoField);
    QLineEdit* edit(int field) const;

    std::function<std::optional<SelZoomTarget>()> target_;
    SelZoomRecord record_;
    FormState state_;
    QRadioButton* optCursor_;
    QRadioButton* optPart_;
    QCheckBox* chkZoomed_;
    std::vector<QLineEdit*> edits_;  // by field index; nullptr for the option and the flag
};

}  // namespace orv
