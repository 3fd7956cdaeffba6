#pragma once

#include <QColor>
#include <QPainterPath>
#include <QPolygonF>
#include <QQuickPaintedItem>

namespace sunpane {

/// Paints the panel's body: the notch's outline around a card that hangs from the item's top edge, centred, filled
/// from black at the notch to a warmer dark at the bottom. Its outline is what the window takes as its shape.
class NotchOutline : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(qreal cardWidth MEMBER cardWidth_ WRITE setCardWidth)
    Q_PROPERTY(qreal cardHeight MEMBER cardHeight_ WRITE setCardHeight)
    Q_PROPERTY(qreal bottomRadius MEMBER bottomRadius_ WRITE setBottomRadius)
    Q_PROPERTY(qreal topRadius MEMBER topRadius_ WRITE setTopRadius)
    Q_PROPERTY(QColor topColor MEMBER topColor_)
    Q_PROPERTY(QColor bottomColor MEMBER bottomColor_)
    Q_PROPERTY(QColor edgeColor MEMBER edgeColor_)

public:
    explicit NotchOutline(QQuickItem* parent = nullptr);

    void setCardWidth(qreal width) { change(cardWidth_, width); }
    void setCardHeight(qreal height) { change(cardHeight_, height); }
    void setBottomRadius(qreal radius) { change(bottomRadius_, radius); }
    void setTopRadius(qreal radius) { change(topRadius_, radius); }

    void paint(QPainter* painter) override;

signals:
    /// The outline that is about to be painted, in this item's coordinates.
    void outlineChanged(const QPolygonF& outline);

protected:
    void updatePolish() override;
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;

private:
    void change(qreal& field, qreal value);
    QPainterPath path() const;

    qreal cardWidth_ = 0;
    qreal cardHeight_ = 0;
    qreal bottomRadius_ = 0;
    qreal topRadius_ = 0;
    QColor topColor_ = Qt::black;
    QColor bottomColor_ = Qt::black;
    QColor edgeColor_ = Qt::transparent;
};

}  // namespace sunpane
