#include "linux/desktop/X11Hotkeys.h"

#include <QPointer>
#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace sunpane {
namespace {

// Symbols of the X protocol's own list ("KEYSYM Encoding").
constexpr xcb_keysym_t spaceSymbol = 0x20;
constexpr xcb_keysym_t numLockSymbol = 0xFF7F;
constexpr xcb_keysym_t scrollLockSymbol = 0xFF14;
constexpr int modifierCount = 8;

/// What the symbols on the keyboard's keys are: `symbolsPerKey` for each key from `firstKey` on.
struct KeyboardMapping {
    xcb_keycode_t firstKey = 0;
    std::size_t symbolsPerKey = 0;
    std::vector<xcb_keysym_t> symbols;

    std::vector<xcb_keycode_t> keysOf(xcb_keysym_t symbol) const {
        std::vector<xcb_keycode_t> keys;
        for (std::size_t i = 0; i < symbols.size(); i += symbolsPerKey) {
            if (symbols[i] == symbol) keys.push_back(static_cast<xcb_keycode_t>(firstKey + i / symbolsPerKey));
        }
        return keys;
    }
};

KeyboardMapping readMapping(xcb_connection_t* connection) {
    const auto* setup = xcb_get_setup(connection);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto reply = own(xcb_get_keyboard_mapping_reply(
        connection, xcb_get_keyboard_mapping(connection, setup->min_keycode, count), nullptr));
    if (!reply || reply->keysyms_per_keycode == 0) return {};
    const auto* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
    const int length = xcb_get_keyboard_mapping_keysyms_length(reply.get());
    return {setup->min_keycode, reply->keysyms_per_keycode, {symbols, symbols + length}};
}

/// The modifier bits that these keys switch.
std::uint16_t modifiersOf(const std::vector<xcb_keycode_t>& keys, const xcb_get_modifier_mapping_reply_t& modifiers) {
    const auto* switches = xcb_get_modifier_mapping_keycodes(&modifiers);
    const int perModifier = modifiers.keycodes_per_modifier;
    std::uint16_t bits = 0;
    for (int i = 0; i < modifierCount * perModifier; ++i) {
        for (const xcb_keycode_t key : keys) {
            if (switches[i] == key) bits |= static_cast<std::uint16_t>(1U << (i / perModifier));
        }
    }
    return bits;
}

}  // namespace

X11Hotkeys::X11Hotkeys(X11Events& events) : events_(events) {
    connect(&events_, &X11Events::keyPressed, this, &X11Hotkeys::pressed);
    connect(&events_, &X11Events::keyReleased, this, &X11Hotkeys::released);
    connect(&events_, &X11Events::keyboardMappingChanged, this, &X11Hotkeys::followMapping);
}

X11Hotkeys::~X11Hotkeys() {
    ungrab();
}

Subscription X11Hotkeys::registerControlSpace(std::function<void()> handler) {
    if (!events_.isConnected()) return {};
    if (registrations_ == 0 && !grab()) return {};
    ++registrations_;
    auto calls = std::make_shared<Subscription>(handlers_.add(std::move(handler)));
    return Subscription([self = QPointer<X11Hotkeys>(this), calls] {
        calls->cancel();
        if (self != nullptr) self->giveUp();
    });
}

void X11Hotkeys::giveUp() {
    if (--registrations_ == 0) ungrab();
}

std::vector<X11Hotkeys::Chord> X11Hotkeys::chordsOfMapping() const {
    xcb_connection_t* connection = events_.connection();
    const KeyboardMapping mapping = readMapping(connection);
    const auto modifiers =
        own(xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr));
    if (mapping.symbolsPerKey == 0 || !modifiers) return {};

    const std::array<std::uint16_t, 3> locks{XCB_MOD_MASK_LOCK, modifiersOf(mapping.keysOf(numLockSymbol), *modifiers),
                                             modifiersOf(mapping.keysOf(scrollLockSymbol), *modifiers)};
    std::vector<std::uint16_t> states{XCB_MOD_MASK_CONTROL};
    for (const std::uint16_t lock : locks) {
        // Keyboards without such a key, or with two of them on one modifier, have no further state.
        if (lock == 0 || (states.back() & lock) == lock) continue;
        const std::size_t known = states.size();
        for (std::size_t i = 0; i < known; ++i)
            states.push_back(states[i] | lock);
    }
    std::vector<Chord> chords;
    for (const xcb_keycode_t key : mapping.keysOf(spaceSymbol)) {
        for (const std::uint16_t state : states)
            chords.push_back({key, state});
    }
    return chords;
}

bool X11Hotkeys::grab() {
    xcb_connection_t* connection = events_.connection();
    chords_ = chordsOfMapping();
    std::vector<xcb_void_cookie_t> requests;
    for (const auto& [key, modifiers] : chords_) {
        requests.push_back(xcb_grab_key_checked(connection, 0, events_.root(), modifiers, key, XCB_GRAB_MODE_ASYNC,
                                                XCB_GRAB_MODE_ASYNC));
    }
    bool isOwned = !chords_.empty();
    for (const auto request : requests)
        isOwned &= !own(xcb_request_check(connection, request));
    // A key that works with some lock keys only is worse than none.
    if (!isOwned) ungrab();
    return isOwned;
}

void X11Hotkeys::ungrab() {
    if (chords_.empty()) return;
    for (const auto& [key, modifiers] : std::exchange(chords_, {}))
        xcb_ungrab_key(events_.connection(), key, events_.root(), modifiers);
    xcb_flush(events_.connection());
}

void X11Hotkeys::followMapping() {
    if (registrations_ == 0 || chordsOfMapping() == chords_) return;
    ungrab();
    grab();
}

void X11Hotkeys::pressed(const xcb_key_press_event_t& event) {
    const bool isHotkey = std::any_of(chords_.begin(), chords_.end(), [&event](const Chord& chord) {
        return chord.key == event.detail && (event.state & XCB_MOD_MASK_CONTROL) != 0;
    });
    if (isHotkey && event.time != lastRelease_) handlers_.call();
}

void X11Hotkeys::released(const xcb_key_release_event_t& event) {
    const bool isHotkey =
        std::any_of(chords_.begin(), chords_.end(), [&event](const Chord& chord) { return chord.key == event.detail; });
    if (isHotkey) {
        lastRelease_ = event.time;
        return;
    }
    // Control was let go first. What is typed from now on is for whoever has the focus.
    xcb_ungrab_keyboard(events_.connection(), event.time);
    xcb_flush(events_.connection());
}

}  // namespace sunpane
