#include "views/ThemeStore.h"

#include <algorithm>
#include <cassert>
#include <utility>
#include <variant>

namespace sunpane {
namespace {

constexpr const char* topKey = "customTopHex";
constexpr const char* bottomKey = "customBottomHex";
constexpr const char* strengthKey = "customStrength";

// A wash lets some of what is behind it through.
constexpr double builtInStrength = 0.55;
constexpr double defaultTranslucency = 0.8;
constexpr double defaultGlassTranslucency = 0.9;

ThemeStore* sharedStore = nullptr;

std::string translucencyKey(NotchTheme theme) {
    return "translucency." + std::string(notch_theme::rawValue(theme));
}

NotchTheme storedTheme(const UserDefaults& defaults) {
    if (const auto name = defaults.read<std::string>(ThemeStore::themeKey).value) {
        if (const auto theme = notch_theme::fromRawValue(*name)) return *theme;
    }
    // Settings without a known theme are older ones, which had a tint from clear to dark.
    constexpr double darkTint = 0.6;
    return defaults.read<double>("glassTint").valueOr(0) > darkTint ? NotchTheme::dark : NotchTheme::glass;
}

}  // namespace

ThemeStore::ThemeStore(UserDefaults& defaults, RunLoop& runLoop)
    : defaults_(defaults),
      runLoop_(runLoop),
      customTopHex_(defaults.read<std::int64_t>(topKey).valueOr(defaultTopHex)),
      customBottomHex_(defaults.read<std::int64_t>(bottomKey).valueOr(defaultBottomHex)),
      customStrength_(defaults.read<double>(strengthKey).valueOr(defaultStrength)),
      theme_(storedTheme(defaults)),
      translucency_(storedTranslucency(theme_)) {
    if (sharedStore == nullptr) sharedStore = this;
}

ThemeStore::~ThemeStore() {
    writeNow();
    if (sharedStore == this) sharedStore = nullptr;
}

ThemeStore& ThemeStore::shared() {
    assert(sharedStore != nullptr);
    return *sharedStore;
}

double ThemeStore::storedTranslucency(NotchTheme theme) const {
    const auto unwritten = unwritten_.find(translucencyKey(theme));
    if (unwritten != unwritten_.end()) return std::get<double>(unwritten->second.value);
    const double fallback = theme == NotchTheme::glass ? defaultGlassTranslucency : defaultTranslucency;
    return defaults_.read<double>(translucencyKey(theme)).valueOr(fallback);
}

template <class T>
void ThemeStore::change(T& field, T value, std::string_view key) {
    announceChange();
    field = value;
    keepSoon(key, value);
}

void ThemeStore::keepSoon(std::string_view key, UserDefaults::Value value) {
    const auto found = unwritten_.find(key);
    if (found != unwritten_.end()) {
        found->second.value = std::move(value);
    } else {
        unwritten_.emplace(key, Unwritten{std::move(value), defaults_.value(key)});
    }
    writing_ = runLoop_.after(writeDelay, [this] { writeNow(); });
}

void ThemeStore::writeNow() {
    writing_.cancel();
    for (auto& [key, unwritten] : std::exchange(unwritten_, {})) {
        // Whoever set it meanwhile did so later.
        if (defaults_.value(key) == unwritten.before) defaults_.set(key, unwritten.value);
    }
}

void ThemeStore::setTheme(NotchTheme theme) {
    announceChange();
    theme_ = theme;
    keepSoon(themeKey, themeName());
    setTranslucency(storedTranslucency(theme));
    writeNow();
}

void ThemeStore::setTranslucency(double translucency) {
    change(translucency_, translucency, translucencyKey(theme_));
}

void ThemeStore::setCustomTopHex(std::int64_t hex) {
    change(customTopHex_, hex, topKey);
}

void ThemeStore::setCustomBottomHex(std::int64_t hex) {
    change(customBottomHex_, hex, bottomKey);
}

void ThemeStore::setCustomStrength(double strength) {
    change(customStrength_, strength, strengthKey);
}

void ThemeStore::reload() {
    // What is dragged just now would go from the screen otherwise, and come back at the next start.
    writeNow();
    announceChange();
    customTopHex_ = defaults_.read<std::int64_t>(topKey).valueOr(defaultTopHex);
    customBottomHex_ = defaults_.read<std::int64_t>(bottomKey).valueOr(defaultBottomHex);
    customStrength_ = defaults_.read<double>(strengthKey).valueOr(defaultStrength);
    theme_ = storedTheme(defaults_);
    translucency_ = storedTranslucency(theme_);
}

double ThemeStore::baseOpacity() const {
    const double solid = 1 - translucency_;
    switch (theme_) {
        case NotchTheme::dark:
            return 1;
        case NotchTheme::glass:
            return std::clamp(solid, 0.0, 1.0);
        default:
            break;
    }
    // A wash keeps some black under it, which goes in the upper half of the range.
    const double least = 0.15 * (1 - std::max(0.0, 2 * (translucency_ - 0.5)));
    return std::clamp(std::max(solid, least), 0.0, 1.0);
}

GradientStops ThemeStore::customStops() const {
    return {{ThemeColor::fromHex(customTopHex_), 0}, {ThemeColor::fromHex(customBottomHex_), 1}};
}

std::optional<GradientStops> ThemeStore::washStops() const {
    return theme_ == NotchTheme::custom ? customStops() : notch_theme::stops(theme_);
}

double ThemeStore::washStrength() const {
    return theme_ == NotchTheme::custom ? customStrength_ : builtInStrength;
}

GradientStops ThemeStore::swatchStops(NotchTheme theme) const {
    switch (theme) {
        case NotchTheme::glass:
            return {{{1, 1, 1, 0.35}, 0}, {{1, 1, 1, 0.1}, 1}};
        case NotchTheme::dark:
            return {{{0, 0, 0, 1}, 0}, {{0, 0, 0, 1}, 1}};
        case NotchTheme::custom:
            return customStops();
        default:
            return *notch_theme::stops(theme);
    }
}

}  // namespace sunpane
