#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <map>
#include <optional>
#include <vector>

#include "base/HandlerList.h"
#include "linux/desktop/X11Events.h"
#include "platform/WindowSpaces.h"

namespace sunpane {

/// Spaces on X11: the window manager's desktops (Extended Window Manager Hints), numbered from 1.
///
/// X11 has one stack of windows and no private spaces. A window in one of ours is put on top of the stack again
/// whenever another window came above it, a full-screen one included. Two things stay above: our own windows, and
/// windows that hide the whole panel and that the window manager does not know, the curtains, because a locked screen
/// looks like that. As long as such a window is on screen, what is kept on top stays below it. A space at level 0 or
/// below keeps nothing on top. Main thread only.
class X11WindowSpaces : public QObject, public WindowSpaces {
    Q_OBJECT

public:
    /// `events` outlives this.
    explicit X11WindowSpaces(X11Events& events);

    SpaceID activeSpace() const override;
    std::optional<std::int32_t> type(SpaceID space) const override;
    Subscription onActiveSpaceChanged(std::function<void()> handler) override;

    SpaceID createPrivate(std::int32_t level) override;
    void show(SpaceID space) override;
    void moveWindow(std::uint64_t windowNumber, SpaceID space) override;
    void destroy(SpaceID space) override;

private:
    /// Two programs that both insist on the top must not raise in turns without end: after this many raises in a row
    /// there is a rest of so many milliseconds.
    static constexpr int mostRaisesInARow = 20;
    static constexpr int restMilliseconds = 2000;

    struct PrivateSpace {
        std::int32_t level = 0;
        bool isShown = false;
        std::vector<xcb_window_t> windows;
    };

    void rootPropertyChanged(xcb_atom_t property);
    void readDesktop();
    std::vector<xcb_window_t> keptOnTop() const;
    void stacked(xcb_window_t window, xcb_window_t below);
    void coveredBy(xcb_window_t cover);
    void raise();
    void putOnTop(const std::vector<xcb_window_t>& windows);
    /// None when no curtain is on screen.
    xcb_window_t lowestCurtain();
    bool isViewable(xcb_window_t window) const;
    bool isCurtain(xcb_window_t cover, xcb_window_t window) const;
    bool isManaged(xcb_window_t topLevel) const;

    X11Events& events_;
    HandlerList<> handlers_;
    std::optional<std::uint32_t> desktop_;
    xcb_atom_t desktopAtom_ = XCB_ATOM_NONE;
    xcb_atom_t managerAtom_ = XCB_ATOM_NONE;
    xcb_atom_t clientsAtom_ = XCB_ATOM_NONE;
    xcb_atom_t stateAtom_ = XCB_ATOM_NONE;
    xcb_atom_t fullScreenAtom_ = XCB_ATOM_NONE;

    std::map<SpaceID, PrivateSpace> private_;
    SpaceID lastPrivate_;
    std::vector<xcb_window_t> curtains_;  // those that are no longer on screen are dropped when it is asked for
    QElapsedTimer sinceRaised_;
    QTimer afterRest_;
    int raisesInARow_ = 0;
};

}  // namespace sunpane
