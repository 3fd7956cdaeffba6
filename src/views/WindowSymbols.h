#pragma once

#include <QColor>
#include <QPainter>
#include <QString>

namespace sunpane {

/// Draws one of the symbols of the settings, the tour and the other windows, such as "gearshape", in a square of 24
/// around the origin. An unknown name draws nothing.
void drawWindowSymbol(QPainter& painter, const QString& name, const QColor& color);

}  // namespace sunpane
