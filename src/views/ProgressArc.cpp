#include "views/ProgressArc.h"

#include <QPainter>
#include <algorithm>

namespace sunpane {

ProgressArc::ProgressArc(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
}

void ProgressArc::setProgress(qreal progress) {
    if (progress_ == progress) return;
    progress_ = progress;
    emit progressChanged();
    update();
}

void ProgressArc::paint(QPainter* painter) {
    constexpr qreal stroke = 2.5;
    constexpr int sixteenthsOfADegree = 16;
    constexpr int top = 90 * sixteenthsOfADegree;
    const qreal side = std::min(width(), height()) - stroke;
    const QRectF ring((width() - side) / 2, (height() - side) / 2, side, side);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(trackColor_, stroke));
    painter->drawEllipse(ring);
    painter->setPen(QPen(color_, stroke, Qt::SolidLine, Qt::RoundCap));
    painter->drawArc(ring, top, -static_cast<int>(360 * sixteenthsOfADegree * std::clamp(progress_, 0.0, 1.0)));
}

}  // namespace sunpane
