#include "linux/desktop/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QString>

namespace sunpane {

void QtPasteboard::setText(const std::string& text) {
    QGuiApplication::clipboard()->setText(QString::fromStdString(text));
}

}  // namespace sunpane
