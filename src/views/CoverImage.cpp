#include "views/CoverImage.h"

#include <QPainter>
#include <QPainterPath>

namespace sunpane {

CoverImage::CoverImage(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
}

void CoverImage::setImage(const QImage& image) {
    if (image_ == image) return;
    image_ = image;
    emit imageChanged();
    update();
}

void CoverImage::setRadius(qreal radius) {
    if (radius_ == radius) return;
    radius_ = radius;
    emit radiusChanged();
    update();
}

void CoverImage::paint(QPainter* painter) {
    if (image_.isNull()) return;
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    QPainterPath outline;
    outline.addRoundedRect(QRectF(QPointF(), size()), radius_, radius_);
    painter->setClipPath(outline);
    const QSizeF scaled = QSizeF(image_.size()).scaled(size(), Qt::KeepAspectRatioByExpanding);
    const QPointF corner((width() - scaled.width()) / 2, (height() - scaled.height()) / 2);
    painter->drawImage(QRectF(corner, scaled), image_);
}

}  // namespace sunpane
