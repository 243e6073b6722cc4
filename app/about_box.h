// The About box: name, version and credits over a picture the program makes with its own
// generators: a sum of sines from the multi-frequency generator, drawn as a wave, with the
// strength of each of its frequencies as bars.
#pragma once

#include <vector>

#include <QDialog>

#include "core/sample_value.h"

namespace orv {

class AboutPicture final : public QWidget {
public:
    explicit AboutPicture(QWidget* parent = nullptr);
    // The samples drawn and the partials they were made of (for the bars).
    const std::vector<WaveVal>& samples() const { return samples_; }
    QSize sizeHint() const override { return {480, 220}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<WaveVal> samples_;
    std::vector<double> strengths_;
};

class AboutBox final : public QDialog {
    Q_OBJECT
public:
    explicit AboutBox(QWidget* parent = nullptr);
    static QString version();
};

}  // namespace orv
