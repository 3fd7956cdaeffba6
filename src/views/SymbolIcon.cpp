#include "views/SymbolIcon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace sunpane {
namespace {

// All symbols are drawn in a square of this side, centred on the origin.
constexpr qreal side = 24;

void drawChevron(QPainter& painter, const QColor& color, qreal turnedBy) {
    painter.rotate(turnedBy);
    painter.setPen(QPen(color, 2.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(QPolygonF{QPointF(-3.5, -7), QPointF(3.5, 0), QPointF(-3.5, 7)});
}

void drawSun(QPainter& painter, const QColor& color) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(QPointF(0, 0), 5.2, 5.2);
    painter.setPen(QPen(color, 2.2, Qt::SolidLine, Qt::RoundCap));
    for (int ray = 0; ray < 8; ++ray) {
        const qreal angle = ray * std::numbers::pi / 4;
        const QPointF direction(std::cos(angle), std::sin(angle));
        painter.drawLine(direction * 8, direction * 10.4);
    }
}

QPainterPath star(QPointF center, qreal radius) {
    QPainterPath path(center + QPointF(0, -radius));
    path.quadTo(center, center + QPointF(radius, 0));
    path.quadTo(center, center + QPointF(0, radius));
    path.quadTo(center, center + QPointF(-radius, 0));
    path.quadTo(center, center + QPointF(0, -radius));
    return path;
}

void drawMoon(QPainter& painter, const QColor& color) {
    QPainterPath disc;
    disc.addEllipse(QPointF(-1, 1), 9, 9);
    QPainterPath shadow;
    shadow.addEllipse(QPointF(4, -2.5), 8, 8);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPath(disc.subtracted(shadow));
    painter.drawPath(star(QPointF(5, -5.5), 4));
    painter.drawPath(star(QPointF(8.6, 1.4), 2.6));
}

}  // namespace

SymbolIcon::SymbolIcon(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
}

void SymbolIcon::setSymbol(const QString& symbol) {
    if (symbol_ == symbol) return;
    symbol_ = symbol;
    emit symbolChanged();
    update();
}

void SymbolIcon::setColor(const QColor& color) {
    if (color_ == color) return;
    color_ = color;
    emit colorChanged();
    update();
}

void SymbolIcon::paint(QPainter* painter) {
    painter->setRenderHint(QPainter::Antialiasing);
    painter->translate(width() / 2, height() / 2);
    const qreal scale = std::min(width(), height()) / side;
    painter->scale(scale, scale);
    if (symbol_ == QLatin1String("chevron.right")) {
        drawChevron(*painter, color_, 0);
    } else if (symbol_ == QLatin1String("chevron.left")) {
        drawChevron(*painter, color_, 180);
    } else if (symbol_ == QLatin1String("chevron.down")) {
        drawChevron(*painter, color_, 90);
    } else if (symbol_ == QLatin1String("sun.max.fill")) {
        drawSun(*painter, color_);
    } else if (symbol_ == QLatin1String("moon.stars.fill")) {
        drawMoon(*painter, color_);
    }
}

}  // namespace sunpane
