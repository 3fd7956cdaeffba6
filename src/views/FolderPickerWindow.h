#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <string>

#include "platform/FolderPicker.h"
#include "views/SecondaryWindow.h"

namespace sunpane {

/// Lets the user walk to a folder, type its path, or make a new one. Takes no memory while it is closed. One instance,
/// owned by the start-up code; main thread only.
class FolderPickerWindow : public QObject, public FolderPicker {
    Q_OBJECT
    /// The folder that is looked into, and the names of the folders in it.
    Q_PROPERTY(QString folder READ folder NOTIFY changed)
    Q_PROPERTY(QStringList names READ names NOTIFY changed)
    Q_PROPERTY(bool hasParent READ hasParent NOTIFY changed)
    /// What went wrong with the last attempt; empty when nothing did.
    Q_PROPERTY(QString problem READ problem NOTIFY changed)
    Q_PROPERTY(QString prompt READ prompt NOTIFY changed)

public:
    /// More folders than these are not listed; their paths can be typed.
    static constexpr qsizetype maximumNames = 2000;

    explicit FolderPickerWindow(ViewEngine& engine);

    void pick(const std::string& start, const std::string& prompt,
              std::function<void(std::optional<std::string> folder)> done) override;

    const QString& folder() const { return folder_; }
    const QStringList& names() const { return names_; }
    bool hasParent() const;
    const QString& problem() const { return problem_; }
    const QString& prompt() const { return prompt_; }

    /// Looks into one of `names`.
    Q_INVOKABLE void enter(const QString& name);
    Q_INVOKABLE void leave();
    Q_INVOKABLE void create(const QString& name);
    /// Takes the folder at that path, which is made when it is missing: an absolute path, one from the home folder
    /// ("~/Notes"), or one from the folder on screen.
    Q_INVOKABLE void choose(const QString& path);
    Q_INVOKABLE void cancel();

signals:
    void changed();

private:
    // The folder that a typed path means.
    QString resolved(const QString& path) const;
    // Shows the folder, or why it cannot be shown.
    void lookInto(const QString& path);
    void showFolder(const QString& path);
    void fail(const QString& problem);
    void finish(std::optional<std::string> folder);

    SecondaryWindow window_;
    std::function<void(std::optional<std::string>)> done_;
    QString folder_;
    QStringList names_;
    QString problem_;
    QString prompt_;
};

}  // namespace sunpane
