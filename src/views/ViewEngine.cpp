#include "views/ViewEngine.h"

#include <QPixmapCache>
#include <chrono>
#include <utility>

namespace sunpane {
namespace {

using namespace std::chrono_literals;

// Long enough for a window to be gone that closed with an animation or answers its last event.
constexpr auto untilGone = 500ms;

}  // namespace

ViewEngine::ViewEngine(std::function<void()> returnMemory) : returnMemory_(std::move(returnMemory)) {
    tidying_.setSingleShot(true);
    tidying_.setInterval(untilGone);
    connect(&tidying_, &QTimer::timeout, this, [this] {
        collectGarbage();
        QPixmapCache::clear();
        returnMemory_();
    });
}

}  // namespace sunpane
