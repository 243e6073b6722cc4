// TMDIChildWave: the child window of one wave document. It shows the waveform that
// render/wave_painter.h paints into our own raster (a QImage wraps the raster, nothing is
// converted), takes the mouse and the keys to place the cursor and select, zooms, and lets
// the user draw an empty mono wave by hand.
//
// Picture: the raster always has the size of the client area (the window less the scroll
// bar while zoomed). A new sound, a resize, a scroll or new settings paint it whole at the
// next paint event; a change of cursor or selection paints only the columns whose look
// changed (view/zoom_geometry.h), at once. The document reports the samples whose selected
// state changed, but going from no part to a part (or back) it reports the complement (the
// whole wave is its range then), so the window works out the columns from the part and
// cursor it painted last and the ones the document has now.
//
// Peaks: after every new sound a summary of it is built on a thread of its own; a newer
// sound cancels the build of the older one. Until it is ready the painter reads the samples
// directly, which paints the same picture.
//
// Mouse (left button, waveform, a wave of at least 2 samples; s is the sample under the
// pointer, 0 .. n - 1): a click puts the cursor at s with nothing selected; Shift+click
// stretches the part from its fixed end to s; Ctrl+click keeps the end of the part nearer
// to s (the upper one on a tie) and selects from it to s. The cursor follows s, and so does
// the part while the button is held, the pointer kept inside the client area. Every move
// shows the time under the pointer (signal pointerPosition; empty when it leaves).
//
// Keys (none with Alt): Left/Right move one column, Up/Down ten, Home/End to 0 / n. Alone
// they move the cursor with nothing selected; with Shift the end of the part at the cursor,
// with Ctrl the other end, with both the whole part, which keeps its length. Ctrl+PgUp and
// Ctrl+PgDn move the cursor a page (the client width) back or on, nothing selected, and a
// zoomed view turns the same page. A step of k columns goes to the sample in the middle of
// the column k away; where a column is narrower than a sample it moves one sample at least.
// A zoomed view scrolls to keep the moved end in sight; the mouse wheel scrolls it too.
//
// Zoom: ZoomIn shows the part across the window (R = trunc(n W / (hi - lo)), P = trunc(lo R
// / n), scroll step W / 10); the window remembers the samples it shows, and a resize or a
// sound of another length fits the scroll bar to them again. An operation that changes the
// length is bracketed by beginKeepZoom / endKeepZoom: the view then keeps the same margins
// around the part the operation made, cut at the wave's end; an empty wave leaves zoom.
//
// Vold mode (showVold / showWave): the window shows the Volume Diagram of its wave
// (render/vold_picture.h) instead of the waveform, over the same columns. The picture is
// computed on a thread of the window's own, which holds the sound it reads; a timer shows
// the columns as they become final. A new sound, new Vold settings, a resize, a scroll or a
// zoom cancel that computation at once and start a new one; a change of cursor or selection
// repaints only the columns it touched from the brightness already computed. The pointer
// shows the time and the frequency under it. A freehand drawing always shows as a waveform.
//
// Freehand drawing (view/wave_drawing.h): while it runs the window shows the drawing, the
// pointer is a pencil, and the mouse draws instead of selecting. endDrawing hands the drawn
// sound to the caller, who gives it to the document (with an undo snapshot first); the
// window never changes the document's sound itself.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <thread>

#include <QWidget>

#include "document/unit_wave.h"
#include "render/canvas.h"
#include "render/peak_summary.h"
#include "render/vold_picture.h"
#include "render/wave_painter.h"
#include "view/wave_drawing.h"
#include "view/zoom_geometry.h"

class QScrollBar;
class QTimer;

namespace orv {

class TMDIChildWave final : public QWidget, public WaveView {
    Q_OBJECT
public:
    // Attaches itself as the unit's view; the unit must outlive the window or be released
    // with detach() first. Starts with the default settings (setDefaultSettings).
    explicit TMDIChildWave(TUnitWave& unit, QWidget* parent = nullptr);
    ~TMDIChildWave() override;

    TUnitWave* unit() const { return unit_; }
    // The document is going away: forget it.
    void detach();

    // Asked before the window closes; false keeps it open (the frame's save question).
    void setCloseGuard(std::function<bool(TMDIChildWave&)> guard) { guard_ = std::move(guard); }

    // The title of the window: the file's own name, and the registered name in brackets.
    QString title() const;

    // ---- what the enabling rules read --------------------------------------------------
    bool drawing() const { return drawing_ != nullptr; }
    bool smoothDrawing() const { return drawing_ && drawing_->kind() == DrawKind::Smooth; }
    // The window shows the Volume Diagram instead of the waveform.
    bool showsVold() const { return vold_; }
    // 0 while not zoomed, else how many times wider than the window the wave is (at least 1).
    int zoomFactor() const;

    // ---- settings ("Wave View") ----------------------------------------------------------
    const WaveViewRecord& settings() const { return settings_; }
    void setSettings(const WaveViewRecord& settings);
    // The settings windows opened from now on start with ("Use As Default"); for this run.
    static const WaveViewRecord& defaultSettings();
    static void setDefaultSettings(const WaveViewRecord& settings);

    // ---- the Volume Diagram ("Volume Diagram") ------------------------------------------------
    // ViewVold: shows the diagram with these settings (computing it again when they differ).
    void showVold(const VoldViewRecord& settings);
    // ViewWave: back to the waveform (a computation under way is cancelled).
    void showWave();
    const VoldViewRecord& voldSettings() const { return voldSettings_; }
    void setVoldSettings(const VoldViewRecord& settings);
    static const VoldViewRecord& defaultVoldSettings();
    static void setDefaultVoldSettings(const VoldViewRecord& settings);
    // What the Vold picture is made of for the present state.
    VoldPaintInput voldPaintInput() const;
    // The picture being computed or computed last; nullptr outside Vold mode or before the
    // first paint in it.
    const VoldPicture* voldPicture() const { return voldPicture_.get(); }
    // Every column of the present picture is computed and on the raster.
    bool voldComplete() const;
    // A thread computes the picture now.
    bool voldComputing() const { return voldWorker_.joinable(); }

    // ---- zoom ------------------------------------------------------------------------------
    bool zoomed() const { return zoomed_; }
    // ZoomIn: with samples and a part, shows the part; else nothing.
    void zoomIn();
    // NoZoom: with samples and zoomed, shows the whole wave; else nothing.
    void noZoom();
    // Shows [begin, end) (cut to the wave); an empty range or an empty wave leaves zoom.
    void zoomTo(double begin, double end);
    std::int64_t scrollRange() const { return zoomed_ ? fit_.range : 0; }
    std::int64_t scrollPosition() const { return zoomed_ ? fit_.pos : 0; }
    // The scroll bar's step: W / 10 columns.
    int scrollStep() const;
    // Scrolls a zoomed view to column `pos` of the range (kept within it).
    void scrollTo(std::int64_t pos);
    QScrollBar* scrollBar() const { return scroll_; }
    // The samples the window shows, as reals.
    ViewSpan visibleRange() const;
    // Around an operation that may change the length; asserts that the two alternate.
    void beginKeepZoom();
    void endKeepZoom();

    // ---- freehand drawing --------------------------------------------------------------------
    // Starts a drawing of that kind; asserts that none runs.
    void beginDrawing(DrawKind kind);
    void setDrawingKind(DrawKind kind);
    // Ends the drawing (asserts that one runs) and hands its sound over, or nullptr when
    // nothing was drawn.
    std::unique_ptr<Sound> endDrawing();
    const WaveDrawing* currentDrawing() const { return drawing_.get(); }

    // ---- the picture -------------------------------------------------------------------------
    // The client area: the window less the scroll bar while zoomed.
    QRect clientRect() const;
    // What the painter is given for the present state.
    WavePaintInput paintInput() const;
    // The raster as the window shows it (painted first when it is out of date).
    const Canvas& picture();
    // The columns the last change of cursor or selection painted, as [x1, x2) ranges.
    const std::vector<std::pair<int, int>>& lastRepainted() const { return lastRepainted_; }
    // The peak summary of the present sound is ready.
    bool peaksReady() const;

    // ---- the play cursor ---------------------------------------------------------------------
    // A line across the picture at `sample`, a real (it glides between samples as the
    // sound plays), or none when negative. Only the columns it leaves and enters repaint; a
    // zoomed view turns the page when the line runs past its right edge.
    void setPlayCursor(double sample);
    double playCursor() const { return playCursor_; }
    // Its column in the client area; -1 when it is not shown or lies outside the view.
    int playCursorColumn() const;

    // ---- WaveView --------------------------------------------------------------------------
    void repaint(std::int32_t begin, std::int32_t end) override;
    void repaintAll() override;
    void moveCursor(std::int32_t pos) override;
    void showRange(std::int32_t begin, std::int32_t end) override;
    void refreshStatus(const TUnitWave& unit) override;
    void unitGone() override;

signals:
    // The status bar should show the unit again (something about it changed).
    void statusChanged(orv::TMDIChildWave* child);
    // The window closed for good; the frame closes the document.
    void closed(orv::TMDIChildWave* child);
    // The time under the pointer, for the status bar; empty when the pointer left.
    void pointerPosition(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    std::int32_t values() const;
    const Sound* shownSound() const;
    SelectionMarks marks() const;
    void invalidate();
    // Paints the columns the selection change touched, if the picture is up to date.
    void syncSelection();
    void layoutScrollBar();
    void showScroll(bool on);
    void applyFit(ZoomFit fit);
    void leaveZoom();
    void refitZoom();
    void ensureVisible(std::int32_t pos);
    std::int32_t stepColumns(std::int32_t pos, double columns) const;
    std::int32_t sampleUnder(int x) const;
    void select(QMouseEvent* event, bool press);
    void draw(QMouseEvent* event, bool press);
    void startPeaks();
    void stopPeaks();
    bool voldShown() const { return vold_ && !drawing_ && unit_; }
    void startVold();
    void stopVold();
    void pollVold();

    TUnitWave* unit_;
    std::function<bool(TMDIChildWave&)> guard_;
    WaveViewRecord settings_;
    QScrollBar* scroll_;

    Canvas canvas_;
    bool stale_ = true;
    SelectionMarks painted_;
    std::vector<std::pair<int, int>> lastRepainted_;

    bool dragging_ = false;
    double playCursor_ = -1.0;
    int playColumn_ = -1;  // where the play cursor was drawn last

    bool zoomed_ = false;
    ZoomFit fit_;
    ViewSpan zoomSpan_;            // the samples shown while zoomed
    std::int32_t fitValues_ = 0;   // the length and width fit_ was made for
    int fitWidth_ = 0;
    std::int64_t scrollScale_ = 1; // columns per scroll bar unit (a scroll bar counts in int)
    bool scrolling_ = false;       // the window moves the scroll bar itself
    int OldZoomDepth = 0;
    double beginOffset_ = 0.0, endOffset_ = 0.0;

    std::unique_ptr<WaveDrawing> drawing_;

    // The summary and the sound it reads; the build under way and its cancel flag.
    std::shared_ptr<const Sound> summarySound_;
    std::shared_ptr<const PeakSummary> summary_;
    std::shared_ptr<const Sound> buildingFor_;
    std::shared_ptr<CancelFlag> buildCancel_;
    std::thread builder_;

    // Vold mode: the picture, the sound it reads, its computation and cancel flag, and how
    // many of its columns the raster shows in colour.
    bool vold_ = false;
    VoldViewRecord voldSettings_;
    std::unique_ptr<VoldPicture> voldPicture_;
    std::shared_ptr<const Sound> voldSound_;
    std::unique_ptr<CancelFlag> voldCancel_;
    std::atomic<bool> voldDone_{false};
    std::thread voldWorker_;
    int voldPainted_ = 0;
    QTimer* voldTimer_;
};

}  // namespace orv
