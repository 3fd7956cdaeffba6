#include "linux/desktop/QtWorkspace.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QUrl>

namespace sunpane {

void QtWorkspace::revealFolder(const std::string& path) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(path)));
}

void QtWorkspace::terminate() {
    QCoreApplication::quit();
}

}  // namespace sunpane
