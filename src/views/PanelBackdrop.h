#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "base/Geometry.h"
#include "base/RunLoop.h"
#include "base/WorkQueue.h"
#include "platform/ScreenBackdrop.h"

namespace sunpane {

/// What shows through the panel: the screen behind it, blurred and with more colour. Taken when the panel unfolds, kept
/// up to date while it is open where the desktop allows that, and let go when it is folded: a folded panel holds no
/// picture, no thread and no timer.
///
/// One for each panel window; main thread only. The pictures are made on a queue of their own.
class PanelBackdrop {
public:
    static constexpr const char* queueLabel = "app.dawnly.backdrop";
    /// The blur is computed at this fraction of the size; its finest detail is far coarser.
    static constexpr int reduction = 4;
    /// How often a live backdrop is looked at anew (s).
    static constexpr Seconds refreshInterval = 0.2;
    /// So many looks are left out at first: the panel unfolds meanwhile, and waiting for a busy server would cost it
    /// frames.
    static constexpr int looksLeftOut = 3;

    struct Collaborators {
        ScreenBackdrop& screen;
        RunLoop& runLoop;
        WorkQueueFactory& queues;
        /// Changes when what the window is bound to was made anew.
        std::function<int()> spaceGeneration;
    };

    /// Sizes in points; the notch hangs from the middle of the window's top edge.
    struct Window {
        std::uint64_t number = 0;
        Size size;
        Size notch;
        /// Whether the panel is still folded. Without a compositor an open one is in every picture and cannot be taken
        /// out of it.
        bool isFolded = true;
    };

    /// `changed` is called after another picture has come in its place.
    PanelBackdrop(const Collaborators& collaborators, std::function<void()> changed);

    /// Takes the picture; it comes with a later `changed`.
    void show(const Window& window, double translucency);
    /// Follows the translucency of a panel that is open.
    void update(double translucency);
    void release();
    bool isShown() const { return shown_; }

    /// Whether there is nothing to paint because the desktop shows the blurred screen through the window by itself.
    bool isBlurredByDesktop() const { return blurredByDesktop_; }
    /// In the full size of the window; null until it is made and where there is none.
    std::shared_ptr<const ScreenImage> image() const { return image_; }
    /// How bright the picture is where it is brightest, as a grey from 0 to 1. 1 when nobody can tell.
    double brightest() const { return brightest_; }

private:
    struct Made {
        std::shared_ptr<const ScreenImage> image;
        double brightest;
    };

    void take();
    void look();
    void make();
    void accept(Made made);

    Collaborators with_;
    std::function<void()> changed_;
    Window window_;
    double translucency_ = 0;
    int generation_ = 0;
    bool shown_ = false;
    bool blurredByDesktop_ = false;
    std::shared_ptr<const ScreenBackdrop::Capture> taken_;
    std::shared_ptr<const ScreenImage> image_;
    double brightest_ = 1;
    int looksToLeaveOut_ = 0;
    bool making_ = false;
    bool outdated_ = false;  // while one is being made: another is wanted
    Subscription refreshTimer_;
    std::unique_ptr<WorkQueue> queue_;
    // What comes from the queue finds its way to what is shown now, or nowhere.
    std::shared_ptr<PanelBackdrop*> current_;
};

}  // namespace sunpane
