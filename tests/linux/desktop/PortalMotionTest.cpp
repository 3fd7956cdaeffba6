#include "linux/desktop/PortalMotion.h"

#include <gtest/gtest.h>

namespace sunpane {
namespace {

TEST(PortalMotion, AnyOfTheDesktopsSettingsCanAskForLess) {
    struct Case {
        const char* space;
        const char* key;
        QVariant value;
        bool isReduced;
    };
    const Case cases[] = {
        {"org.freedesktop.appearance", "reduced-motion", 0U, false},
        {"org.freedesktop.appearance", "reduced-motion", 1U, true},
        {"org.freedesktop.appearance", "reduced-motion", 7U, false},  // unknown values mean no preference
        {"org.freedesktop.appearance", "color-scheme", 1U, false},
        {"org.gnome.desktop.interface", "enable-animations", true, false},
        {"org.gnome.desktop.interface", "enable-animations", false, true},
        {"org.kde.kdeglobals.KDE", "AnimationDurationFactor", QStringLiteral("0"), true},
        {"org.kde.kdeglobals.KDE", "AnimationDurationFactor", QStringLiteral("0.5"), false},
        {"org.kde.kdeglobals.KDE", "AnimationDurationFactor", QStringLiteral("fast"), false},
    };
    EXPECT_FALSE(reducesMotion({}));
    for (const auto& c : cases) {
        PortalSettings settings{{QStringLiteral("org.gnome.desktop.interface"), {{QStringLiteral("cursor-size"), 24}}}};
        settings[QLatin1String(c.space)][QLatin1String(c.key)] = c.value;
        EXPECT_EQ(reducesMotion(settings), c.isReduced) << c.key << ' ' << qPrintable(c.value.toString());
    }
}

}  // namespace
}  // namespace sunpane
