#include "views/ThemePresenter.h"

#include <QRgba64>
#include <QVariantMap>
#include <utility>

namespace sunpane {
namespace {

QColor toQt(const ThemeColor& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(color.opacity));
}

// Through the full 16 bits of the toolkit's colour; its floating-point components would lose a last digit to rounding.
std::int64_t hexOf(const QColor& color) {
    constexpr double full = 0xFFFF;
    const QRgba64 parts = color.toRgb().rgba64();
    return ThemeColor{parts.red() / full, parts.green() / full, parts.blue() / full}.hexValue();
}

QString toQt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

ThemePresenter::ThemePresenter(ThemeStore& store, RunLoop& runLoop)
    : store_(store), runLoop_(runLoop), self_(std::make_shared<ThemePresenter*>(this)) {
    changes_ = store_.onWillChange([this] {
        if (std::exchange(posted_, true)) return;
        runLoop_.post([weak = std::weak_ptr(self_)] {
            const auto self = weak.lock();
            if (!self) return;
            (*self)->posted_ = false;
            emit(*self)->changed();
        });
    });
}

void ThemePresenter::setTheme(const QString& name) {
    if (const auto theme = notch_theme::fromRawValue(name.toStdString())) store_.setTheme(*theme);
}

QColor ThemePresenter::customTop() const {
    return toQt(ThemeColor::fromHex(store_.customTopHex()));
}

void ThemePresenter::setCustomTop(const QColor& color) {
    store_.setCustomTopHex(hexOf(color));
}

QColor ThemePresenter::customBottom() const {
    return toQt(ThemeColor::fromHex(store_.customBottomHex()));
}

void ThemePresenter::setCustomBottom(const QColor& color) {
    store_.setCustomBottomHex(hexOf(color));
}

QVariantList ThemePresenter::themes() const {
    QVariantList list;
    for (const NotchTheme theme : notch_theme::all) {
        QVariantList fill;
        for (const auto& stop : store_.swatchStops(theme)) {
            fill.append(
                QVariantMap{{QStringLiteral("color"), toQt(stop.color)}, {QStringLiteral("location"), stop.location}});
        }
        list.append(QVariantMap{{QStringLiteral("name"), toQt(notch_theme::rawValue(theme))},
                                {QStringLiteral("label"), toQt(notch_theme::label(theme))},
                                {QStringLiteral("fill"), fill}});
    }
    return list;
}

}  // namespace sunpane
