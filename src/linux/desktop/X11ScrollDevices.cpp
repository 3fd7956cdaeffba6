#include "linux/desktop/X11ScrollDevices.h"

#include <cstring>
#include <string_view>
#include <vector>

#include "linux/desktop/XcbReply.h"

namespace sunpane {
namespace {

// Pointer positions are axes 0 and 1 everywhere.
constexpr std::uint32_t pointerAxes = 0b11;
constexpr std::uint32_t longestProperty = 4;  // of what is read, in units of four bytes

// Properties of the libinput driver.
constexpr const char* scrollMethodsProperty = "libinput Scroll Methods Available";
constexpr const char* naturalScrollingProperty = "libinput Natural Scrolling Enabled";

double toDouble(const xcb_input_fp3232_t& value) {
    return value.integral + value.frac / 4294967296.0;
}

// The property's bytes; empty when the device has no such property.
std::vector<std::uint8_t> bytesOf(xcb_connection_t* connection, std::uint16_t device, std::string_view name) {
    const auto atomCookie = xcb_intern_atom(connection, 1, static_cast<std::uint16_t>(name.size()), name.data());
    const auto atom = own(xcb_intern_atom_reply(connection, atomCookie, nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE) return {};
    const auto cookie =
        xcb_input_xi_get_property(connection, device, 0, atom->atom, XCB_GET_PROPERTY_TYPE_ANY, 0, longestProperty);
    const auto reply = own(xcb_input_xi_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 8) return {};
    const auto* bytes = static_cast<const std::uint8_t*>(xcb_input_xi_get_property_items(reply.get()));
    return {bytes, bytes + reply->num_items};
}

}  // namespace

std::optional<ScrollStep> X11ScrollDevices::read(const xcb_input_raw_motion_event_t& event) {
    const std::uint32_t* mask = xcb_input_raw_button_press_valuator_mask(&event);
    const std::size_t words = event.valuators_len;
    if (words == 0 || (words == 1 && (mask[0] & ~pointerAxes) == 0)) return std::nullopt;

    const Device& source = device(event.sourceid);
    ScrollStep step{event.sourceid, source.kind, 0, 0, event.time};
    bool scrolls = false;
    const xcb_input_fp3232_t* value = xcb_input_raw_button_press_axisvalues(&event);
    for (std::size_t number = 0; number < 32 * words; ++number) {
        if ((mask[number / 32] & (1U << number % 32)) == 0) continue;
        // The axes count what comes into view, so the content goes the other way.
        for (const auto& [axis, moved] :
             {std::pair{&source.horizontal, &step.x}, std::pair{&source.vertical, &step.y}}) {
            if (axis->increment == 0 || axis->number != number) continue;
            *moved = -toDouble(*value) / axis->increment * (source.contentFollowsFingers ? 1 : -1);
            scrolls = true;
        }
        ++value;
    }
    return scrolls ? std::optional(step) : std::nullopt;
}

const X11ScrollDevices::Device& X11ScrollDevices::device(std::uint16_t id) {
    const auto [entry, isNew] = devices_.try_emplace(id);
    if (isNew) {
        readAxes(id, entry->second);
        readProperties(id, entry->second);
    }
    return entry->second;
}

void X11ScrollDevices::readAxes(std::uint16_t id, Device& device) const {
    const auto reply =
        own(xcb_input_xi_query_device_reply(connection_, xcb_input_xi_query_device(connection_, id), nullptr));
    if (!reply) return;
    for (auto info = xcb_input_xi_query_device_infos_iterator(reply.get()); info.rem > 0;
         xcb_input_xi_device_info_next(&info)) {
        for (auto entry = xcb_input_xi_device_info_classes_iterator(info.data); entry.rem > 0;
             xcb_input_device_class_next(&entry)) {
            if (entry.data->type != XCB_INPUT_DEVICE_CLASS_TYPE_SCROLL) continue;
            const auto& scroll = reinterpret_cast<const xcb_input_scroll_class_t&>(*entry.data);
            const bool isVertical = scroll.scroll_type == XCB_INPUT_SCROLL_TYPE_VERTICAL;
            (isVertical ? device.vertical : device.horizontal) = {scroll.number, toDouble(scroll.increment)};
        }
    }
}

void X11ScrollDevices::readProperties(std::uint16_t id, Device& device) const {
    // With two fingers, along the edge, with a button held: only fingers make gestures.
    const auto methods = bytesOf(connection_, id, scrollMethodsProperty);
    if (methods.size() >= 2)
        device.kind = methods[0] != 0 || methods[1] != 0 ? ScrollDevice::touchpad : ScrollDevice::wheel;
    // Without natural scrolling the content goes against the fingers. What a gesture moves goes with them all the same.
    const auto natural = bytesOf(connection_, id, naturalScrollingProperty);
    device.contentFollowsFingers = natural.empty() || natural[0] != 0;
}

}  // namespace sunpane
