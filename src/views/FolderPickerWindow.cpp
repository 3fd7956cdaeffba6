#include "views/FolderPickerWindow.h"

#include <QDir>
#include <QFileInfo>
#include <utility>

namespace sunpane {

FolderPickerWindow::FolderPickerWindow(ViewEngine& engine)
    : window_(engine, QStringLiteral("FolderPickerWindow.qml")) {}

void FolderPickerWindow::pick(const std::string& start, const std::string& prompt,
                              std::function<void(std::optional<std::string>)> done) {
    const QVariantMap properties{{QStringLiteral("picker"), QVariant::fromValue<QObject*>(this)}};
    if (done_) {
        window_.show(properties);
        return done(std::nullopt);
    }
    done_ = std::move(done);
    prompt_ = QString::fromStdString(prompt);
    // The folder may not exist yet.
    QString nearest = QString::fromStdString(start);
    while (!QFileInfo(nearest).isDir() && QFileInfo(nearest).path() != nearest)
        nearest = QFileInfo(nearest).path();
    showFolder(nearest);
    window_.show(properties);
}

bool FolderPickerWindow::hasParent() const {
    return !QDir(folder_).isRoot();
}

QString FolderPickerWindow::resolved(const QString& path) const {
    const QString trimmed = path.trimmed();
    if (trimmed == QLatin1String("~") || trimmed.startsWith(QLatin1String("~/")))
        return QDir::cleanPath(QDir::homePath() + trimmed.mid(1));
    return QDir::cleanPath(QDir(folder_).absoluteFilePath(trimmed));
}

void FolderPickerWindow::showFolder(const QString& path) {
    folder_ = path;
    names_ = QDir(path).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase | QDir::LocaleAware);
    if (names_.size() > maximumNames) names_.resize(maximumNames);
    problem_.clear();
    emit changed();
}

void FolderPickerWindow::fail(const QString& problem) {
    problem_ = problem;
    emit changed();
}

void FolderPickerWindow::lookInto(const QString& path) {
    const QFileInfo info(path);
    if (!info.isDir()) return fail(tr("There is no folder %1.").arg(path));
    if (!info.isReadable() || !info.isExecutable()) return fail(tr("You may not look into %1.").arg(path));
    showFolder(path);
}

void FolderPickerWindow::enter(const QString& name) {
    lookInto(QDir::cleanPath(folder_ + QLatin1Char('/') + name));
}

void FolderPickerWindow::leave() {
    if (hasParent()) lookInto(QFileInfo(folder_).path());
}

void FolderPickerWindow::create(const QString& name) {
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty() || trimmed.contains(QLatin1Char('/')) || !QDir(folder_).mkdir(trimmed))
        return fail(tr("The folder “%1” could not be made.").arg(trimmed));
    showFolder(QDir(folder_).absoluteFilePath(trimmed));
}

void FolderPickerWindow::choose(const QString& path) {
    // What was walked to keeps its name as it is; spaces are strayed ones only in what was typed.
    const QString target = path == folder_ ? folder_ : resolved(path);
    if (!QFileInfo(target).isDir() && !QDir().mkpath(target))
        return fail(tr("The folder %1 could not be made.").arg(target));
    finish(target.toStdString());
}

void FolderPickerWindow::cancel() {
    finish(std::nullopt);
}

void FolderPickerWindow::finish(std::optional<std::string> folder) {
    const auto done = std::exchange(done_, nullptr);
    if (!done) return;  // closing the window after a choice
    window_.discard();
    done(std::move(folder));
}

}  // namespace sunpane
