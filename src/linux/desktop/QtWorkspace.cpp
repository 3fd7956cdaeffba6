#include "linux/desktop/QtWorkspace.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QUrl>

namespace sunpane {

void QtWorkspace::revealFolder(const std::string& path) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(path)));
}

void QtWorkspace::openUrl(const std::string& url) {
    const QUrl parsed(QString::fromStdString(url), QUrl::StrictMode);
    // The address may come from anyone who sends an invitation.
    const bool isWeb = parsed.scheme() == QLatin1String("http") || parsed.scheme() == QLatin1String("https");
    if (isWeb && !parsed.host().isEmpty()) QDesktopServices::openUrl(parsed);
}

void QtWorkspace::terminate() {
    QCoreApplication::quit();
}

}  // namespace sunpane
