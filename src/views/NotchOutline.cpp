#include "views/NotchOutline.h"

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

// Open along the top edge, where the screen ends and no line is drawn.
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
    return path;
}

void NotchOutline::updatePolish() {
    emit outlineChanged(path().toFillPolygon());
    update();
}

void NotchOutline::setBackground(PanelBackground* background) {
    background_ = background;
    connect(background, &PanelBackground::changed, this, [this] { update(); });
    update();
}

void NotchOutline::paint(QPainter* painter) {
    if (background_ != nullptr)
        background_->paint(*painter, path(), {cardHeight_, notchHeight_, headerBottom_, openness_});
}

}  // namespace sunpane
