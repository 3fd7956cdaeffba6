#include "views/PanelBackground.h"

#include <QBrush>
#include <QGradient>
#include <QImage>
#include <QPen>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "views/PanelPaint.h"

namespace sunpane {
namespace {

// Behind the panel where the desktop lets nobody see what is there.
const QColor unknownBackdrop(27, 25, 28);
const QColor edge(255, 255, 255, 26);
// The header's scrim never goes below this, so that the panel always grows out of the black of the notch.
constexpr qreal leastHeaderScrim = 0.3;
// Over how many points the header's scrim runs out.
constexpr qreal scrimRunOut = 60;

QColor black(qreal opacity) {
    return QColor::fromRgbF(0, 0, 0, static_cast<float>(opacity));
}

QGradientStops toQt(const GradientStops& stops) {
    QGradientStops result;
    for (const auto& stop : stops) {
        result.append({stop.location,
                       QColor::fromRgbF(static_cast<float>(stop.color.red), static_cast<float>(stop.color.green),
                                        static_cast<float>(stop.color.blue), static_cast<float>(stop.color.opacity))});
    }
    return result;
}

/// The colour at `position`, in premultiplied form. `stops` are in order and not empty.
QRgb colorAt(const QGradientStops& stops, qreal position) {
    const auto upper =
        std::find_if(stops.begin(), stops.end(), [&](const auto& stop) { return stop.first > position; });
    if (upper == stops.begin()) return qPremultiply(upper->second.rgba());
    const auto lower = std::prev(upper);
    if (upper == stops.end()) return qPremultiply(lower->second.rgba());
    const qreal part = (position - lower->first) / (upper->first - lower->first);
    const QRgb from = qPremultiply(lower->second.rgba());
    const QRgb to = qPremultiply(upper->second.rgba());
    const auto mix = [part](int a, int b) { return qRound(a + (b - a) * part); };
    return qRgba(mix(qRed(from), qRed(to)), mix(qGreen(from), qGreen(to)), mix(qBlue(from), qBlue(to)),
                 mix(qAlpha(from), qAlpha(to)));
}

// The toolkit keeps the last 60 gradients that it painted, ten kilobytes each, and a panel that unfolds has another one
// in every frame. So a gradient from the top down to `height` is painted as a picture, which repeats sideways.
QBrush verticalGradient(const QGradientStops& stops, qreal height, qreal scale) {
    constexpr int width = 64;
    const int rows = std::max(1, static_cast<int>(std::ceil(height * scale)));
    QImage strip(width, rows, QImage::Format_ARGB32_Premultiplied);
    for (int row = 0; row < rows; ++row) {
        std::fill_n(reinterpret_cast<QRgb*>(strip.scanLine(row)), width,
                    colorAt(stops, (row + 0.5) / (height * scale)));
    }
    QBrush brush(strip);
    if (scale != 1) brush.setTransform(QTransform::fromScale(1 / scale, 1 / scale));
    return brush;
}

// The picture's pixels without a copy; the image keeps them alive.
QImage imageOf(std::shared_ptr<const ScreenImage> pixels) {
    if (!pixels) return {};
    const auto* bytes = reinterpret_cast<const uchar*>(pixels->pixels.data());
    const int width = pixels->width;
    const int height = pixels->height;
    auto* owner = new std::shared_ptr<const ScreenImage>(std::move(pixels));
    return {bytes,
            width,
            height,
            static_cast<qsizetype>(width) * 4,
            QImage::Format_RGB32,
            [](void* held) { delete static_cast<std::shared_ptr<const ScreenImage>*>(held); },
            owner};
}

}  // namespace

PanelBackground::PanelBackground(const Collaborators& collaborators, std::function<PanelBackdrop::Window()> window)
    : with_(collaborators),
      window_(std::move(window)),
      backdrop_({collaborators.screen, collaborators.runLoop, collaborators.queues, collaborators.spaceGeneration},
                [this] { adopt(); }),
      self_(std::make_shared<PanelBackground*>(this)) {
    themeChanges_ = with_.theme.onWillChange([this] { scheduleRefresh(); });
}

PanelBackground::~PanelBackground() = default;

void PanelBackground::setShown(bool shown) {
    if (std::exchange(shown_, shown) == shown) return;
    if (shown) {
        refresh(true);
    } else {
        backdrop_.release();
        image_ = {};
    }
    emit shownChanged();
}

void PanelBackground::scheduleRefresh() {
    // A change is announced before it takes effect; by the time the posted task runs it is in place.
    if (!shown_ || std::exchange(refreshPosted_, true)) return;
    with_.runLoop.post([weak = std::weak_ptr(self_)] {
        const auto self = weak.lock();
        if (!self) return;
        (*self)->refreshPosted_ = false;
        (*self)->refresh();
    });
}

void PanelBackground::windowMoved() {
    backdrop_.release();
    refresh();
}

void PanelBackground::refresh(bool isFolded) {
    if (!shown_) return;
    // Nothing shows through an opaque panel.
    if (with_.theme.baseOpacity() == 1) {
        backdrop_.release();
    } else if (backdrop_.isShown()) {
        backdrop_.update(with_.theme.translucency());
    } else {
        auto window = window_();
        window.isFolded = isFolded;
        backdrop_.show(window, with_.theme.translucency());
    }
    adopt();
}

void PanelBackground::adopt() {
    image_ = imageOf(backdrop_.image());
    scrim_ = panel_paint::scrimOpacity(with_.theme, backdrop_.brightest());
    emit changed();
}

void PanelBackground::paintBackdrop(QPainter& painter, const QPainterPath& outline) const {
    if (backdrop_.isBlurredByDesktop()) return;
    if (image_.isNull()) {
        painter.fillPath(outline, unknownBackdrop);
        return;
    }
    QBrush texture(image_);
    const qreal scale = painter.device()->devicePixelRatioF();
    if (scale != 1) texture.setTransform(QTransform::fromScale(1 / scale, 1 / scale));
    painter.fillPath(outline, texture);
}

void PanelBackground::paint(QPainter& painter, const QPainterPath& outline, const Measures& measures) const {
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal openness = std::clamp(measures.openness, 0.0, 1.0);
    const auto coating = panel_paint::coating(with_.theme, openness);
    if (!shown_ || panel_paint::isBlack(coating)) {
        painter.fillPath(outline, Qt::black);
    } else {
        paintBackdrop(painter, outline);
        const qreal scale = painter.device()->devicePixelRatioF();
        painter.fillPath(outline, verticalGradient(toQt(coating), measures.cardHeight, scale));
        const qreal reach = measures.headerBottom + scrimRunOut;
        const qreal strength = std::max(leastHeaderScrim, scrim_) * openness;
        QGradientStops scrim{{0, black(openness)}, {measures.notchHeight / reach, black(strength)}};
        // Runs out along a curve, so that no edge shows.
        for (int step = 0; step <= 4; ++step) {
            const qreal part = step / 4.0;
            const qreal left = 1 - part * part * (3 - 2 * part);
            scrim.append({(measures.headerBottom + part * scrimRunOut) / reach, black(strength * left)});
        }
        painter.save();
        painter.setClipRect(outline.boundingRect().intersected(QRectF(-1e6, 0, 2e6, reach)));
        painter.fillPath(outline, verticalGradient(scrim, reach, scale));
        painter.restore();
    }
    if (shown_ && openness > 0) {
        QColor line = edge;
        line.setAlphaF(static_cast<float>(edge.alphaF() * openness));
        painter.strokePath(outline, QPen(line, 1));
    }
}

}  // namespace sunpane
