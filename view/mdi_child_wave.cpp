#include "view/mdi_child_wave.h"

#include <algorithm>
#include <cmath>

#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QRegion>
#include <QScrollBar>
#include <QTimer>
#include <QWheelEvent>

#include "core/platform.h"
#include "units/value_writer.h"
#include "view/draw_cursor.h"

namespace orv {

namespace {

WaveViewRecord& defaults() {
    static WaveViewRecord record;
    return record;
}

VoldViewRecord& voldDefaults() {
    static VoldViewRecord record;
    return record;
}

// How often the window looks for newly computed Vold columns.
constexpr int kVoldPollMs = 15;

}  // namespace

TMDIChildWave::TMDIChildWave(TUnitWave& unit, QWidget* parent)
    : QWidget(parent), unit_(&unit), settings_(defaults()),
      scroll_(new QScrollBar(Qt::Horizontal, this)), voldSettings_(voldDefaults()),
      voldTimer_(new QTimer(this)) {
    setObjectName("TMDIChildWave");
    setMinimumSize(240, 120);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    scroll_->setObjectName("HorzScrollBar");
    scroll_->hide();
    connect(scroll_, &QScrollBar::valueChanged, this, [this](int value) {
        if (scrolling_) return;
        const std::int64_t last = std::max<std::int64_t>(0, fit_.range - clientRect().width());
        scrollTo(value >= scroll_->maximum() ? last : std::int64_t(value) * scrollScale_);
    });
    voldTimer_->setInterval(kVoldPollMs);
    connect(voldTimer_, &QTimer::timeout, this, &TMDIChildWave::pollVold);
    unit_->setView(this);
    setWindowTitle(title());
    startPeaks();
}

TMDIChildWave::~TMDIChildWave() {
    stopVold();
    stopPeaks();
    if (unit_ && unit_->getView() == this) unit_->setView(nullptr);
}

void TMDIChildWave::detach() {
    stopVold();
    voldPicture_.reset();
    voldSound_.reset();
    stopPeaks();
    if (unit_ && unit_->getView() == this) unit_->setView(nullptr);
    unit_ = nullptr;
    summary_.reset();
    summarySound_.reset();
}

void TMDIChildWave::unitGone() {
    unit_ = nullptr;
    detach();
}

QString TMDIChildWave::title() const {
    if (!unit_) return {};
    QString t = QFileInfo(QString::fromStdString(unit_->getFileName())).fileName();
    if (!unit_->getName().empty()) t += " [" + QString::fromStdString(unit_->getName()) + "]";
    return t;
}

int TMDIChildWave::zoomFactor() const {
    if (!zoomed_) return 0;
    const std::int64_t w = std::max(1, clientRect().width());
    return int(std::clamp<std::int64_t>(fit_.range / w, 1, 1 << 30));
}

// ---- settings -------------------------------------------------------------------------------

void TMDIChildWave::setSettings(const WaveViewRecord& settings) {
    settings_ = settings;
    invalidate();
}

const WaveViewRecord& TMDIChildWave::defaultSettings() { return defaults(); }

void TMDIChildWave::setDefaultSettings(const WaveViewRecord& settings) { defaults() = settings; }

// ---- the Volume Diagram ------------------------------------------------------------------------

void TMDIChildWave::showVold(const VoldViewRecord& settings) {
    // The same diagram again: the picture there, or the one being made, stays.
    if (vold_ && !stale_ && voldPicture_ && settings == voldSettings_) return;
    vold_ = true;
    voldSettings_ = settings;
    invalidate();
}

void TMDIChildWave::showWave() {
    if (!vold_) return;
    vold_ = false;
    stopVold();
    voldPicture_.reset();
    voldSound_.reset();
    invalidate();
}

void TMDIChildWave::setVoldSettings(const VoldViewRecord& settings) {
    voldSettings_ = settings;
    if (vold_) invalidate();
}

const VoldViewRecord& TMDIChildWave::defaultVoldSettings() { return voldDefaults(); }

void TMDIChildWave::setDefaultVoldSettings(const VoldViewRecord& settings) {
    voldDefaults() = settings;
}

VoldPaintInput TMDIChildWave::voldPaintInput() const {
    VoldPaintInput in;
    in.sound = unit_ ? unit_->getSound() : nullptr;
    in.settings = voldSettings_;
    const QRect client = clientRect();
    in.clientWidth = client.width();
    in.clientHeight = client.height();
    if (zoomed_) in.view = visibleSpan(values(), true, fit_.range, fit_.pos, in.clientWidth);
    return in;
}

bool TMDIChildWave::voldComplete() const {
    return voldShown() && !stale_ && voldPicture_ && !voldWorker_.joinable() &&
           voldPainted_ == voldPicture_->width();
}

void TMDIChildWave::startVold() {
    stopVold();
    // The thread reads this sound; holding it keeps it alive whatever the document does.
    voldSound_ = unit_->soundRef();
    VoldPaintInput in = voldPaintInput();
    in.sound = voldSound_.get();
    voldPicture_ = std::make_unique<VoldPicture>(in);
    const VoldPicture& picture = *voldPicture_;
    canvas_.resize(picture.width(), picture.height());
    paintVoldColumns(canvas_, picture, 0, picture.width(), unit_->getCursor(),
                     unit_->getSelEndPos());
    voldPainted_ = 0;
    voldDone_.store(false, std::memory_order_relaxed);
    voldCancel_ = std::make_unique<CancelFlag>(0);
    // The destructor, stopVold and every restart join this thread before the picture, the
    // flag or the window go.
    voldWorker_ = std::thread([this, picture = voldPicture_.get(), cancel = voldCancel_.get()] {
        picture->compute(*cancel);
        voldDone_.store(true, std::memory_order_release);
    });
    voldTimer_->start();
}

void TMDIChildWave::stopVold() {
    if (voldCancel_) setCancelled(*voldCancel_);
    if (voldWorker_.joinable()) voldWorker_.join();
    voldTimer_->stop();
    voldCancel_.reset();
}

void TMDIChildWave::pollVold() {
    if (!voldPicture_ || !voldShown() || stale_) {
        voldTimer_->stop();
        return;
    }
    // Read before the columns: once the thread is done, every column it made is counted.
    const bool done = voldDone_.load(std::memory_order_acquire);
    const VoldPicture& picture = *voldPicture_;
    const int ready = picture.columnsReady();
    if (ready > voldPainted_) {
        paintVoldColumns(canvas_, picture, voldPainted_, ready, unit_->getCursor(),
                         unit_->getSelEndPos());
        update(QRect(voldPainted_, 0, ready - voldPainted_, picture.height()));
        voldPainted_ = ready;
    }
    if (done) {
        if (voldWorker_.joinable()) voldWorker_.join();
        voldTimer_->stop();
        voldCancel_.reset();
    }
}

// ---- state the picture is made of -------------------------------------------------------------

std::int32_t TMDIChildWave::values() const { return unit_ ? unit_->values() : 0; }

const Sound* TMDIChildWave::shownSound() const {
    if (drawing_) return &drawing_->sound();
    return unit_ ? unit_->getSound() : nullptr;
}

SelectionMarks TMDIChildWave::marks() const {
    if (!unit_ || drawing_) return {};
    const std::int32_t c = unit_->getCursor(), e = unit_->getSelEndPos();
    return SelectionMarks{std::min(c, e), std::max(c, e), c};
}

QRect TMDIChildWave::clientRect() const {
    const int bar = zoomed_ ? scroll_->sizeHint().height() : 0;
    return QRect(0, 0, width(), std::max(0, height() - bar));
}

WavePaintInput TMDIChildWave::paintInput() const {
    WavePaintInput in;
    in.sound = shownSound();
    in.settings = settings_;
    const QRect client = clientRect();
    in.clientWidth = client.width();
    in.clientHeight = client.height();
    if (drawing_ || !unit_) return in;  // a drawing shows whole, without marks
    in.cursor = unit_->getCursor();
    in.selEndPos = unit_->getSelEndPos();
    if (zoomed_) in.view = visibleSpan(values(), true, fit_.range, fit_.pos, in.clientWidth);
    if (summary_ && in.sound && summary_->describes(*in.sound)) in.peaks = summary_.get();
    return in;
}

ViewSpan TMDIChildWave::visibleRange() const { return paintInput().effectiveView(); }

// ---- painting --------------------------------------------------------------------------------

void TMDIChildWave::invalidate() {
    // A Vold picture under way is out of date: stop it now, not at the next paint.
    if (voldWorker_.joinable()) stopVold();
    stale_ = true;
    update(clientRect());
}

const Canvas& TMDIChildWave::picture() {
    if (stale_) {
        if (voldShown()) {
            startVold();
        } else {
            stopVold();
            paintWave(canvas_, paintInput());
        }
        painted_ = marks();
        stale_ = false;
    }
    return canvas_;
}

void TMDIChildWave::paintEvent(QPaintEvent* event) {
    const Canvas& raster = picture();
    QPainter painter(this);
    const QRect shown = QRect(0, 0, raster.width(), raster.height()) & event->rect();
    if (!shown.isEmpty()) {
        // Our pixels are 0xFFRRGGBB, which is what this image format reads: no copy.
        const QImage image(reinterpret_cast<const uchar*>(raster.data()), raster.width(),
                           raster.height(), qsizetype(raster.width()) * 4, QImage::Format_RGB32);
        painter.drawImage(shown.topLeft(), image, shown);
    }
    // Whatever the raster does not cover (a window too small to paint in).
    const QRegion rest =
        QRegion(event->rect()) - QRegion(QRect(0, 0, raster.width(), raster.height()));
    for (const QRect& r : rest) painter.fillRect(r, palette().window());
    // The play cursor inverts what lies under it, so it shows on any colours and never
    // passes for the edit cursor.
    playColumn_ = playCursorColumn();
    if (playColumn_ >= 0 && event->rect().intersects(QRect(playColumn_, 0, 1, raster.height()))) {
        painter.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
        painter.fillRect(QRect(playColumn_, 0, 1, raster.height()), Qt::white);
    }
}

int TMDIChildWave::playCursorColumn() const {
    if (playCursor_ < 0 || values() == 0) return -1;
    const QRect client = clientRect();
    const double x = columnAt(visibleRange(), client.width(), playCursor_);
    return x >= 0 && x < client.width() ? int(x) : -1;
}

void TMDIChildWave::setPlayCursor(double sample) {
    const double was = playCursor_;
    playCursor_ = sample < 0 ? -1.0 : sample;
    // A zoomed view turns the page when what it shows has been heard to its right edge (a
    // view the user scrolled elsewhere is left where it is).
    const std::int32_t n = values();
    if (zoomed_ && n > 0 && playCursor_ >= 0 && was >= 0) {
        const ViewSpan v = visibleRange();
        if (was >= v.begin && was < v.end && playCursor_ >= v.end && playCursor_ < n)
            scrollTo(truncToInt64(std::floor(playCursor_ * double(fit_.range) / n)));
    }
    const int now = playCursorColumn();
    if (now == playColumn_) return;
    const int height = clientRect().height();
    if (playColumn_ >= 0) update(QRect(playColumn_, 0, 1, height));
    if (now >= 0) update(QRect(now, 0, 1, height));
    playColumn_ = now;
}

void TMDIChildWave::syncSelection() {
    if (!unit_ || drawing_ || stale_) return;
    const SelectionMarks now = marks();
    if (now == painted_) return;
    if (voldShown()) {
        // Repainted from the brightness already computed (columns not yet computed stay
        // background until the timer paints them with the marks of that moment).
        if (!voldPicture_ || canvas_.width() != voldPicture_->width() ||
            canvas_.height() != voldPicture_->height()) {
            invalidate();
            return;
        }
        const VoldPicture& picture = *voldPicture_;
        lastRepainted_.clear();
        changedColumns(picture.columnMap(), picture.width(), picture.values(), painted_, now,
                       [&](int x1, int x2) {
                           paintVoldColumns(canvas_, picture, x1, x2, unit_->getCursor(),
                                            unit_->getSelEndPos());
                           lastRepainted_.emplace_back(x1, x2);
                           update(QRect(x1, 0, x2 - x1, picture.height()));
                       });
        painted_ = now;
        return;
    }
    const WavePaintInput in = paintInput();
    if (canvas_.width() != in.clientWidth || canvas_.height() != in.clientHeight) {
        invalidate();
        return;
    }
    lastRepainted_.clear();
    changedColumns(in.columnMap(), in.clientWidth, values(), painted_, now, [&](int x1, int x2) {
        paintWaveColumns(canvas_, in, x1, x2);
        lastRepainted_.emplace_back(x1, x2);
        update(QRect(x1, 0, x2 - x1, in.clientHeight));
    });
    painted_ = now;
}

void TMDIChildWave::resizeEvent(QResizeEvent*) {
    layoutScrollBar();
    if (zoomed_ && clientRect().width() != fitWidth_) refitZoom();
    invalidate();
}

// ---- WaveView -----------------------------------------------------------------------------------

void TMDIChildWave::repaint(std::int32_t, std::int32_t) { syncSelection(); }

void TMDIChildWave::moveCursor(std::int32_t) { syncSelection(); }

void TMDIChildWave::repaintAll() {
    setWindowTitle(title());
    // A sound of another length: the same samples stay in sight (an operation bracketed by
    // beginKeepZoom / endKeepZoom is fitted at its end instead).
    if (zoomed_ && OldZoomDepth == 0 && values() != fitValues_) refitZoom();
    startPeaks();
    invalidate();
}

void TMDIChildWave::showRange(std::int32_t begin, std::int32_t) {
    if (!zoomed_ || OldZoomDepth != 0) return;
    if (values() != fitValues_) refitZoom();  // the new sound's scale first
    ensureVisible(begin);
}

void TMDIChildWave::refreshStatus(const TUnitWave&) {
    syncSelection();
    setWindowTitle(title());
    emit statusChanged(this);
}

// ---- zoom ---------------------------------------------------------------------------------------

int TMDIChildWave::scrollStep() const { return clientRect().width() / 10; }

void TMDIChildWave::zoomIn() {
    const SelectionMarks m = marks();
    if (values() > 0 && m.lo != m.hi) zoomTo(m.lo, m.hi);
}

void TMDIChildWave::noZoom() {
    if (values() > 0 && zoomed_) leaveZoom();
}

void TMDIChildWave::zoomTo(double begin, double end) {
    const std::int32_t n = values();
    begin = std::max(0.0, begin);
    end = std::min(double(n), end);
    const int w = clientRect().width();
    if (n == 0 || !(end > begin) || w <= 0) {
        leaveZoom();
        return;
    }
    const bool was = zoomed_;
    zoomed_ = true;
    if (!was) showScroll(true);
    fitValues_ = n;
    fitWidth_ = w;
    applyFit(fitZoom(n, w, begin, end));
}

void TMDIChildWave::applyFit(ZoomFit fit) {
    const int w = clientRect().width();
    fit_ = fit;
    zoomSpan_ = visibleSpan(values(), true, fit_.range, fit_.pos, w);
    // A scroll bar counts in int: a deep zoom into a long wave moves it in coarser units.
    const std::int64_t last = std::max<std::int64_t>(0, fit_.range - w);
    scrollScale_ = std::max<std::int64_t>(1, (last + (std::int64_t(1) << 30) - 1) >> 30);
    scrolling_ = true;
    scroll_->setRange(0, int(last / scrollScale_));
    scroll_->setPageStep(int(std::max<std::int64_t>(1, w / scrollScale_)));
    scroll_->setSingleStep(int(std::max<std::int64_t>(1, (w / 10) / scrollScale_)));
    scroll_->setValue(int(fit_.pos / scrollScale_));
    scrolling_ = false;
    invalidate();
}

void TMDIChildWave::scrollTo(std::int64_t pos) {
    if (!zoomed_) return;
    const int w = clientRect().width();
    pos = std::clamp<std::int64_t>(pos, 0, std::max<std::int64_t>(0, fit_.range - w));
    if (pos == fit_.pos) return;
    applyFit(ZoomFit{fit_.range, pos});
}

void TMDIChildWave::leaveZoom() {
    if (!zoomed_) return;
    zoomed_ = false;
    fit_ = ZoomFit{};
    showScroll(false);
    invalidate();
}

void TMDIChildWave::refitZoom() {
    if (values() == 0) {
        leaveZoom();
        return;
    }
    zoomTo(zoomSpan_.begin, zoomSpan_.end);
}

void TMDIChildWave::showScroll(bool on) {
    scroll_->setVisible(on);
    layoutScrollBar();
}

void TMDIChildWave::layoutScrollBar() {
    if (!zoomed_) return;
    const int h = scroll_->sizeHint().height();
    scroll_->setGeometry(0, std::max(0, height() - h), width(), h);
}

void TMDIChildWave::ensureVisible(std::int32_t pos) {
    const std::int32_t n = values();
    if (!zoomed_ || n == 0) return;
    const ViewSpan v = visibleRange();
    const std::int32_t s = std::min(pos, n - 1);  // a cursor at n shows on the last sample
    if (s >= v.begin && s < v.end) return;
    const double column = std::floor(double(s) * double(fit_.range) / n);
    const int w = clientRect().width();
    scrollTo(s < v.begin ? truncToInt64(column) : truncToInt64(column) - w + 1);
}

void TMDIChildWave::beginKeepZoom() {
    const bool balanced = OldZoomDepth++ == 0;
    ORV_ASSERT_TEXT(balanced, "OldZoomDepth++ == 0", "ChildWin");
    const ViewSpan v = visibleRange();
    const SelectionMarks m = marks();
    beginOffset_ = v.begin - m.lo;
    endOffset_ = v.end - m.hi;
}

void TMDIChildWave::endKeepZoom() {
    const bool balanced = OldZoomDepth-- == 1;
    ORV_ASSERT_TEXT(balanced, "OldZoomDepth-- == 1", "ChildWin");
    if (!zoomed_) return;
    const std::int32_t n = values();
    if (n == 0) {
        leaveZoom();
        return;
    }
    const SelectionMarks m = marks();
    zoomTo(m.lo + beginOffset_, std::min(double(n), m.hi + endOffset_));
}

// ---- mouse --------------------------------------------------------------------------------------

std::int32_t TMDIChildWave::sampleUnder(int x) const {
    const std::int32_t n = values();
    if (n == 0) return 0;
    return std::clamp(truncToInt(paintInput().columnMap().sampleAt(x)), std::int32_t(0), n - 1);
}

void TMDIChildWave::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !unit_ ||
        !clientRect().contains(event->position().toPoint())) {
        QWidget::mousePressEvent(event);
        return;
    }
    if (drawing_)
        draw(event, true);
    else
        select(event, true);
}

void TMDIChildWave::mouseMoveEvent(QMouseEvent* event) {
    if (!unit_) return;
    const QRect client = clientRect();
    const int x = std::clamp(event->position().toPoint().x(), 0, std::max(0, client.width() - 1));
    const std::int32_t freq = std::max(1, unit_->getFreq());
    if (drawing_) {
        emit pointerPosition(QString::fromStdString(
            writeTime(double(drawing_->positionAt(x, client.width())) / freq)));
        if (drawing_->stroking() && (event->buttons() & Qt::LeftButton)) draw(event, false);
        return;
    }
    std::string text = writeTime(double(sampleUnder(x)) / freq);
    if (voldShown() && voldPicture_ && !stale_) {
        const int y =
            std::clamp(event->position().toPoint().y(), 0, std::max(0, client.height() - 1));
        const double hertz = voldPicture_->frequencyAt(y);
        if (hertz > 0.0) text += ", " + writeFrequency(hertz);
    }
    emit pointerPosition(QString::fromStdString(text));
    if (dragging_ && (event->buttons() & Qt::LeftButton)) select(event, false);
}

void TMDIChildWave::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    dragging_ = false;
    if (drawing_) drawing_->release();
}

void TMDIChildWave::leaveEvent(QEvent*) { emit pointerPosition(QString()); }

void TMDIChildWave::wheelEvent(QWheelEvent* event) {
    // The wheel over a zoomed wave scrolls it, as it would over the scroll bar.
    if (zoomed_) {
        QApplication::sendEvent(scroll_, event);
        return;
    }
    QWidget::wheelEvent(event);
}

void TMDIChildWave::select(QMouseEvent* event, bool press) {
    const std::int32_t n = values();
    if (n < 2) return;  // nothing to choose between
    const QRect client = clientRect();
    const int x = std::clamp(event->position().toPoint().x(), 0, std::max(0, client.width() - 1));
    const std::int32_t s = sampleUnder(x);
    if (!press) {
        unit_->setCursorOnly(s);
        return;
    }
    const Qt::KeyboardModifiers mods = event->modifiers();
    if (mods & Qt::ControlModifier) {
        // The end of the part nearer to the click stays; on a tie the upper one.
        const SelectionMarks m = marks();
        const std::int32_t kept = std::abs(s - m.lo) < std::abs(m.hi - s) ? m.lo : m.hi;
        unit_->setSelEnd(kept);
        unit_->setCursorOnly(s);
    } else if (mods & Qt::ShiftModifier) {
        unit_->setCursorOnly(s);
    } else {
        unit_->setCursor(s);
    }
    dragging_ = true;
}

void TMDIChildWave::draw(QMouseEvent* event, bool press) {
    const QRect client = clientRect();
    const QPoint p = event->position().toPoint();
    const std::int32_t pos = drawing_->positionAt(p.x(), client.width());
    const WaveVal value = WaveDrawing::valueAt(p.y(), client.height());
    if (press)
        drawing_->press(pos, value);
    else
        drawing_->moveTo(pos, value);
    invalidate();
}

// ---- keys ---------------------------------------------------------------------------------------

std::int32_t TMDIChildWave::stepColumns(std::int32_t pos, double columns) const {
    const std::int32_t n = values();
    const WavePaintInput in = paintInput();
    const ViewSpan v = in.effectiveView();
    if (n == 0 || in.clientWidth <= 0 || !(v.end > v.begin)) return pos;
    const double column = columnAt(v, in.clientWidth, pos);
    const double to = std::trunc(sampleAtColumn(v, in.clientWidth, column + columns));
    std::int32_t s = std::int32_t(std::clamp(to, 0.0, double(n)));
    // Zoomed in so far that a column is narrower than a sample: move one sample at least.
    if (s == pos && columns != 0.0) s = std::clamp(pos + (columns > 0 ? 1 : -1), 0, n);
    return s;
}

void TMDIChildWave::keyPressEvent(QKeyEvent* event) {
    const Qt::KeyboardModifiers mods = event->modifiers() & ~Qt::KeypadModifier;
    if (!unit_ || drawing_ || (mods & Qt::AltModifier)) {
        QWidget::keyPressEvent(event);
        return;
    }
    const bool shift = mods & Qt::ShiftModifier, ctrl = mods & Qt::ControlModifier;
    const std::int32_t n = values();
    const int page = clientRect().width();
    double columns = 0.0;
    std::optional<std::int32_t> absolute;
    bool paging = false;
    switch (event->key()) {
        case Qt::Key_Left: columns = -1; break;
        case Qt::Key_Right: columns = 1; break;
        case Qt::Key_Up: columns = -10; break;
        case Qt::Key_Down: columns = 10; break;
        case Qt::Key_Home: absolute = 0; break;
        case Qt::Key_End: absolute = n; break;
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            if (ctrl && !shift) {
                paging = true;
                columns = event->key() == Qt::Key_PageUp ? -page : page;
                break;
            }
            [[fallthrough]];
        default: QWidget::keyPressEvent(event); return;
    }
    event->accept();
    auto to = [&](std::int32_t pos) { return absolute ? *absolute : stepColumns(pos, columns); };
    TUnitWave& u = *unit_;
    const std::int32_t cursor = u.getCursor(), other = u.getSelEndPos();
    if (paging) {
        const std::int32_t c = to(cursor);
        if (zoomed_) scrollTo(fit_.pos + std::int64_t(columns));  // the view turns the page too
        u.setCursor(c);
        ensureVisible(c);
    } else if (shift && ctrl) {
        // The whole part moves and keeps its length.
        const SelectionMarks m = marks();
        const std::int32_t length = m.hi - m.lo;
        if (absolute) {
            if (*absolute == 0)
                u.setSelection(0, length);
            else
                u.setSelection(n - length, n);
        } else {
            const std::int32_t d = std::clamp(to(cursor) - cursor, -m.lo, n - m.hi);
            u.setSelection(m.lo + d, m.hi + d);
        }
        ensureVisible(u.getCursor());
    } else if (shift) {
        u.setCursorOnly(to(cursor));
        ensureVisible(u.getCursor());
    } else if (ctrl) {
        u.setSelEnd(to(other));
        ensureVisible(u.getSelEndPos());
    } else {
        u.setCursor(to(cursor));
        ensureVisible(u.getCursor());
    }
}

// ---- freehand drawing ---------------------------------------------------------------------------

void TMDIChildWave::beginDrawing(DrawKind kind) {
    ORV_ASSERT_TEXT(!drawing_, "!UserDrawing", "ChildWin");
    drawing_ = std::make_unique<WaveDrawing>(unit_ ? unit_->getFreq() : 44100, kind);
    dragging_ = false;
    setCursor(drawCursor());
    invalidate();
}

void TMDIChildWave::setDrawingKind(DrawKind kind) {
    ORV_ASSERT_TEXT(drawing_ != nullptr, "UserDrawing", "ChildWin");
    drawing_->setKind(kind);
    invalidate();
}

std::unique_ptr<Sound> TMDIChildWave::endDrawing() {
    ORV_ASSERT_TEXT(drawing_ != nullptr, "UserDrawing", "ChildWin");
    std::unique_ptr<WaveDrawing> done = std::move(drawing_);
    unsetCursor();
    invalidate();
    if (done->empty()) return nullptr;
    return done->take();
}

// ---- peak summary -------------------------------------------------------------------------------

bool TMDIChildWave::peaksReady() const {
    return unit_ && summary_ && summary_->describes(*unit_->getSound());
}

void TMDIChildWave::startPeaks() {
    if (!unit_) return;
    std::shared_ptr<const Sound> sound = unit_->soundRef();
    if (summary_ && summarySound_ == sound && summary_->describes(*sound)) return;
    if (buildingFor_ && buildingFor_ == sound) return;
    stopPeaks();
    summary_.reset();
    summarySound_.reset();
    if (!sound || sound->GetValues() == 0) return;
    buildingFor_ = sound;
    buildCancel_ = std::make_shared<CancelFlag>(0);
    builder_ = std::thread([this, sound, cancel = buildCancel_] {
        std::shared_ptr<const PeakSummary> made = buildPeakSummary(*sound, *cancel);
        if (!made || isCancelled(*cancel)) return;
        // Handed to the window's own thread; dropped there if the window is gone by then
        // (its destructor waits for this thread, so `this` is alive while we post).
        QMetaObject::invokeMethod(
            this,
            [this, sound, made] {
                if (buildingFor_ != sound) return;  // a newer sound took its place
                if (builder_.joinable()) builder_.join();
                buildingFor_.reset();
                buildCancel_.reset();
                summarySound_ = sound;
                summary_ = made;
            },
            Qt::QueuedConnection);
    });
}

void TMDIChildWave::stopPeaks() {
    if (buildCancel_) setCancelled(*buildCancel_);
    if (builder_.joinable()) builder_.join();
    buildingFor_.reset();
    buildCancel_.reset();
}

// ---- closing ------------------------------------------------------------------------------------

void TMDIChildWave::closeEvent(QCloseEvent* event) {
    if (guard_ && !guard_(*this)) {
        event->ignore();
        return;
    }
    event->accept();
    emit closed(this);
}

}  // namespace orv
