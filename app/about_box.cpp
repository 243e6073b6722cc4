#include "app/about_box.h"

#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/sound.h"
#include "core/wave.h"

#ifndef ORVASTO_VERSION
#define ORVASTO_VERSION "0"
#endif

namespace orv {

namespace {
// The partials of the picture: a chord of A (220, 277.2, 330 Hz) with an octave above.
std::vector<MFreqPartial> partials() {
    std::vector<MFreqPartial> p(4);
    const double hz[] = {220.0, 277.18, 329.63, 440.0};
    const double volume[] = {0.45, 0.3, 0.25, 0.15};
    for (int i = 0; i < 4; ++i) {
        p[std::size_t(i)].period = 1.0 / hz[i];
        p[std::size_t(i)].volume = volume[i];
        p[std::size_t(i)].volumeFactor = 0.5;
        p[std::size_t(i)].volumeFactorTime = 0.05;
    }
    return p;
}
}  // namespace

AboutPicture::AboutPicture(QWidget* parent) : QWidget(parent) {
    setObjectName("AboutPicture");
    setMinimumSize(480, 220);
    if (!sinus) createSinus();
    const std::vector<MFreqPartial> p = partials();
    MonoSound empty(11025);
    CancelFlag cancel{0};
    std::int32_t end = 0;
    SoundPtr made = empty.MakeMFreqCount(&cancel, 0.04, nullptr, std::int32_t(p.size()), p.data(),
                                         0, end);
    if (made) {
        const Wave* w = made->GetLeftWave();
        for (std::int32_t i = 0; i < w->getValues(); ++i) samples_.push_back((*w)[i]);
    }
    for (const MFreqPartial& part : p) strengths_.push_back(part.volume);
}

void AboutPicture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF r = rect();
    QLinearGradient sky(r.topLeft(), r.bottomLeft());
    sky.setColorAt(0, QColor(16, 36, 80));
    sky.setColorAt(1, QColor(40, 90, 170));
    painter.fillRect(r, sky);
    // The frequency picture: one bar per partial, at its place on a 0 .. 500 Hz scale.
    const double hz[] = {220.0, 277.18, 329.63, 440.0};
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(120, 170, 240, 160));
    for (std::size_t i = 0; i < strengths_.size() && i < 4; ++i) {
        const double x = r.left() + r.width() * hz[i] / 500.0;
        const double h = r.height() * 0.9 * strengths_[i];
        painter.drawRect(QRectF(x - 6, r.bottom() - h, 12, h));
    }
    // The wave itself across the picture.
    if (samples_.size() > 1) {
        QPainterPath path;
        for (std::size_t i = 0; i < samples_.size(); ++i) {
            const QPointF pt(r.left() + r.width() * double(i) / double(samples_.size() - 1),
                             r.center().y() - r.height() * 0.42 * samples_[i] / 32768.0);
            if (i == 0)
                path.moveTo(pt);
            else
                path.lineTo(pt);
        }
        painter.setPen(QPen(QColor(255, 255, 255, 220), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(path);
    }
    QFont big = font();
    big.setPointSize(28);
    big.setBold(true);
    painter.setFont(big);
    painter.setPen(Qt::white);
    painter.drawText(r.adjusted(16, 10, -16, -10), Qt::AlignTop | Qt::AlignLeft, "Orvasto");
}

QString AboutBox::version() { return ORVASTO_VERSION; }

AboutBox::AboutBox(QWidget* parent) : QDialog(parent) {
    setObjectName("AboutBox");
    setWindowTitle("About Orvasto");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new AboutPicture(this));
    auto* text = new QLabel(this);
    text->setObjectName("lblAbout");
    text->setText(
        "<b>Orvasto</b> version " + version() +
        "<br>A small editor for digital sound in WAV files.<br><br>"
        "Written by the Orvasto developers.<br>"
        "Built with Qt " QT_VERSION_STR " and libsndfile.<br>"
        "The picture above is a chord made by Orvasto's own multi-frequency generator.");
    text->setWordWrap(true);
    layout->addWidget(text);
    auto* ok = new QPushButton("OK", this);
    ok->setObjectName("OKBtn");
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    layout->addWidget(ok, 0, Qt::AlignRight);
}

}  // namespace orv
