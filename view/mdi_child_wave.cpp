#include "view/mdi_child_wave.h"

#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QVBoxLayout>

#include "units/value_writer.h"

namespace orv {

TMDIChildWave::TMDIChildWave(TUnitWave& unit, QWidget* parent)
    : QWidget(parent), unit_(&unit), label_(new QLabel(this)) {
    setObjectName("TMDIChildWave");
    label_->setObjectName("lblWave");
    label_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label_->setMargin(8);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label_);
    setMinimumSize(240, 120);
    setFocusPolicy(Qt::StrongFocus);
    unit_->setView(this);
    refresh();
}

TMDIChildWave::~TMDIChildWave() {
    if (unit_ && unit_->getView() == this) unit_->setView(nullptr);
}

void TMDIChildWave::detach() {
    if (unit_ && unit_->getView() == this) unit_->setView(nullptr);
    unit_ = nullptr;
}

QString TMDIChildWave::title() const {
    if (!unit_) return {};
    QString t = QFileInfo(QString::fromStdString(unit_->getFileName())).fileName();
    if (!unit_->getName().empty()) t += " [" + QString::fromStdString(unit_->getName()) + "]";
    return t;
}

QString TMDIChildWave::text() const {
    if (!unit_) return {};
    const TUnitWave& u = *unit_;
    const UnitStatus s = u.statusTexts();
    QString t;
    t += "File: " + QString::fromStdString(u.getFileName()) + "\n";
    t += "Name: " + (u.getName().empty() ? QString("(not registered)")
                                         : QString::fromStdString(u.getName())) + "\n";
    t += "Length: " + QString::fromStdString(s[0]) + " (" + QString::number(u.values()) +
         " samples)\n";
    t += "Frequency: " + QString::number(u.getFreq()) + " Hz\n";
    t += QString("Bits: %1, %2\n").arg(u.getBytesPSample() * 8)
             .arg(u.getMonoStereo() == 2 ? "stereo" : "mono");
    t += "Size: " + QString::fromStdString(s[4]) + "\n";
    if (u.hasSelection())
        t += QString("Selected: %1 .. %2\n").arg(u.selBegin()).arg(u.selEnd());
    else
        t += QString("Cursor: %1\n").arg(u.getCursor());
    const std::string state = TUnitWave::stateText(u.getState());
    if (!state.empty()) t += "State: " + QString::fromStdString(state) + "\n";
    return t;
}

void TMDIChildWave::refresh() {
    label_->setText(text());
    setWindowTitle(title());
}

void TMDIChildWave::repaint(std::int32_t, std::int32_t) { refresh(); }
void TMDIChildWave::repaintAll() { refresh(); }
void TMDIChildWave::moveCursor(std::int32_t) { refresh(); }
void TMDIChildWave::showRange(std::int32_t, std::int32_t) {}

void TMDIChildWave::refreshStatus(const TUnitWave&) {
    refresh();
    emit statusChanged(this);
}

void TMDIChildWave::closeEvent(QCloseEvent* event) {
    if (guard_ && !guard_(*this)) {
        event->ignore();
        return;
    }
    event->accept();
    emit closed(this);
}

}  // namespace orv
