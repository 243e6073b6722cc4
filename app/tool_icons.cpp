#include "app/tool_icons.h"

#include <cmath>
#include <functional>
#include <map>

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QStyle>

namespace orv {

namespace {

constexpr double kTau = 6.283185307179586;
const QColor kWave(31, 78, 156);
const QColor kMark(200, 40, 40);
const QColor kGood(30, 130, 60);

using Shape = std::function<double(double)>;  // x in 0..1 -> y in -1..1

// A wave drawn through the box, y = 1 at the top.
void wave(QPainter& p, const QRectF& r, const Shape& f, const QColor& c = kWave,
          double width = 1.6) {
    QPainterPath path;
    const int n = 64;
    for (int i = 0; i <= n; ++i) {
        const double x = double(i) / n;
        const QPointF pt(r.left() + x * r.width(), r.center().y() - f(x) * r.height() / 2);
        if (i == 0)
            path.moveTo(pt);
        else
            path.lineTo(pt);
    }
    p.setPen(QPen(c, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    p.drawPath(path);
}

void line(QPainter& p, QPointF a, QPointF b, const QColor& c = kMark, double w = 1.6) {
    p.setPen(QPen(c, w, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(a, b);
}

void arrow(QPainter& p, QPointF from, QPointF to, const QColor& c = kMark) {
    line(p, from, to, c);
    const QPointF d = to - from;
    const double len = std::hypot(d.x(), d.y());
    if (len == 0) return;
    const QPointF u = d / len, n(-u.y(), u.x());
    line(p, to, to - u * 3.5 + n * 3, c);
    line(p, to, to - u * 3.5 - n * 3, c);
}

void text(QPainter& p, const QRectF& r, const QString& t, const QColor& c = kWave) {
    QFont f = p.font();
    f.setPixelSize(int(r.height() * 0.8));
    f.setBold(true);
    p.setFont(f);
    p.setPen(c);
    p.drawText(r, Qt::AlignCenter, t);
}

double sine(double x, double periods) { return std::sin(x * periods * kTau); }
double square(double x, double periods) { return std::fmod(x * periods, 1.0) < 0.5 ? 0.8 : -0.8; }
double tri(double x, double periods) {
    const double t = std::fmod(x * periods, 1.0);
    return t < 0.5 ? -0.9 + 3.6 * t : 2.7 - 3.6 * t;
}
double noise(double x) {
    const int i = int(x * 64);
    return std::sin(i * 12.9898 + 78.233) * 0.9 * ((i * 7919) % 13 < 7 ? 1 : -0.6);
}

// The pictures of the wave commands, on a 24 x 24 canvas.
const std::map<std::string_view, std::function<void(QPainter&)>>& pictures() {
    const QRectF full(2, 4, 20, 16);
    static const std::map<std::string_view, std::function<void(QPainter&)>> m{
        {"MakeSilence", [=](QPainter& p) { wave(p, full, [](double) { return 0.0; }); }},
        {"MakeLine", [=](QPainter& p) { wave(p, full, [](double x) { return 0.9 - 1.8 * x; }); }},
        {"MakeBlock", [=](QPainter& p) { wave(p, full, [](double x) { return square(x, 2); }); }},
        {"MakeTriangle", [=](QPainter& p) { wave(p, full, [](double x) { return tri(x, 2); }); }},
        {"MakeSinus", [=](QPainter& p) { wave(p, full, [](double x) { return 0.9 * sine(x, 2); }); }},
        {"MakeNoise", [=](QPainter& p) { wave(p, full, noise, kWave, 1.0); }},
        {"MakeMFreq", [=](QPainter& p) {
             wave(p, full, [](double x) { return 0.55 * sine(x, 1) + 0.35 * sine(x, 5); });
         }},
        {"DrawWaveLin", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1.6));
             p.drawPolyline(QPolygonF({{2, 14}, {7, 6}, {12, 16}, {17, 9}}));
             p.setBrush(kMark);
             p.setPen(Qt::NoPen);
             p.drawEllipse(QPointF(19, 8), 2.5, 2.5);
         }},
        {"DrawWave3G", [=](QPainter& p) {
             wave(p, QRectF(2, 5, 15, 14), [](double x) { return 0.8 * sine(x, 1.2); });
             p.setBrush(kMark);
             p.setPen(Qt::NoPen);
             p.drawEllipse(QPointF(19, 8), 2.5, 2.5);
         }},
        {"Duplicate", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1));
             p.drawRect(QRectF(2.5, 2.5, 13, 11));
             p.setBrush(Qt::white);
             p.drawRect(QRectF(8.5, 10.5, 13, 11));
             wave(p, QRectF(9, 12, 12, 8), [](double x) { return 0.8 * sine(x, 1.5); });
         }},
        {"EditCut", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1.6));
             p.drawEllipse(QPointF(7, 17), 3, 3);
             p.drawEllipse(QPointF(17, 17), 3, 3);
             line(p, {9, 15}, {17, 3}, kWave);
             line(p, {15, 15}, {7, 3}, kWave);
         }},
        {"EditCopy", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1.2));
             p.drawRect(QRectF(3.5, 3.5, 11, 13));
             p.setBrush(Qt::white);
             p.drawRect(QRectF(9.5, 7.5, 11, 13));
         }},
        {"EditPaste", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1.2));
             p.setBrush(QColor(230, 210, 160));
             p.drawRect(QRectF(4.5, 4.5, 15, 17));
             p.setBrush(Qt::white);
             p.drawRect(QRectF(8.5, 2.5, 7, 4));
             wave(p, QRectF(6, 10, 12, 9), [](double x) { return 0.8 * sine(x, 1.5); });
         }},
        {"EditDelete", [=](QPainter& p) {
             wave(p, full, [](double x) { return 0.8 * sine(x, 2); });
             line(p, {6, 6}, {18, 18});
             line(p, {18, 6}, {6, 18});
         }},
        {"EditTrim", [=](QPainter& p) {
             wave(p, QRectF(7, 4, 10, 16), [](double x) { return 0.9 * sine(x, 1); });
             line(p, {5, 3}, {5, 21});
             line(p, {19, 3}, {19, 21});
         }},
        {"EditClearClipboard", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1.2));
             p.setBrush(QColor(230, 210, 160));
             p.drawRect(QRectF(4.5, 4.5, 15, 17));
             line(p, {8, 9}, {16, 18});
             line(p, {16, 9}, {8, 18});
         }},
        {"EditSwap", [=](QPainter& p) {
             arrow(p, {3, 8}, {20, 8}, kWave);
             arrow(p, {21, 16}, {4, 16});
         }},
        {"EditExtract", [=](QPainter& p) {
             wave(p, full, [](double x) { return x > 0.35 && x < 0.65 ? 0.0 : 0.8 * sine(x, 3); });
             line(p, {9, 3}, {9, 21}, kGood, 1);
             line(p, {15, 3}, {15, 21}, kGood, 1);
         }},
        {"EditMix", [=](QPainter& p) {
             wave(p, full, [](double x) { return 0.8 * sine(x, 1); });
             wave(p, full, [](double x) { return 0.5 * sine(x, 4); }, kGood, 1.2);
         }},
        {"MaxVolume", [=](QPainter& p) {
             wave(p, QRectF(2, 3, 20, 18), [](double x) { return sine(x, 2); });
             line(p, {2, 2.5}, {22, 2.5}, kMark, 1);
             line(p, {2, 21.5}, {22, 21.5}, kMark, 1);
         }},
        {"Volume", [=](QPainter& p) { wave(p, full, [](double x) { return x * sine(x, 3); }); }},
        {"Reverse", [=](QPainter& p) {
             wave(p, QRectF(2, 9, 20, 12), [](double x) { return std::fmod(x * 2, 1.0) * 1.8 - 0.9; });
             arrow(p, {20, 4}, {4, 4});
         }},
        {"Up", [=](QPainter& p) {
             wave(p, QRectF(2, 8, 16, 12), [](double x) { return 0.8 * sine(x, 2); });
             arrow(p, {20, 20}, {20, 3});
         }},
        {"Block", [=](QPainter& p) {
             wave(p, full, [](double x) { return std::round(4 * 0.9 * sine(x, 1)) / 4; });
         }},
        {"RollOut", [=](QPainter& p) {
             wave(p, full, [](double x) { return 0.85 * std::sin(kTau * 3 * std::sqrt(x)); });
         }},
        {"Rotate", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1.6));
             p.drawArc(QRectF(4, 4, 16, 16), 30 * 16, 280 * 16);
             arrow(p, {19, 9}, {19.5, 5.5}, kWave);
         }},
        {"RollIn", [=](QPainter& p) {
             wave(p, full, [](double x) { return 0.85 * std::sin(kTau * 3 * x * x); });
         }},
        {"Length", [=](QPainter& p) {
             wave(p, QRectF(2, 9, 20, 12), [](double x) { return 0.8 * sine(x, 2); });
             arrow(p, {12, 4}, {3, 4});
             arrow(p, {12, 4}, {21, 4});
         }},
        {"Distort", [=](QPainter& p) {
             wave(p, full, [](double x) { return std::clamp(1.6 * sine(x, 2), -0.6, 0.6); });
         }},
        {"Balance", [=](QPainter& p) {
             line(p, {3, 16}, {21, 10}, kWave);
             p.setBrush(kWave);
             p.setPen(Qt::NoPen);
             p.drawPolygon(QPolygonF({{12, 13}, {9, 20}, {15, 20}}));
             text(p, QRectF(1, 2, 8, 8), "L", kMark);
             text(p, QRectF(15, 2, 8, 8), "R", kMark);
         }},
        {"MixLeftRight", [=](QPainter& p) {
             text(p, QRectF(0, 1, 9, 9), "L");
             text(p, QRectF(15, 1, 9, 9), "R");
             arrow(p, {4, 12}, {20, 21});
             arrow(p, {20, 12}, {4, 21});
         }},
        {"PerEcho", [=](QPainter& p) {
             for (int i = 0; i < 4; ++i) line(p, {4.0 + 5 * i, 12.0 - 8 + 2.0 * i}, {4.0 + 5 * i, 12.0 + 8 - 2.0 * i}, kWave, 2);
         }},
        {"RndEcho", [=](QPainter& p) {
             const double xs[] = {4, 7, 13, 20}, hs[] = {8, 6, 4, 2.5};
             for (int i = 0; i < 4; ++i) line(p, {xs[i], 12 - hs[i]}, {xs[i], 12 + hs[i]}, kWave, 2);
         }},
        {"TempoPitch", [=](QPainter& p) {
             p.setBrush(kWave);
             p.setPen(Qt::NoPen);
             p.drawEllipse(QPointF(8, 17), 3.5, 2.6);
             line(p, {11.2, 17}, {11.2, 4}, kWave);
             line(p, {11.2, 4}, {15, 7}, kWave);
             arrow(p, {19, 20}, {19, 6});
         }},
        {"FilterBlock", [=](QPainter& p) {
             wave(p, full, [](double x) { return x < 0.3 ? -0.8 : x < 0.7 ? 0.8 : -0.8; }, kGood);
         }},
        {"FilterLow", [=](QPainter& p) {
             wave(p, full, [](double x) { return x < 0.4 ? 0.7 : 0.7 - 3.0 * (x - 0.4); }, kGood);
         }},
        {"FilterHigh", [=](QPainter& p) {
             wave(p, full, [](double x) { return x > 0.6 ? 0.7 : 0.7 - 3.0 * (0.6 - x); }, kGood);
         }},
        {"FilterRes", [=](QPainter& p) {
             wave(p, full, [](double x) { return -0.8 + 1.7 * std::exp(-std::pow((x - 0.5) * 7, 2)); }, kGood);
         }},
        {"FilterNotch", [=](QPainter& p) {
             wave(p, full, [](double x) { return 0.8 - 1.7 * std::exp(-std::pow((x - 0.5) * 7, 2)); }, kGood);
         }},
        {"ViewWave", [=](QPainter& p) { wave(p, full, [](double x) { return 0.9 * sine(x, 1.5) * (1 - x * 0.5); }); }},
        {"ViewVold", [=](QPainter& p) {
             const double hs[] = {6, 12, 16, 10, 7, 13, 4};
             for (int i = 0; i < 7; ++i) line(p, {3.0 + 3 * i, 21}, {3.0 + 3 * i, 21 - hs[i]}, kWave, 2);
         }},
        {"ZoomIn", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1.6));
             p.drawEllipse(QPointF(10, 10), 6, 6);
             line(p, {14.5, 14.5}, {21, 21}, kWave, 2.4);
             line(p, {7, 10}, {13, 10});
             line(p, {10, 7}, {10, 13});
         }},
        {"NoZoom", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1.6));
             p.drawEllipse(QPointF(10, 10), 6, 6);
             line(p, {14.5, 14.5}, {21, 21}, kWave, 2.4);
             line(p, {7, 10}, {13, 10});
         }},
        {"SelectWave", [=](QPainter& p) {
             p.fillRect(QRectF(8, 3, 8, 18), QColor(180, 200, 240));
             wave(p, full, [](double x) { return 0.8 * sine(x, 2); });
         }},
        {"SplitH", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1.2));
             p.drawRect(QRectF(2.5, 5.5, 8, 13));
             p.drawRect(QRectF(13.5, 5.5, 8, 13));
         }},
        {"SplitV", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1.2));
             p.drawRect(QRectF(3.5, 2.5, 17, 8));
             p.drawRect(QRectF(3.5, 13.5, 17, 8));
         }},
        {"MergeH", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1.2));
             p.drawRect(QRectF(2.5, 5.5, 19, 13));
             line(p, {12, 6}, {12, 18}, kMark, 1);
         }},
        {"MergeV", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1.2));
             p.drawRect(QRectF(3.5, 2.5, 17, 19));
             line(p, {4, 12}, {20, 12}, kMark, 1);
         }},
        {"FileRecord", [=](QPainter& p) {
             p.setBrush(kMark);
             p.setPen(Qt::NoPen);
             p.drawEllipse(QPointF(12, 12), 6, 6);
         }},
        {"FileSaveAs", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1.2));
             p.setBrush(QColor(200, 215, 240));
             p.drawRect(QRectF(3.5, 3.5, 14, 16));
             line(p, {13, 20}, {21, 12}, kMark, 2);
         }},
        {"DeleteUndo", [=](QPainter& p) {
             arrow(p, {18, 10}, {5, 10}, kWave);
             line(p, {12, 14}, {20, 21});
             line(p, {20, 14}, {12, 21});
         }},
        {"Register", [=](QPainter& p) {
             p.setPen(QPen(kWave, 1.2));
             p.setBrush(QColor(250, 235, 170));
             p.drawPolygon(QPolygonF({{3, 7}, {17, 7}, {22, 12}, {17, 17}, {3, 17}}));
             text(p, QRectF(3, 7, 13, 10), "N");
         }},
    };
    return m;
}

QIcon drawn(const std::function<void(QPainter&)>& draw) {
    QIcon icon;
    for (int size : {24, 48}) {
        QPixmap pm(size, size);
        pm.fill(Qt::transparent);
        QPainter p(&pm);
        p.setRenderHint(QPainter::Antialiasing);
        p.scale(size / 24.0, size / 24.0);
        draw(p);
        p.end();
        icon.addPixmap(pm);
    }
    return icon;
}

}  // namespace

QIcon toolIcon(std::string_view action, const QStyle* style) {
    static const std::map<std::string_view, QStyle::StandardPixmap> standard{
        {"FileNewWave", QStyle::SP_FileIcon},
        {"FileOpenWave", QStyle::SP_DialogOpenButton},
        {"FileSave", QStyle::SP_DialogSaveButton},
        {"FileProperties", QStyle::SP_FileDialogInfoView},
        {"FilePlay", QStyle::SP_MediaPlay},
        {"FileStop", QStyle::SP_MediaStop},
        {"FilePause", QStyle::SP_MediaPause},
        {"FileExit", QStyle::SP_DialogCloseButton},
        {"Undo", QStyle::SP_ArrowBack},
        {"HelpAbout", QStyle::SP_MessageBoxInformation},
    };
    if (auto s = standard.find(action); s != standard.end() && style)
        return style->standardIcon(s->second);
    if (auto d = pictures().find(action); d != pictures().end()) return drawn(d->second);
    return {};
}

QIcon programIcon() {
    QIcon icon;
    for (int size : {16, 32, 48, 64, 128}) {
        QPixmap pm(size, size);
        pm.fill(Qt::transparent);
        QPainter p(&pm);
        p.setRenderHint(QPainter::Antialiasing);
        p.scale(size / 64.0, size / 64.0);
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(31, 78, 156));
        p.drawRoundedRect(QRectF(2, 2, 60, 60), 12, 12);
        const double hs[] = {10, 22, 34, 18, 26, 12};
        p.setBrush(QColor(120, 170, 240));
        for (int i = 0; i < 6; ++i) p.drawRect(QRectF(9 + 8 * i, 56 - hs[i], 6, hs[i]));
        wave(p, QRectF(6, 10, 52, 30), [](double x) { return std::sin(x * 2 * kTau); },
             QColor(255, 255, 255), 4);
        p.end();
        icon.addPixmap(pm);
    }
    return icon;
}

}  // namespace orv
