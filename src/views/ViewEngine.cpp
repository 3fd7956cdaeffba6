#include "views/ViewEngine.h"

#include <QPixmapCache>
#include <chrono>
#include <utility>

namespace sunpane {
namespace {

using namespace std::chrono_literals;

// Long enough for a window to be gone that closed with an animation or answers its last event.
constexpr auto untilGone = 500ms;

// An engine looks at this when it is made. Programs that this one starts must not see it.
constexpr const char* interpreterOnly = "QV4_FORCE_INTERPRETER";

QObject* parentOfInterpreter() {
    qputenv(interpreterOnly, "1");
    return nullptr;
}

}  // namespace

// Compiled at run time, the views' short scripts would take more memory than they save time.
ViewEngine::ViewEngine(std::function<void()> returnMemory)
    : QQmlEngine(parentOfInterpreter()), returnMemory_(std::move(returnMemory)) {
    qunsetenv(interpreterOnly);
    tidying_.setSingleShot(true);
    tidying_.setInterval(untilGone);
    connect(&tidying_, &QTimer::timeout, this, [this] {
        collectGarbage();
        QPixmapCache::clear();
        returnMemory_();
    });
}

}  // namespace sunpane
