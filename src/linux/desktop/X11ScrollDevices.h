#pragma once

#include <xcb/xinput.h>

#include <cstdint>
#include <map>
#include <optional>

#include "linux/desktop/ScrollGestures.h"

namespace sunpane {

/// Reads the scrolling out of XInput 2 raw motion, and keeps what the server knows of each device that scrolls.
/// Main thread only.
class X11ScrollDevices {
public:
    /// `connection` outlives it.
    explicit X11ScrollDevices(xcb_connection_t* connection) : connection_(connection) {}

    /// Nothing when the event moves no scroll axis.
    std::optional<ScrollStep> read(const xcb_input_raw_motion_event_t& event);

    /// What was known of devices may have changed.
    void forget() { devices_.clear(); }

private:
    struct Axis {
        std::uint16_t number = 0;
        double increment = 0;  // of a notch; 0 when the device has no such axis
    };
    struct Device {
        Axis horizontal;
        Axis vertical;
        ScrollDevice kind = ScrollDevice::unknown;
        bool contentFollowsFingers = true;
    };

    const Device& device(std::uint16_t id);
    void readAxes(std::uint16_t id, Device& device) const;
    void readProperties(std::uint16_t id, Device& device) const;

    xcb_connection_t* connection_;
    std::map<std::uint16_t, Device> devices_;
};

}  // namespace sunpane
