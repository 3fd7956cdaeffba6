#include "views/WindowSymbols.h"

#include <QPainterPath>
#include <QPolygonF>
#include <array>
#include <cmath>
#include <numbers>

namespace sunpane {
namespace {

constexpr int sixteenthsOfADegree = 16;

void useLine(QPainter& painter, const QColor& color, qreal width = 2) {
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
}

void useFill(QPainter& painter, const QColor& color) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
}

void drawGear(QPainter& painter, const QColor& color) {
    constexpr int teeth = 8;
    QPainterPath gear;
    gear.setFillRule(Qt::WindingFill);
    gear.addEllipse(QPointF(0, 0), 7.6, 7.6);
    for (int tooth = 0; tooth < teeth; ++tooth) {
        const qreal angle = tooth * 2 * std::numbers::pi / teeth;
        const QPointF out(std::sin(angle), -std::cos(angle));
        const QPointF side(out.y(), -out.x());
        gear.addPolygon(QPolygonF{out * 6 + side * 2.6, out * 10.4 + side * 1.7, out * 10.4 - side * 1.7,
                                  out * 6 - side * 2.6, out * 6 + side * 2.6});
    }
    QPainterPath hole;
    hole.addEllipse(QPointF(0, 0), 3.5, 3.5);
    useFill(painter, color);
    painter.drawPath(gear.simplified().subtracted(hole));
}

void drawPalette(QPainter& painter, const QColor& color) {
    QPainterPath board(QPointF(1.5, 9.5));
    board.cubicTo(-5, 9.5, -10, 5.4, -10, 0);
    board.cubicTo(-10, -5.4, -5, -9.5, 0.5, -9.5);
    board.cubicTo(6, -9.5, 10, -6.2, 10, -1.8);
    board.cubicTo(10, 1.6, 7.4, 3.2, 4.6, 3.2);
    board.cubicTo(2.2, 3.2, 1.6, 4.6, 2.6, 6.2);
    board.cubicTo(3.6, 7.8, 3.2, 9.5, 1.5, 9.5);
    useLine(painter, color, 1.9);
    painter.drawPath(board);
    useFill(painter, color);
    for (const QPointF& dab : {QPointF(-5.6, 0.6), QPointF(-3.4, -4.4), QPointF(1.8, -5.4), QPointF(5.8, -2.2)})
        painter.drawEllipse(dab, 1.6, 1.6);
}

void drawFolder(QPainter& painter, const QColor& color) {
    QPainterPath folder(QPointF(-9.5, -5.5));
    folder.quadTo(-9.5, -7.5, -7.5, -7.5);
    folder.lineTo(-3.2, -7.5);
    folder.lineTo(-0.8, -4.8);
    folder.lineTo(7.5, -4.8);
    folder.quadTo(9.5, -4.8, 9.5, -2.8);
    folder.lineTo(9.5, 5.5);
    folder.quadTo(9.5, 7.5, 7.5, 7.5);
    folder.lineTo(-7.5, 7.5);
    folder.quadTo(-9.5, 7.5, -9.5, 5.5);
    folder.closeSubpath();
    useLine(painter, color);
    painter.drawPath(folder);
    painter.drawLine(QPointF(-9, -1.4), QPointF(9, -1.4));
}

void drawSparkles(QPainter& painter, const QColor& color) {
    useFill(painter, color);
    struct Star {
        QPointF center;
        qreal radius;
    };
    for (const auto& [center, radius] : {Star{{-2.5, 1.5}, 8.5}, Star{{6.8, -6.2}, 4.4}, Star{{6.4, 7.6}, 3.2}}) {
        QPainterPath path(center + QPointF(0, -radius));
        path.quadTo(center, center + QPointF(radius, 0));
        path.quadTo(center, center + QPointF(0, radius));
        path.quadTo(center, center + QPointF(-radius, 0));
        path.quadTo(center, center + QPointF(0, -radius));
        painter.drawPath(path);
    }
}

void drawWavingHand(QPainter& painter, const QColor& color) {
    painter.rotate(-18);
    useLine(painter, color, 2.6);
    painter.drawLine(QPointF(-3.6, 1), QPointF(-3.6, -6));
    painter.drawLine(QPointF(-0.3, 1), QPointF(-0.3, -8));
    painter.drawLine(QPointF(3, 1), QPointF(3, -6.8));
    painter.drawLine(QPointF(6.2, 2), QPointF(6.2, -3.6));
    painter.drawLine(QPointF(-4.2, 6), QPointF(-7.8, 2));
    useFill(painter, color);
    QPainterPath palm(QPointF(-4.9, 0));
    palm.lineTo(7.5, 0);
    palm.cubicTo(7.8, 6, 5.6, 10.4, 1, 10.4);
    palm.cubicTo(-2.6, 10.4, -4.2, 8, -5.4, 6);
    palm.closeSubpath();
    painter.drawPath(palm);
}

void drawPower(QPainter& painter, const QColor& color) {
    useLine(painter, color, 2.2);
    painter.drawArc(QRectF(-8, -7, 16, 16), 122 * sixteenthsOfADegree, 296 * sixteenthsOfADegree);
    painter.drawLine(QPointF(0, -9.6), QPointF(0, -0.5));
}

void drawTwoSheets(QPainter& painter, const QColor& color) {
    useLine(painter, color);
    painter.drawRoundedRect(QRectF(-3, -4, 11, 13.5), 2.4, 2.4);
    QPainterPath behind(QPointF(-6, 5.5));
    behind.quadTo(-8, 5.5, -8, 3.4);
    behind.lineTo(-8, -7.4);
    behind.quadTo(-8, -9.5, -6, -9.5);
    behind.lineTo(1, -9.5);
    behind.quadTo(3, -9.5, 3, -7.6);
    painter.drawPath(behind);
}

void drawCross(QPainter& painter, const QColor& color) {
    useLine(painter, color, 2.6);
    painter.drawLine(QPointF(-6, -6), QPointF(6, 6));
    painter.drawLine(QPointF(-6, 6), QPointF(6, -6));
}

void drawCheckedDisc(QPainter& painter, const QColor& color) {
    QPainterPath disc;
    disc.addEllipse(QPointF(0, 0), 10, 10);
    QPainterPath tick(QPointF(-4.6, 0.4));
    tick.lineTo(-1.3, 3.8);
    tick.lineTo(4.8, -3.8);
    QPainterPathStroker stroker(QPen(color, 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    useFill(painter, color);
    painter.drawPath(disc.subtracted(stroker.createStroke(tick)));
}

void drawArrowUp(QPainter& painter, const QColor& color) {
    useLine(painter, color, 2.4);
    painter.drawLine(QPointF(0, 8), QPointF(0, -8));
    painter.drawPolyline(QPolygonF{QPointF(-6, -2), QPointF(0, -8), QPointF(6, -2)});
}

struct Symbol {
    const char* name;
    void (*draw)(QPainter&, const QColor&);
};

constexpr std::array symbols = {
    Symbol{"gearshape", drawGear},       Symbol{"paintpalette", drawPalette},
    Symbol{"folder", drawFolder},        Symbol{"sparkles", drawSparkles},
    Symbol{"hand.wave", drawWavingHand}, Symbol{"power", drawPower},
    Symbol{"doc.on.doc", drawTwoSheets}, Symbol{"xmark", drawCross},
    Symbol{"arrow.up", drawArrowUp},     Symbol{"checkmark.circle.fill", drawCheckedDisc},
};

}  // namespace

void drawWindowSymbol(QPainter& painter, const QString& name, const QColor& color) {
    for (const Symbol& symbol : symbols) {
        if (name == QLatin1String(symbol.name)) return symbol.draw(painter, color);
    }
}

}  // namespace sunpane
