#include "linux/desktop/X11WindowSpaces.h"

#include <algorithm>
#include <utility>

namespace sunpane {
namespace {

// Above the number of every desktop.
constexpr WindowSpaces::SpaceID firstPrivate = WindowSpaces::SpaceID{1} << 33U;

constexpr std::uint32_t mostClients = 4096;
constexpr std::uint32_t mostStates = 32;

// A window manager's frame may hold the client in another window of its own.
constexpr int deepestFrame = 3;

// More windows than a screen locker shows.
constexpr std::size_t mostCurtains = 32;

}  // namespace

X11WindowSpaces::X11WindowSpaces(X11Events& events) : events_(events), lastPrivate_(firstPrivate) {
    if (!events_.isConnected()) return;
    desktopAtom_ = events_.atom("_NET_CURRENT_DESKTOP");
    managerAtom_ = events_.atom("_NET_SUPPORTING_WM_CHECK");
    clientsAtom_ = events_.atom("_NET_CLIENT_LIST");
    stateAtom_ = events_.atom("_NET_WM_STATE");
    fullScreenAtom_ = events_.atom("_NET_WM_STATE_FULLSCREEN");
    readDesktop();
    connect(&events_, &X11Events::rootPropertyChanged, this, &X11WindowSpaces::rootPropertyChanged);
    connect(&events_, &X11Events::windowShown, this, &X11WindowSpaces::coveredBy);
    connect(&events_, &X11Events::windowStacked, this, &X11WindowSpaces::stacked);
    afterRest_.setSingleShot(true);
    afterRest_.setInterval(restMilliseconds);
    connect(&afterRest_, &QTimer::timeout, this, [this] {
        raisesInARow_ = 0;
        raise();
    });
}

WindowSpaces::SpaceID X11WindowSpaces::activeSpace() const {
    return desktop_ ? SpaceID{*desktop_} + 1 : 0;
}

std::optional<std::int32_t> X11WindowSpaces::type(SpaceID space) const {
    if (space == 0 || space != activeSpace()) return std::nullopt;
    const xcb_window_t active = events_.activeWindow();
    if (active == XCB_NONE) return ordinary;
    const auto states = events_.readProperty(active, stateAtom_, mostStates);
    const bool isFullScreen = std::find(states.begin(), states.end(), fullScreenAtom_) != states.end();
    return isFullScreen ? fullScreen : ordinary;
}

Subscription X11WindowSpaces::onActiveSpaceChanged(std::function<void()> handler) {
    if (!events_.isConnected()) return {};
    return handlers_.add(std::move(handler));
}

void X11WindowSpaces::rootPropertyChanged(xcb_atom_t property) {
    if (property == desktopAtom_) {
        const auto before = desktop_;
        readDesktop();
        if (desktop_ != before) handlers_.call();
    } else if (property == clientsAtom_ &&
               std::erase_if(curtains_, [this](auto each) { return isManaged(each); }) > 0) {
        // The window manager showed the window before it said that it knows it.
        raise();
    }
}

void X11WindowSpaces::readDesktop() {
    const auto values = events_.readProperty(events_.root(), desktopAtom_, 1);
    desktop_ = values.empty() ? std::nullopt : std::optional(values.front());
}

WindowSpaces::SpaceID X11WindowSpaces::createPrivate(std::int32_t level) {
    if (!events_.isConnected()) return 0;
    private_[++lastPrivate_].level = level;
    return lastPrivate_;
}

void X11WindowSpaces::show(SpaceID space) {
    const auto found = private_.find(space);
    if (found == private_.end()) return;
    found->second.isShown = true;
    raise();
}

void X11WindowSpaces::moveWindow(std::uint64_t windowNumber, SpaceID space) {
    const auto window = static_cast<xcb_window_t>(windowNumber);
    for (auto& [id, each] : private_)
        std::erase(each.windows, window);
    const auto found = private_.find(space);
    if (found == private_.end()) return;
    found->second.windows.push_back(window);
    // Once, whatever the level.
    putOnTop({window});
    raise();
}

void X11WindowSpaces::destroy(SpaceID space) {
    private_.erase(space);
}

std::vector<xcb_window_t> X11WindowSpaces::keptOnTop() const {
    std::vector<const PrivateSpace*> spaces;
    for (const auto& [id, space] : private_) {
        if (space.isShown && space.level > 0) spaces.push_back(&space);
    }
    std::stable_sort(spaces.begin(), spaces.end(), [](auto* a, auto* b) { return a->level < b->level; });
    std::vector<xcb_window_t> windows;
    for (const auto* space : spaces)
        windows.insert(windows.end(), space->windows.begin(), space->windows.end());
    return windows;
}

void X11WindowSpaces::stacked(xcb_window_t window, xcb_window_t below) {
    // What is put at the very bottom is a wallpaper.
    if (below == XCB_NONE && std::erase(curtains_, window) > 0) return raise();
    const auto kept = keptOnTop();
    if (std::find(kept.begin(), kept.end(), below) != kept.end()) coveredBy(window);
}

void X11WindowSpaces::coveredBy(xcb_window_t cover) {
    const auto kept = keptOnTop();
    if (kept.empty() || !isViewable(cover) || events_.isOurTopLevel(cover)) return;
    if (isCurtain(cover, kept.back())) {
        std::erase(curtains_, cover);
        if (curtains_.size() == mostCurtains) curtains_.erase(curtains_.begin());
        curtains_.push_back(cover);
        // We may have come up above it before we heard of it.
        return raise();
    }
    if (sinceRaised_.isValid() && sinceRaised_.elapsed() > restMilliseconds) raisesInARow_ = 0;
    if (++raisesInARow_ > mostRaisesInARow) {
        if (!afterRest_.isActive()) afterRest_.start();
        return;
    }
    sinceRaised_.start();
    raise();
}

void X11WindowSpaces::raise() {
    putOnTop(keptOnTop());
}

void X11WindowSpaces::putOnTop(const std::vector<xcb_window_t>& windows) {
    if (!events_.isConnected() || windows.empty()) return;
    const xcb_window_t limit = lowestCurtain();
    for (const xcb_window_t window : windows) {
        if (limit == XCB_NONE) {
            const std::uint32_t above = XCB_STACK_MODE_ABOVE;
            xcb_configure_window(events_.connection(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        } else {
            const std::uint32_t below[] = {limit, XCB_STACK_MODE_BELOW};
            xcb_configure_window(events_.connection(), window, XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE,
                                 below);
        }
    }
    xcb_flush(events_.connection());
}

xcb_window_t X11WindowSpaces::lowestCurtain() {
    std::erase_if(curtains_, [this](auto each) { return !isViewable(each); });
    if (curtains_.empty()) return XCB_NONE;
    const auto stack = events_.childrenOf(events_.root());
    const auto found = std::find_first_of(stack.begin(), stack.end(), curtains_.begin(), curtains_.end());
    return found == stack.end() ? XCB_NONE : *found;
}

bool X11WindowSpaces::isViewable(xcb_window_t window) const {
    xcb_connection_t* connection = events_.connection();
    const auto cookie = xcb_get_window_attributes(connection, window);
    const auto attributes = own(xcb_get_window_attributes_reply(connection, cookie, nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool X11WindowSpaces::isCurtain(xcb_window_t cover, xcb_window_t window) const {
    xcb_connection_t* connection = events_.connection();
    const auto coverCookie = xcb_get_geometry(connection, cover);
    const auto windowCookie = xcb_get_geometry(connection, window);
    const auto outer = own(xcb_get_geometry_reply(connection, coverCookie, nullptr));
    const auto inner = own(xcb_get_geometry_reply(connection, windowCookie, nullptr));
    if (!outer || !inner) return false;
    const bool hidesAll = outer->x <= inner->x && outer->y <= inner->y &&
                          outer->x + outer->width >= inner->x + inner->width &&
                          outer->y + outer->height >= inner->y + inner->height;
    return hidesAll && !isManaged(cover);
}

bool X11WindowSpaces::isManaged(xcb_window_t topLevel) const {
    // Without a window manager nothing is managed, and nothing can be told apart.
    if (events_.readProperty(events_.root(), managerAtom_, 1).empty()) return true;
    const auto clients = events_.readProperty(events_.root(), clientsAtom_, mostClients);
    std::vector<xcb_window_t> generation{topLevel};
    for (int depth = 0; depth < deepestFrame; ++depth) {
        std::vector<xcb_window_t> next;
        for (const xcb_window_t window : generation) {
            if (std::find(clients.begin(), clients.end(), window) != clients.end()) return true;
            const auto children = events_.childrenOf(window);
            next.insert(next.end(), children.begin(), children.end());
        }
        generation = std::move(next);
    }
    return false;
}

}  // namespace sunpane
