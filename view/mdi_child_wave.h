// TMDIChildWave: the child window of one wave document. For now it shows the wave's name
// and properties as text; the waveform picture comes from render/ later and takes this
// widget's place, so the frame only ever talks to it through the WaveView interface and the
// few calls below.
#pragma once

#include <functional>

#include <QWidget>

#include "document/unit_wave.h"

class QLabel;

namespace orv {

class TMDIChildWave final : public QWidget, public WaveView {
    Q_OBJECT
public:
    // Attaches itself as the unit's view; the unit must outlive the window or be released
    // with detach() first.
    explicit TMDIChildWave(TUnitWave& unit, QWidget* parent = nullptr);
    ~TMDIChildWave() override;

    TUnitWave* unit() const { return unit_; }
    // The document is going away: forget it.
    void detach();

    // Asked before the window closes; false keeps it open (the frame's save question).
    void setCloseGuard(std::function<bool(TMDIChildWave&)> guard) { guard_ = std::move(guard); }

    // The title of the window: the file's own name, and the registered name in brackets.
    QString title() const;
    // The text the window shows.
    QString text() const;

    // ---- WaveView --------------------------------------------------------------------------
    void repaint(std::int32_t begin, std::int32_t end) override;
    void repaintAll() override;
    void moveCursor(std::int32_t pos) override;
    void showRange(std::int32_t begin, std::int32_t end) override;
    void refreshStatus(const TUnitWave& unit) override;

signals:
    // The status bar should show the unit again (something about it changed).
    void statusChanged(orv::TMDIChildWave* child);
    // The window closed for good; the frame closes the document.
    void closed(orv::TMDIChildWave* child);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void refresh();

    TUnitWave* unit_;
    QLabel* label_;
    std::function<bool(TMDIChildWave&)> guard_;
};

}  // namespace orv
