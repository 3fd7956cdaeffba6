#pragma once

#include <xcb/xcb.h>

#include <QObject>
#include <QSocketNotifier>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include "linux/desktop/X11ScrollDevices.h"
#include "linux/desktop/XcbReply.h"

namespace sunpane {

/// What the X server tells about the whole screen rather than about our own windows, heard on a connection of its
/// own: raw pointer motion and scrolling (XInput 2), a compositor that comes or goes, windows that are put above
/// others, grabbed keys, what the window manager writes on the root window. Without an X server it stays silent. Main
/// thread only.
class X11Events : public QObject {
    Q_OBJECT

public:
    X11Events();
    ~X11Events() override;

    bool isConnected() const { return connection_ != nullptr; }
    bool hasCompositor() const { return hasCompositor_; }
    /// Whether the compositor blurs what is behind the region that a window names for that.
    bool compositorBlurs() const { return hasCompositor_ && compositorBlurs_; }
    /// The window property that names such a region.
    xcb_atom_t blurAtom() const { return blurAtom_; }

    // For the adapters that ask the server for something themselves; only while connected.
    xcb_connection_t* connection() const { return connection_.get(); }
    xcb_window_t root() const { return screen_->root; }
    const xcb_screen_t& screen() const { return *screen_; }
    xcb_atom_t atom(const char* name) const;
    /// The whole numbers in a property of at most `most` of them; empty when there is none.
    std::vector<std::uint32_t> readProperty(xcb_window_t window, xcb_atom_t property, std::uint32_t most) const;
    std::vector<xcb_window_t> childrenOf(xcb_window_t window) const;
    /// The window that the window manager calls active; none when there is none or no window manager.
    xcb_window_t activeWindow() const;
    /// The server's time now, which orders changes of the focus. Costs a round trip.
    xcb_timestamp_t serverTime();
    /// Whether the pointer is over a window of ours that takes it. Costs a round trip.
    bool isPointerOverUs() const;
    /// Tells what has come in by now, before the event loop would.
    void readEvents();
    /// Whether a child of the root window is a window of ours, or the window manager's frame around one.
    bool isOurTopLevel(xcb_window_t window) const;

signals:
    /// The pointer moved, wherever it is. One signal may stand for several movements.
    void pointerMoved();
    /// A scroll axis moved, wherever the pointer is.
    void scrolled(const sunpane::ScrollStep& step);
    /// The left or the right button went down over a window of another program.
    void mouseDownElsewhere();
    /// Another program's window became the active one.
    void applicationActivated();
    /// A compositor came or went, or began or ceased to blur.
    void compositorChanged();
    /// A child of the root window was newly shown.
    void windowShown(xcb_window_t window);
    /// A child of the root window was moved in the stack to right above `below`.
    void windowStacked(xcb_window_t window, xcb_window_t below);
    void rootPropertyChanged(xcb_atom_t property);
    /// A key that was grabbed on this connection, or any key while such a grab lasts.
    void keyPressed(const xcb_key_press_event_t& event);
    void keyReleased(const xcb_key_release_event_t& event);
    void keyboardMappingChanged();

private:
    void selectRawEvents();
    void selectInput(xcb_input_device_id_t device, std::uint32_t mask);
    void watchCompositor();
    void watchRoot();
    XcbReply<xcb_generic_event_t> nextEvent();
    bool handle(const xcb_generic_event_t& event);
    bool handleInput(const xcb_ge_generic_event_t& event);
    void handleRootEvent(const xcb_generic_event_t& event, std::uint8_t type);
    void pressed(std::uint32_t button);
    void activeWindowChanged();
    void findBlur();

    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::optional<X11ScrollDevices> scrollDevices_;  // while there is XInput 2
    // Came while something else was waited for.
    std::deque<XcbReply<xcb_generic_event_t>> deferred_;
    xcb_screen_t* screen_ = nullptr;        // owned by the connection
    xcb_window_t clockWindow_ = XCB_NONE;   // never shown; changes of it tell the server's time
    xcb_window_t activeWindow_ = XCB_NONE;  // as last told
    xcb_atom_t activeWindowAtom_ = XCB_ATOM_NONE;
    xcb_atom_t blurAtom_ = XCB_ATOM_NONE;
    int screenNumber_ = 0;
    std::uint8_t xinputOpcode_ = 0;
    std::uint8_t xfixesFirstEvent_ = 0;
    bool hasCompositor_ = false;
    bool compositorBlurs_ = false;
};

}  // namespace sunpane
