#include "views/NotchOutline.h"

#include <QLinearGradient>
#include <QPainter>

#include "notch/NotchShape.h"

namespace sunpane {

NotchOutline::NotchOutline(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
}

void NotchOutline::change(qreal& field, qreal value) {
    if (field == value) return;
    field = value;
    // Several of these change in one frame; the outline is made once, when the frame is prepared.
    polish();
}

void NotchOutline::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) {
    QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
    polish();
}

QPainterPath NotchOutline::path() const {
    const NotchShape shape{bottomRadius_, topRadius_};
    const auto outline = shape.path({(width() - cardWidth_) / 2, 0, cardWidth_, cardHeight_});
    const auto toQt = [](Point point) { return QPointF(point.x, point.y); };
    QPainterPath path(toQt(outline.start));
    for (const auto& segment : outline.segments) {
        if (segment.kind == NotchShape::Segment::Kind::line) {
            path.lineTo(toQt(segment.end));
        } else {
            path.quadTo(toQt(segment.control), toQt(segment.end));
        }
    }
    path.closeSubpath();
    return path;
}

void NotchOutline::updatePolish() {
    emit outlineChanged(path().toFillPolygon());
    update();
}

void NotchOutline::paint(QPainter* painter) {
    QLinearGradient fill(0, 0, 0, cardHeight_);
    fill.setColorAt(0, topColor_);
    fill.setColorAt(1, bottomColor_);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->fillPath(path(), fill);
    if (edgeColor_.alpha() > 0) painter->strokePath(path(), QPen(edgeColor_, 1));
}

}  // namespace sunpane
