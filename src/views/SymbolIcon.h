#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QString>

namespace sunpane {

/// Draws one of the panel's symbols as vectors, crisp at every scale, such as "chevron.left" or "play.fill". An unknown
/// name draws nothing.
class SymbolIcon : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(QString symbol READ symbol WRITE setSymbol NOTIFY symbolChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

public:
    explicit SymbolIcon(QQuickItem* parent = nullptr);

    const QString& symbol() const { return symbol_; }
    void setSymbol(const QString& symbol);
    const QColor& color() const { return color_; }
    void setColor(const QColor& color);

    void paint(QPainter* painter) override;

signals:
    void symbolChanged();
    void colorChanged();

private:
    QString symbol_;
    QColor color_ = Qt::white;
};

}  // namespace sunpane
