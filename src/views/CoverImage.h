#pragma once

#include <QImage>
#include <QQuickPaintedItem>

namespace sunpane {

/// Draws a picture that fills the item, its corners rounded and what stands over cut off. Draws nothing without one.
class CoverImage : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(QImage image READ image WRITE setImage NOTIFY imageChanged)
    /// In points.
    Q_PROPERTY(qreal radius READ radius WRITE setRadius NOTIFY radiusChanged)

public:
    explicit CoverImage(QQuickItem* parent = nullptr);

    const QImage& image() const { return image_; }
    void setImage(const QImage& image);
    qreal radius() const { return radius_; }
    void setRadius(qreal radius);

    void paint(QPainter* painter) override;

signals:
    void imageChanged();
    void radiusChanged();

private:
    QImage image_;
    qreal radius_ = 0;
};

}  // namespace sunpane
