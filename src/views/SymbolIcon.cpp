#include "views/SymbolIcon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "views/WindowSymbols.h"

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

void drawVideo(QPainter& painter, const QColor& color) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(QRectF(-11, -6.5, 14.5, 13), 3, 3);
    painter.setPen(QPen(color, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolygon(QPolygonF{QPointF(5.5, -1.6), QPointF(10.2, -5), QPointF(10.2, 5), QPointF(5.5, 1.6)});
}

void drawCalendar(QPainter& painter, const QColor& color) {
    painter.setPen(QPen(color, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(-9, -8, 18, 17), 3, 3);
    painter.drawLine(QPointF(-9, -3), QPointF(9, -3));
    painter.drawLine(QPointF(-4.5, -10.5), QPointF(-4.5, -7));
    painter.drawLine(QPointF(4.5, -10.5), QPointF(4.5, -7));
}

void drawTriangle(QPainter& painter, const QColor& color, qreal left, qreal right) {
    painter.setPen(QPen(color, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(color);
    painter.drawPolygon(QPolygonF{QPointF(left, -6.5), QPointF(right, 0), QPointF(left, 6.5)});
}

void drawPlay(QPainter& painter, const QColor& color) {
    drawTriangle(painter, color, -5.5, 7.5);
}

void drawPause(QPainter& painter, const QColor& color) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(QRectF(-7, -8, 5, 16), 1.6, 1.6);
    painter.drawRoundedRect(QRectF(2, -8, 5, 16), 1.6, 1.6);
}

void drawForward(QPainter& painter, const QColor& color) {
    drawTriangle(painter, color, -9.5, -0.5);
    drawTriangle(painter, color, 0.5, 9.5);
}

void drawBackward(QPainter& painter, const QColor& color) {
    painter.rotate(180);
    drawForward(painter, color);
}

void drawLoudspeaker(QPainter& painter, const QColor& color) {
    painter.setPen(QPen(color, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(color);
    painter.drawPolygon(QPolygonF{QPointF(-10, -3.2), QPointF(-6.5, -3.2), QPointF(-1.5, -7.5), QPointF(-1.5, 7.5),
                                  QPointF(-6.5, 3.2), QPointF(-10, 3.2)});
    painter.setPen(QPen(color, 2, Qt::SolidLine, Qt::RoundCap));
    painter.setBrush(Qt::NoBrush);
}

void drawSpeaker(QPainter& painter, const QColor& color) {
    drawLoudspeaker(painter, color);
    constexpr int sixteenthsOfADegree = 16;
    for (const qreal radius : {4.0, 8.0}) {
        painter.drawArc(QRectF(1 - radius, -radius, 2 * radius, 2 * radius), -45 * sixteenthsOfADegree,
                        90 * sixteenthsOfADegree);
    }
}

void drawMutedSpeaker(QPainter& painter, const QColor& color) {
    drawLoudspeaker(painter, color);
    painter.drawLine(QPointF(3, -3.5), QPointF(10, 3.5));
    painter.drawLine(QPointF(3, 3.5), QPointF(10, -3.5));
}

void drawNote(QPainter& painter, const QColor& color) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(QPointF(-4.8, 6.5), 3.4, 2.7);
    painter.drawEllipse(QPointF(5.6, 4.7), 3.4, 2.7);
    painter.setPen(QPen(color, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(QPolygonF{QPointF(-2.4, 6), QPointF(-2.4, -6.5), QPointF(8, -8.6), QPointF(8, 4.2)});
}

void drawCheckmark(QPainter& painter, const QColor& color) {
    painter.setPen(QPen(color, 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(QPolygonF{QPointF(-8, 0.5), QPointF(-2.5, 6.5), QPointF(8.5, -6.5)});
}

void drawTrash(QPainter& painter, const QColor& color) {
    painter.setPen(QPen(color, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(color);
    painter.drawPolygon(QPolygonF{QPointF(-6.6, -4.4), QPointF(6.6, -4.4), QPointF(5.4, 9.6), QPointF(-5.4, 9.6)});
    painter.setPen(QPen(color, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawLine(QPointF(-8.6, -7.6), QPointF(8.6, -7.6));
    painter.drawPolyline(QPolygonF{QPointF(-3, -8), QPointF(-3, -10.4), QPointF(3, -10.4), QPointF(3, -8)});
}

void drawFivePointedStar(QPainter& painter, const QColor& color) {
    QPolygonF points;
    for (int i = 0; i < 10; ++i) {
        const qreal angle = i * std::numbers::pi / 5;
        points << QPointF(std::sin(angle), -std::cos(angle)) * (i % 2 == 0 ? 10.5 : 4.6) + QPointF(0, 0.6);
    }
    painter.setPen(QPen(color, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(color);
    painter.drawPolygon(points);
}

void drawStruckStar(QPainter& painter, const QColor& color) {
    drawFivePointedStar(painter, color);
    painter.setPen(QPen(color, 2.2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(-10, -10), QPointF(10, 10));
}

void drawBell(QPainter& painter, const QColor& color) {
    QPainterPath bell(QPointF(-9, 6));
    bell.cubicTo(QPointF(-5, 2), QPointF(-8, -9.5), QPointF(0, -9.5));
    bell.cubicTo(QPointF(8, -9.5), QPointF(5, 2), QPointF(9, 6));
    bell.closeSubpath();
    painter.setPen(QPen(color, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(color);
    painter.drawPath(bell);
    painter.drawPie(QRectF(-3, 6.6, 6, 6), 180 * 16, 180 * 16);
}

// What the badge at its lower right corner would touch of the calendar is left out.
void drawBadgedCalendar(QPainter& painter, const QColor& color) {
    painter.save();
    QPainterPath around;
    around.addRect(QRectF(-12, -12, 24, 24));
    QPainterPath badge;
    badge.addRect(QRectF(1, 1, 12, 12));
    painter.setClipPath(around.subtracted(badge));
    drawCalendar(painter, color);
    painter.restore();
    painter.setPen(QPen(color, 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

void drawCalendarPlus(QPainter& painter, const QColor& color) {
    drawBadgedCalendar(painter, color);
    painter.drawLine(QPointF(3.5, 7), QPointF(11, 7));
    painter.drawLine(QPointF(7.25, 3.25), QPointF(7.25, 10.75));
}

void drawCalendarCheckmark(QPainter& painter, const QColor& color) {
    drawBadgedCalendar(painter, color);
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(QPolygonF{QPointF(3.4, 7.4), QPointF(6.2, 10.4), QPointF(11, 4)});
}

struct Symbol {
    const char* name;
    void (*draw)(QPainter&, const QColor&);
};

constexpr std::array symbols = {
    Symbol{"chevron.right", [](QPainter& painter, const QColor& color) { drawChevron(painter, color, 0); }},
    Symbol{"chevron.left", [](QPainter& painter, const QColor& color) { drawChevron(painter, color, 180); }},
    Symbol{"chevron.down", [](QPainter& painter, const QColor& color) { drawChevron(painter, color, 90); }},
    Symbol{"checkmark", drawCheckmark},
    Symbol{"star.fill", drawFivePointedStar},
    Symbol{"star.slash.fill", drawStruckStar},
    Symbol{"bell.fill", drawBell},
    Symbol{"calendar.badge.plus", drawCalendarPlus},
    Symbol{"calendar.badge.checkmark", drawCalendarCheckmark},
    Symbol{"sun.max.fill", drawSun},
    Symbol{"moon.stars.fill", drawMoon},
    Symbol{"video.fill", drawVideo},
    Symbol{"calendar", drawCalendar},
    Symbol{"play.fill", drawPlay},
    Symbol{"pause.fill", drawPause},
    Symbol{"forward.fill", drawForward},
    Symbol{"backward.fill", drawBackward},
    Symbol{"speaker.wave.2.fill", drawSpeaker},
    Symbol{"speaker.slash.fill", drawMutedSpeaker},
    Symbol{"music.note", drawNote},
    Symbol{"trash.fill", drawTrash},
};

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
    for (const Symbol& symbol : symbols) {
        if (symbol_ == QLatin1String(symbol.name)) return symbol.draw(*painter, color_);
    }
    drawWindowSymbol(*painter, symbol_, color_);
}

}  // namespace sunpane
