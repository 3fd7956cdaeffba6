#include "linux/desktop/X11Events.h"

#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include <QAbstractEventDispatcher>
#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

namespace sunpane {
namespace {

// Deeper than any window manager nests a window in its frames.
constexpr int deepestFrame = 8;

template <class Test>
bool anyOfOurs(const Test& test) {
    const auto windows = QGuiApplication::allWindows();
    return std::any_of(windows.begin(), windows.end(), [&test](const QWindow* ours) {
        return ours->handle() != nullptr && test(static_cast<xcb_window_t>(ours->winId()));
    });
}

}  // namespace

X11Events::X11Events() {
    if (QGuiApplication::platformName() != QLatin1String("xcb")) return;
    connection_.reset(xcb_connect(nullptr, &screenNumber_));
    if (xcb_connection_has_error(connection_.get()) != 0) {
        connection_.reset();
        return;
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_.get()));
    for (int i = 0; i < screenNumber_; ++i)
        xcb_screen_next(&screens);
    screen_ = screens.data;

    selectRawEvents();
    watchCompositor();
    watchRoot();
    xcb_flush(connection_.get());

    notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_.get()), QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, &X11Events::readEvents);
    // Whoever reads a reply may take events off the socket that it will not announce again.
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this, [this] {
        if (auto* waiting = xcb_poll_for_queued_event(connection_.get())) deferred_.push_back(own(waiting));
        if (!deferred_.empty()) readEvents();
    });
}

X11Events::~X11Events() = default;

xcb_atom_t X11Events::atom(const char* name) const {
    const auto length = static_cast<std::uint16_t>(std::strlen(name));
    const auto cookie = xcb_intern_atom(connection_.get(), 0, length, name);
    const auto reply = own(xcb_intern_atom_reply(connection_.get(), cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::vector<std::uint32_t> X11Events::readProperty(xcb_window_t window, xcb_atom_t property, std::uint32_t most) const {
    const auto cookie = xcb_get_property(connection_.get(), 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, most);
    const auto reply = own(xcb_get_property_reply(connection_.get(), cookie, nullptr));
    if (!reply || reply->format != 32) return {};
    const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    const auto bytes = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
    return {values, values + bytes / sizeof(std::uint32_t)};
}

std::vector<xcb_window_t> X11Events::childrenOf(xcb_window_t window) const {
    const auto tree = own(xcb_query_tree_reply(connection_.get(), xcb_query_tree(connection_.get(), window), nullptr));
    if (!tree) return {};
    const auto* children = xcb_query_tree_children(tree.get());
    return {children, children + xcb_query_tree_children_length(tree.get())};
}

xcb_window_t X11Events::activeWindow() const {
    const auto windows = readProperty(screen_->root, activeWindowAtom_, 1);
    return windows.empty() ? XCB_NONE : windows.front();
}

xcb_timestamp_t X11Events::serverTime() {
    // The announcement of a change that changes nothing carries the time.
    xcb_change_property(connection_.get(), XCB_PROP_MODE_APPEND, clockWindow_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0,
                        nullptr);
    xcb_flush(connection_.get());
    while (auto event = own(xcb_wait_for_event(connection_.get()))) {
        if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY) {
            const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
            if (change.window == clockWindow_) return change.time;
        }
        deferred_.push_back(std::move(event));
    }
    return XCB_CURRENT_TIME;
}

bool X11Events::isOurTopLevel(xcb_window_t window) const {
    if (window == XCB_NONE) return false;
    return anyOfOurs([this, window](xcb_window_t ours) {
        for (int depth = 0; depth < deepestFrame && ours != XCB_NONE && ours != screen_->root; ++depth) {
            if (ours == window) return true;
            const auto tree =
                own(xcb_query_tree_reply(connection_.get(), xcb_query_tree(connection_.get(), ours), nullptr));
            ours = tree ? tree->parent : xcb_window_t{XCB_NONE};
        }
        return false;
    });
}

void X11Events::selectRawEvents() {
    const auto* extension = xcb_get_extension_data(connection_.get(), &xcb_input_id);
    if (extension == nullptr || extension->present == 0) return;
    const auto version = own(xcb_input_xi_query_version_reply(
        connection_.get(), xcb_input_xi_query_version(connection_.get(), 2, 2), nullptr));
    if (!version || version->major_version < 2) return;
    xinputOpcode_ = extension->major_opcode;
    selectInput(XCB_INPUT_DEVICE_ALL_MASTER,
                XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS);
    // Devices come and go, and are set up anew in the desktop's settings.
    selectInput(XCB_INPUT_DEVICE_ALL, XCB_INPUT_XI_EVENT_MASK_HIERARCHY | XCB_INPUT_XI_EVENT_MASK_PROPERTY);
    scrollDevices_.emplace(connection_.get());
}

void X11Events::selectInput(xcb_input_device_id_t device, std::uint32_t mask) {
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const selection{{device, 1}, mask};
    xcb_input_xi_select_events(connection_.get(), screen_->root, 1, &selection.head);
}

void X11Events::watchCompositor() {
    // A compositing manager owns this selection (Extended Window Manager Hints, "_NET_WM_CM_Sn").
    const xcb_atom_t selection = atom(("_NET_WM_CM_S" + std::to_string(screenNumber_)).c_str());
    const auto owner = own(xcb_get_selection_owner_reply(
        connection_.get(), xcb_get_selection_owner(connection_.get(), selection), nullptr));
    hasCompositor_ = owner && owner->owner != XCB_NONE;

    const auto* extension = xcb_get_extension_data(connection_.get(), &xcb_xfixes_id);
    if (extension == nullptr || extension->present == 0) return;
    xfixesFirstEvent_ = extension->first_event;
    const auto version = own(
        xcb_xfixes_query_version_reply(connection_.get(), xcb_xfixes_query_version(connection_.get(), 5, 0), nullptr));
    if (!version) return;
    xcb_xfixes_select_selection_input(connection_.get(), screen_->root, selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
}

// A compositor that blurs puts the property that asks for it on the root window.
void X11Events::findBlur() {
    const auto cookie = xcb_list_properties(connection_.get(), screen_->root);
    const auto reply = own(xcb_list_properties_reply(connection_.get(), cookie, nullptr));
    if (!reply) return;
    const xcb_atom_t* first = xcb_list_properties_atoms(reply.get());
    const xcb_atom_t* last = first + xcb_list_properties_atoms_length(reply.get());
    compositorBlurs_ = std::find(first, last, blurAtom_) != last;
}

void X11Events::watchRoot() {
    const std::uint32_t rootMask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_.get(), screen_->root, XCB_CW_EVENT_MASK, &rootMask);
    activeWindowAtom_ = atom("_NET_ACTIVE_WINDOW");
    activeWindow_ = activeWindow();
    blurAtom_ = atom("_KDE_NET_WM_BLUR_BEHIND_REGION");
    findBlur();

    clockWindow_ = xcb_generate_id(connection_.get());
    const std::uint32_t values[] = {1, XCB_EVENT_MASK_PROPERTY_CHANGE};
    xcb_create_window(connection_.get(), 0, clockWindow_, screen_->root, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
}

XcbReply<xcb_generic_event_t> X11Events::nextEvent() {
    if (deferred_.empty()) return own(xcb_poll_for_event(connection_.get()));
    auto event = std::move(deferred_.front());
    deferred_.pop_front();
    return event;
}

void X11Events::readEvents() {
    bool moved = false;
    while (const auto event = nextEvent())
        moved |= handle(*event);
    if (xcb_connection_has_error(connection_.get()) != 0) notifier_->setEnabled(false);
    if (moved) emit pointerMoved();
}

// Returns whether the event is a movement of the pointer.
bool X11Events::handle(const xcb_generic_event_t& event) {
    const std::uint8_t type = event.response_type & 0x7F;
    if (type == XCB_GE_GENERIC) {
        const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
        return generic.extension == xinputOpcode_ && handleInput(generic);
    }
    if (xfixesFirstEvent_ != 0 && type == xfixesFirstEvent_ + XCB_XFIXES_SELECTION_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
        hasCompositor_ = change.owner != XCB_NONE;
        emit compositorChanged();
    } else if (type == XCB_KEY_PRESS) {
        emit keyPressed(reinterpret_cast<const xcb_key_press_event_t&>(event));
    } else if (type == XCB_KEY_RELEASE) {
        emit keyReleased(reinterpret_cast<const xcb_key_release_event_t&>(event));
    } else if (type == XCB_MAPPING_NOTIFY) {
        emit keyboardMappingChanged();
    } else {
        handleRootEvent(event, type);
    }
    return false;
}

bool X11Events::handleInput(const xcb_ge_generic_event_t& event) {
    switch (event.event_type) {
        case XCB_INPUT_RAW_BUTTON_PRESS:
            pressed(reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event).detail);
            return false;
        case XCB_INPUT_RAW_MOTION:
            if (const auto step = scrollDevices_->read(reinterpret_cast<const xcb_input_raw_motion_event_t&>(event)))
                emit scrolled(*step);
            return true;
        case XCB_INPUT_HIERARCHY:
        case XCB_INPUT_PROPERTY:
            scrollDevices_->forget();
            return false;
        default:
            return false;
    }
}

void X11Events::handleRootEvent(const xcb_generic_event_t& event, std::uint8_t type) {
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.window != screen_->root) return;
        if (change.atom == activeWindowAtom_) activeWindowChanged();
        if (change.atom == blurAtom_) {
            findBlur();
            emit compositorChanged();
        }
        emit rootPropertyChanged(change.atom);
    } else if (type == XCB_CONFIGURE_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        emit windowStacked(change.window, change.above_sibling);
    } else if (type == XCB_MAP_NOTIFY) {
        emit windowShown(reinterpret_cast<const xcb_map_notify_event_t&>(event).window);
    }
}

bool X11Events::isPointerOverUs() const {
    const auto pointer =
        own(xcb_query_pointer_reply(connection_.get(), xcb_query_pointer(connection_.get(), screen_->root), nullptr));
    return pointer && isOurTopLevel(pointer->child);
}

void X11Events::pressed(std::uint32_t button) {
    if (button != XCB_BUTTON_INDEX_1 && button != XCB_BUTTON_INDEX_3) return;
    if (!isPointerOverUs()) emit mouseDownElsewhere();
}

void X11Events::activeWindowChanged() {
    // Window managers also write the same window again.
    const xcb_window_t window = activeWindow();
    if (std::exchange(activeWindow_, window) == window || window == XCB_NONE) return;
    if (!anyOfOurs([window](xcb_window_t ours) { return ours == window; })) emit applicationActivated();
}

}  // namespace sunpane
