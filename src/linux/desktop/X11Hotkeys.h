#pragma once

#include <QObject>
#include <vector>

#include "base/HandlerList.h"
#include "linux/desktop/X11Events.h"
#include "platform/Hotkeys.h"

namespace sunpane {

/// A key grab on the root window: Control+Space, whatever lock keys are on. While the key is held down it repeats
/// nothing, and the keyboard belongs to the grab until the first key is let go. Main thread only.
class X11Hotkeys : public QObject, public Hotkeys {
    Q_OBJECT

public:
    /// `events` outlives this.
    explicit X11Hotkeys(X11Events& events);
    ~X11Hotkeys() override;

    Subscription registerControlSpace(std::function<void()> handler) override;

private:
    /// One way to press the key.
    struct Chord {
        xcb_keycode_t key;
        std::uint16_t modifiers;
        friend bool operator==(const Chord&, const Chord&) = default;
    };

    std::vector<Chord> chordsOfMapping() const;
    bool grab();
    void ungrab();
    void giveUp();
    void followMapping();
    void pressed(const xcb_key_press_event_t& event);
    void released(const xcb_key_release_event_t& event);

    X11Events& events_;
    HandlerList<> handlers_;
    std::vector<Chord> chords_;  // grabbed now
    int registrations_ = 0;
    // A key that is held down is reported as released and pressed again at one and the same time.
    xcb_timestamp_t lastRelease_ = XCB_CURRENT_TIME;
};

}  // namespace sunpane
