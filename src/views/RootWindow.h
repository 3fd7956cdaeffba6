#pragma once

#include <QPolygonF>
#include <QQmlEngine>
#include <QQuickWindow>
#include <memory>

#include "views/PanelBackground.h"
#include "views/PanelPresenter.h"

namespace sunpane {

/// The window that draws the panel's root view on a clear background. Whoever owns it places it and gives it the
/// shape that `outlineChanged` tells.
class RootWindow : public QQuickWindow {
    Q_OBJECT

public:
    /// `engine` outlives the window.
    RootWindow(QQmlEngine& engine, std::unique_ptr<PanelPresenter> presenter,
               const PanelBackground::Collaborators& background);
    ~RootWindow() override;

    PanelPresenter& presenter() { return *presenter_; }
    PanelBackground& background() { return background_; }

    /// Makes what the open panel shows, if it is not there yet.
    void makeContent();

    /// Before the first window: registers the panel's types with QML.
    static void registerTypes();

signals:
    /// The visible outline in this window's coordinates.
    void outlineChanged(const QPolygonF& outline);
    /// What the open panel showed is gone.
    void contentGivenUp();

private:
    std::unique_ptr<PanelPresenter> presenter_;
    PanelBackground background_;
    std::unique_ptr<QQuickItem> rootView_;
};

}  // namespace sunpane
