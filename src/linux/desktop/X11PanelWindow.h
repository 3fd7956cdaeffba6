#pragma once

#include <QObject>
#include <QPolygonF>
#include <QWindow>
#include <functional>
#include <memory>
#include <optional>

#include "linux/desktop/X11Events.h"
#include "platform/PanelWindow.h"

namespace sunpane {

/// Turns a window of the toolkit's into the panel: borderless and unmanaged (override-redirect). A private space of
/// WindowSpaces keeps it above everything.
///
/// Clicks beside the visible outline reach what lies below: with a compositor the outline is the window's input
/// shape and the rest stays transparent; without one it is the window's bounding shape. A click on the open panel gives
/// it the keyboard; folding hands the keyboard back to the window that had it.
class X11PanelWindow : public QObject, public PanelWindow {
    Q_OBJECT

public:
    /// Takes over `window`, which draws the panel's content and has an alpha channel. `isOpen` tells whether the panel
    /// is unfolded, as long as this lives.
    X11PanelWindow(std::unique_ptr<QWindow> window, const Rect& frame, X11Events& events, std::function<bool()> isOpen);
    ~X11PanelWindow() override;

    std::uint64_t number() const override { return window_->winId(); }
    Rect frame() const override;
    bool isVisible() const override;
    bool isOnScreen() const override;
    void orderFrontRegardless() override;
    void orderOut() override;
    void prepare() override { emit unfoldingExpected(); }
    void makeKey() override;
    void resignKey() override;

    /// Moves the window to another place, or another screen. Tells whether it was elsewhere.
    bool setFrame(const Rect& frame);

    /// The visible outline, in the window's device-independent pixels.
    void setOutline(const QPolygonF& outline);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void unfoldingExpected();

private:
    void applyShape();
    static std::optional<xcb_window_t> focusedWindow();
    /// Who gets the keyboard after the panel: the window that had it, or else the one that is active.
    xcb_window_t heir(xcb_window_t previous) const;

    std::unique_ptr<QWindow> window_;
    X11Events& events_;
    std::function<bool()> isOpen_;
    QPolygonF outline_;
    std::optional<xcb_window_t> previousFocus_;  // since the panel took the keyboard
    xcb_timestamp_t keySince_ = XCB_CURRENT_TIME;
    bool keyAgain_ = false;  // it was taken off the screen while it had the keyboard
};

}  // namespace sunpane
