#include "views/PanelBackdrop.h"

#include <cmath>
#include <utility>

#include "views/BackdropFilters.h"

namespace sunpane {
namespace {

// The notch's outline flares beyond its rectangle, and its edges are smoothed.
constexpr double aroundNotch = 10;

// A picture with the folded panel in it would have the black of the notch spread into the open one.
void removeNotch(ScreenImage& image, const PanelBackdrop::Window& window) {
    const double scale = image.width / window.size.width;
    const double middle = image.width / 2.0;
    const double half = (window.notch.width / 2 + aroundNotch) * scale;
    backdrop::coverTop(image, static_cast<int>(std::floor(middle - half)), static_cast<int>(std::ceil(middle + half)),
                       static_cast<int>(std::ceil((window.notch.height + 1) * scale)));
}

}  // namespace

PanelBackdrop::PanelBackdrop(const Collaborators& collaborators, std::function<void()> changed)
    : with_(collaborators), changed_(std::move(changed)) {}

void PanelBackdrop::show(const Window& window, double translucency) {
    release();
    window_ = window;
    translucency_ = translucency;
    generation_ = with_.spaceGeneration();
    shown_ = true;
    blurredByDesktop_ = with_.screen.isBlurredByDesktop();
    if (blurredByDesktop_) return;
    current_ = std::make_shared<PanelBackdrop*>(this);
    take();
    looksToLeaveOut_ = window.isFolded ? looksLeftOut : 0;
    if (taken_ && with_.screen.isLive()) refreshTimer_ = with_.runLoop.every(refreshInterval, [this] { look(); });
}

void PanelBackdrop::look() {
    if (looksToLeaveOut_ > 0) {
        --looksToLeaveOut_;
    } else {
        take();
    }
}

void PanelBackdrop::update(double translucency) {
    if (!shown_) return;
    const bool sharper = backdrop::blurRadius(translucency) != backdrop::blurRadius(translucency_);
    translucency_ = translucency;
    if (const int generation = with_.spaceGeneration(); generation != generation_) {
        generation_ = generation;
        take();
    }
    if (sharper && taken_) make();
}

void PanelBackdrop::release() {
    shown_ = false;
    refreshTimer_.cancel();
    current_.reset();
    queue_.reset();
    taken_.reset();
    image_.reset();
    brightest_ = 1;
    making_ = false;
    outdated_ = false;
}

void PanelBackdrop::take() {
    if (blurredByDesktop_) return;
    auto capture = with_.screen.capture(window_.number, reduction);
    if (!capture || capture->image.pixels.empty()) return;
    if (capture->hasWindowInIt) {
        // Only the folded panel can be taken out of a picture.
        if (taken_ || !window_.isFolded) return;
        removeNotch(capture->image, window_);
    }
    if (taken_ && taken_->image == capture->image) return;
    taken_ = std::make_shared<const ScreenBackdrop::Capture>(*std::move(capture));
    make();
}

void PanelBackdrop::make() {
    outdated_ = making_;
    if (std::exchange(making_, true)) return;
    if (!queue_) queue_ = with_.queues.makeQueue(queueLabel);
    const double pixelsPerPoint = taken_->image.width / window_.size.width;
    const double deviation = backdrop::blurRadius(translucency_) * pixelsPerPoint;
    queue_->post([taken = taken_, deviation, &runLoop = with_.runLoop, current = std::weak_ptr(current_)] {
        ScreenImage small = taken->image;
        backdrop::saturate(small, backdrop::saturation);
        backdrop::blur(small, deviation);
        const double brightest = backdrop::brightestGray(small);
        auto image =
            std::make_shared<const ScreenImage>(backdrop::enlarged(small, taken->fullWidth, taken->fullHeight));
        runLoop.post([current, made = Made{std::move(image), brightest}] {
            if (const auto self = current.lock()) (*self)->accept(made);
        });
    });
}

void PanelBackdrop::accept(Made made) {
    making_ = false;
    image_ = std::move(made.image);
    brightest_ = made.brightest;
    if (std::exchange(outdated_, false)) make();
    changed_();
}

}  // namespace sunpane
