#pragma once

#include <xcb/xcb.h>

#include <QObject>
#include <QSocketNotifier>
#include <memory>

namespace sunpane {

/// What the X server tells about the whole screen rather than about our own windows, heard on a connection of its
/// own: raw pointer motion (XInput 2), a compositor that comes or goes, windows that are put above ours. Without an X
/// server it stays silent. Main thread only.
class X11Events : public QObject {
    Q_OBJECT

public:
    X11Events();
    ~X11Events() override;

    bool isConnected() const { return connection_ != nullptr; }
    bool hasCompositor() const { return hasCompositor_; }
    /// From now on `coveredByAnother` tells of this window.
    void watchStacking(xcb_window_t window) { watchedWindow_ = window; }

signals:
    /// The pointer moved, wherever it is. One signal may stand for several movements.
    void pointerMoved();
    /// The left or the right button went down over a window of another program.
    void mouseDownElsewhere();
    /// Another program's window became the active one.
    void applicationActivated();
    void compositorChanged();
    /// Another window was put above the watched one, or newly shown.
    void coveredByAnother();

private:
    void selectRawMotion();
    void watchCompositor();
    void readEvents();
    bool handle(const xcb_generic_event_t& event);
    void pressed(std::uint32_t button);
    void activeWindowChanged();
    xcb_atom_t atom(const char* name) const;

    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    std::unique_ptr<QSocketNotifier> notifier_;
    xcb_screen_t* screen_ = nullptr;  // owned by the connection
    xcb_window_t watchedWindow_ = XCB_NONE;
    xcb_atom_t activeWindowAtom_ = XCB_ATOM_NONE;
    int screenNumber_ = 0;
    std::uint8_t xinputOpcode_ = 0;
    std::uint8_t xfixesFirstEvent_ = 0;
    bool hasCompositor_ = false;
};

}  // namespace sunpane
