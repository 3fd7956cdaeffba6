#pragma once

#include <QImage>
#include <QObject>
#include <QPainter>
#include <QPainterPath>
#include <functional>
#include <memory>

#include "views/PanelBackdrop.h"
#include "views/ThemeStore.h"

namespace sunpane {

/// The panel's background: what shows through of the screen behind it, the black base, the theme's wash, and a scrim
/// under the header's text. One for each panel window; main thread only.
class PanelBackground : public QObject {
    Q_OBJECT
    /// Whether anything but the black notch is to be seen. What the background needs is held only while it is.
    Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY shownChanged)
    /// How strongly whatever has text on it is underlaid with black, from 0 to 1.
    Q_PROPERTY(qreal scrim READ scrim NOTIFY changed)

public:
    struct Collaborators {
        ThemeStore& theme;
        ScreenBackdrop& screen;
        RunLoop& runLoop;
        WorkQueueFactory& queues;
        std::function<int()> spaceGeneration;
    };

    /// The panel as it is in this frame, in points.
    struct Measures {
        qreal cardHeight = 0;
        qreal notchHeight = 0;
        /// Down to where text lies on the background itself.
        qreal headerBottom = 0;
        /// From 0, the black notch, to 1, the theme's look.
        qreal openness = 0;
    };

    /// `window` tells which window is painted.
    PanelBackground(const Collaborators& collaborators, std::function<PanelBackdrop::Window()> window);
    ~PanelBackground() override;

    bool shown() const { return shown_; }
    void setShown(bool shown);
    qreal scrim() const { return scrim_; }

    /// The window has another place or size: what is behind it is another picture.
    void windowMoved();

    /// Paints into `outline`, in the window's points.
    void paint(QPainter& painter, const QPainterPath& outline, const Measures& measures) const;

signals:
    /// It has to be painted anew.
    void changed();
    void shownChanged();

private:
    void scheduleRefresh();
    void refresh(bool isFolded = false);
    void adopt();
    void paintBackdrop(QPainter& painter, const QPainterPath& outline) const;

    Collaborators with_;
    std::function<PanelBackdrop::Window()> window_;
    PanelBackdrop backdrop_;
    QImage image_;  // the backdrop's own pixels
    bool shown_ = false;
    qreal scrim_ = 1;
    bool refreshPosted_ = false;
    std::shared_ptr<PanelBackground*> self_;
    Subscription themeChanges_;
};

}  // namespace sunpane
