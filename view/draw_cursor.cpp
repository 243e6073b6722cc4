#include "view/draw_cursor.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace orv {

const QCursor& drawCursor() {
    // Made once and kept to the end: a pixmap must not outlive the application object,
    // which a static one would.
    static const QCursor* const cursor = [] {
        QPixmap pixmap(32, 32);
        pixmap.fill(Qt::transparent);
        QPainter p(&pixmap);
        p.setRenderHint(QPainter::Antialiasing);
        // A pencil lying from the upper right down to its point at (2, 29), outlined in
        // white so that it shows on a dark background as well.
        QPainterPath body;
        body.moveTo(2, 29);
        body.lineTo(5, 21);
        body.lineTo(24, 2);
        body.lineTo(29, 7);
        body.lineTo(10, 26);
        body.closeSubpath();
        p.setPen(QPen(Qt::white, 3));
        p.drawPath(body);
        p.setPen(QPen(Qt::black, 1));
        p.setBrush(QColor(250, 210, 90));
        p.drawPath(body);
        QPainterPath tip;
        tip.moveTo(2, 29);
        tip.lineTo(5, 21);
        tip.lineTo(10, 26);
        tip.closeSubpath();
        p.setBrush(QColor(235, 200, 160));
        p.drawPath(tip);
        p.setBrush(Qt::black);
        p.drawEllipse(QPointF(3, 28), 1.2, 1.2);
        p.end();
        return new QCursor(pixmap, 2, 29);
    }();
    return *cursor;
}

}  // namespace orv
