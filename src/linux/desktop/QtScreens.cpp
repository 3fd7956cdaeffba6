#include "linux/desktop/QtScreens.h"

#include <QGuiApplication>
#include <string>

#include "linux/desktop/ScreenCoordinates.h"

namespace sunpane {

QtScreens::QtScreens(const UserDefaults& defaults) : defaults_(defaults) {
    for (QScreen* screen : QGuiApplication::screens())
        watch(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
        watch(screen);
        observers_.call();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, [this] { observers_.call(); });
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, [this] { observers_.call(); });
}

void QtScreens::watch(QScreen* screen) {
    connect(screen, &QScreen::geometryChanged, this, [this] { observers_.call(); });
}

std::vector<Screen> QtScreens::all() const {
    std::vector<Screen> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        // The toolkit keeps an empty placeholder while none is connected.
        if (!screen->geometry().isEmpty()) screens.push_back(describe(*screen));
    }
    return screens;
}

std::optional<Screen> QtScreens::main() const {
    const QScreen* primary = QGuiApplication::primaryScreen();
    if (primary == nullptr || primary->geometry().isEmpty()) return std::nullopt;
    return describe(*primary);
}

Subscription QtScreens::onChange(std::function<void()> handler) {
    return observers_.add(std::move(handler));
}

Screen QtScreens::describe(const QScreen& screen) const {
    Screen result{coordinates::toScreenPoints(screen.geometry()), 0, {}, {}};
    const double height = defaults_.read<double>(housingKey::height).valueOr(0);
    if (height <= 0) return result;
    const auto output = defaults_.read<std::string>(housingKey::screen).value;
    const bool hasNotch = output ? screen.name().toStdString() == *output : &screen == QGuiApplication::primaryScreen();
    if (!hasNotch) return result;

    result.safeAreaTop = height;
    if (const double width = defaults_.read<double>(housingKey::width).valueOr(0); width > 0) {
        const Rect& frame = result.frame;
        const double side = (frame.width - width) / 2;
        result.auxiliaryTopLeft = Rect{frame.minX(), frame.maxY() - height, side, height};
        result.auxiliaryTopRight = Rect{frame.maxX() - side, frame.maxY() - height, side, height};
    }
    return result;
}

}  // namespace sunpane
