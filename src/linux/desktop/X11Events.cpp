#include "linux/desktop/X11Events.h"

#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

namespace sunpane {
namespace {

template <class T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

template <class T>
Reply<T> own(T* reply) {
    return {reply, &std::free};
}

bool isOurs(xcb_window_t window) {
    const auto windows = QGuiApplication::allWindows();
    return std::any_of(windows.begin(), windows.end(), [window](const QWindow* ours) {
        return ours->handle() != nullptr && static_cast<xcb_window_t>(ours->winId()) == window;
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

    selectRawMotion();
    watchCompositor();
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    activeWindowAtom_ = atom("_NET_ACTIVE_WINDOW");
    xcb_change_window_attributes(connection_.get(), screen_->root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(connection_.get());

    notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_.get()), QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, &X11Events::readEvents);
    // Replies read above may have brought events along that the socket will not announce again.
    QMetaObject::invokeMethod(this, &X11Events::readEvents, Qt::QueuedConnection);
}

X11Events::~X11Events() = default;

xcb_atom_t X11Events::atom(const char* name) const {
    const auto length = static_cast<std::uint16_t>(std::strlen(name));
    const auto cookie = xcb_intern_atom(connection_.get(), 0, length, name);
    const auto reply = own(xcb_intern_atom_reply(connection_.get(), cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void X11Events::selectRawMotion() {
    const auto* extension = xcb_get_extension_data(connection_.get(), &xcb_input_id);
    if (extension == nullptr || extension->present == 0) return;
    const auto version = own(xcb_input_xi_query_version_reply(
        connection_.get(), xcb_input_xi_query_version(connection_.get(), 2, 2), nullptr));
    if (!version || version->major_version < 2) return;
    xinputOpcode_ = extension->major_opcode;
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                      XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS};
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

void X11Events::readEvents() {
    bool moved = false;
    while (const auto event = own(xcb_poll_for_event(connection_.get())))
        moved |= handle(*event);
    if (xcb_connection_has_error(connection_.get()) != 0) notifier_->setEnabled(false);
    if (moved) emit pointerMoved();
}

// Returns whether the event is a movement of the pointer.
bool X11Events::handle(const xcb_generic_event_t& event) {
    const std::uint8_t type = event.response_type & 0x7F;
    if (type == XCB_GE_GENERIC) {
        const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
        if (generic.extension != xinputOpcode_) return false;
        if (generic.event_type == XCB_INPUT_RAW_BUTTON_PRESS)
            pressed(reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event).detail);
        return generic.event_type == XCB_INPUT_RAW_MOTION;
    }
    if (xfixesFirstEvent_ != 0 && type == xfixesFirstEvent_ + XCB_XFIXES_SELECTION_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
        hasCompositor_ = change.owner != XCB_NONE;
        emit compositorChanged();
    } else if (type == XCB_PROPERTY_NOTIFY) {
        if (reinterpret_cast<const xcb_property_notify_event_t&>(event).atom == activeWindowAtom_)
            activeWindowChanged();
    } else if (type == XCB_CONFIGURE_NOTIFY && watchedWindow_ != XCB_NONE) {
        const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        if (change.above_sibling == watchedWindow_) emit coveredByAnother();
    } else if (type == XCB_MAP_NOTIFY && watchedWindow_ != XCB_NONE) {
        const auto& change = reinterpret_cast<const xcb_map_notify_event_t&>(event);
        if (change.window != watchedWindow_) emit coveredByAnother();
    }
    return false;
}

void X11Events::pressed(std::uint32_t button) {
    if (button != XCB_BUTTON_INDEX_1 && button != XCB_BUTTON_INDEX_3) return;
    const auto pointer =
        own(xcb_query_pointer_reply(connection_.get(), xcb_query_pointer(connection_.get(), screen_->root), nullptr));
    if (pointer && !isOurs(pointer->child)) emit mouseDownElsewhere();
}

void X11Events::activeWindowChanged() {
    const auto cookie = xcb_get_property(connection_.get(), 0, screen_->root, activeWindowAtom_, XCB_ATOM_WINDOW, 0, 1);
    const auto reply = own(xcb_get_property_reply(connection_.get(), cookie, nullptr));
    if (!reply || xcb_get_property_value_length(reply.get()) < static_cast<int>(sizeof(xcb_window_t))) return;
    const xcb_window_t window = *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
    if (window != XCB_NONE && !isOurs(window)) emit applicationActivated();
}

}  // namespace sunpane
