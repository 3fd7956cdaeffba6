#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPolygonF>
#include <QWindow>
#include <memory>

#include "linux/desktop/X11Events.h"
#include "platform/PanelWindow.h"

namespace sunpane {

/// Turns a window of the toolkit's into the panel: borderless, unmanaged (override-redirect), above everything.
///
/// Clicks beside the visible outline reach what lies below: with a compositor the outline is the window's input
/// shape and the rest stays transparent; without one it is the window's bounding shape. A click on the panel gives it
/// the keyboard; folding hands the keyboard back to the window that had it.
class X11PanelWindow : public QObject, public PanelWindow {
    Q_OBJECT

public:
    /// Takes over `window`, which draws the panel's content and has an alpha channel.
    X11PanelWindow(std::unique_ptr<QWindow> window, const Rect& frame, X11Events& events);
    ~X11PanelWindow() override;

    std::uint64_t number() const override { return window_->winId(); }
    Rect frame() const override;
    bool isVisible() const override;
    bool isOnScreen() const override;
    void orderFrontRegardless() override;
    void orderOut() override;
    void makeKey() override;
    void resignKey() override;

    /// The visible outline, in the window's device-independent pixels.
    void setOutline(const QPolygonF& outline);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void applyShape();
    void raiseAgain();

    std::unique_ptr<QWindow> window_;
    X11Events& events_;
    QPolygonF outline_;
    xcb_window_t previousFocus_ = XCB_NONE;
    // Two programs that both insist on the top must not raise in turns without end.
    QElapsedTimer sinceRaised_;
    int raisesInARow_ = 0;
};

}  // namespace sunpane
