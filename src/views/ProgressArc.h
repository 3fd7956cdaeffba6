#pragma once

#include <QColor>
#include <QQuickPaintedItem>

namespace sunpane {

/// A ring that fills clockwise from the top.
class ProgressArc : public QQuickPaintedItem {
    Q_OBJECT
    /// From 0, nothing, to 1, the whole ring.
    Q_PROPERTY(qreal progress READ progress WRITE setProgress NOTIFY progressChanged)
    Q_PROPERTY(QColor color MEMBER color_)
    Q_PROPERTY(QColor trackColor MEMBER trackColor_)

public:
    explicit ProgressArc(QQuickItem* parent = nullptr);

    qreal progress() const { return progress_; }
    void setProgress(qreal progress);

    void paint(QPainter* painter) override;

signals:
    void progressChanged();

private:
    qreal progress_ = 0;
    QColor color_ = Qt::white;
    QColor trackColor_ = Qt::transparent;
};

}  // namespace sunpane
