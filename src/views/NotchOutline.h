#pragma once

#include <QPainterPath>
#include <QPolygonF>
#include <QQuickPaintedItem>

#include "views/PanelBackground.h"

namespace sunpane {

/// Paints the panel's body: the notch's outline around a card that hangs from the item's top edge, centred, filled with
/// the panel's background. Its outline is what the window takes as its shape.
class NotchOutline : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(qreal cardWidth MEMBER cardWidth_ WRITE setCardWidth)
    Q_PROPERTY(qreal cardHeight MEMBER cardHeight_ WRITE setCardHeight)
    Q_PROPERTY(qreal bottomRadius MEMBER bottomRadius_ WRITE setBottomRadius)
    Q_PROPERTY(qreal topRadius MEMBER topRadius_ WRITE setTopRadius)
    /// From 0, all black, to 1, the background as the theme has it.
    Q_PROPERTY(qreal openness MEMBER openness_ WRITE setOpenness)
    Q_PROPERTY(qreal notchHeight MEMBER notchHeight_ WRITE setNotchHeight)
    /// Down to where text lies on the background itself.
    Q_PROPERTY(qreal headerBottom MEMBER headerBottom_ WRITE setHeaderBottom)
    Q_PROPERTY(sunpane::PanelBackground* background MEMBER background_ WRITE setBackground)

public:
    explicit NotchOutline(QQuickItem* parent = nullptr);

    void setCardWidth(qreal width) { change(cardWidth_, width); }
    void setCardHeight(qreal height) { change(cardHeight_, height); }
    void setBottomRadius(qreal radius) { change(bottomRadius_, radius); }
    void setTopRadius(qreal radius) { change(topRadius_, radius); }
    void setOpenness(qreal openness) { change(openness_, openness); }
    void setNotchHeight(qreal height) { change(notchHeight_, height); }
    void setHeaderBottom(qreal bottom) { change(headerBottom_, bottom); }
    /// Outlives the item.
    void setBackground(PanelBackground* background);

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
    qreal openness_ = 0;
    qreal notchHeight_ = 0;
    qreal headerBottom_ = 0;
    PanelBackground* background_ = nullptr;
};

}  // namespace sunpane
