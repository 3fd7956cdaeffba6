#include "linux/desktop/ToolkitChoice.h"

#include <unistd.h>

#include <QByteArray>
#include <filesystem>
#include <system_error>

namespace sunpane {
namespace {

bool hasUsableRenderNode() {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/dri", error)) {
        const bool renderNode = entry.path().filename().string().starts_with("renderD");
        if (renderNode && access(entry.path().c_str(), R_OK | W_OK) == 0) return true;
    }
    return false;
}

}  // namespace

void choosePlatform() {
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || !qEnvironmentVariableIsSet("DISPLAY")) return;
    qputenv("QT_QPA_PLATFORM", "xcb");
}

void chooseRenderer() {
    if (qEnvironmentVariableIsSet("QT_QUICK_BACKEND") || hasUsableRenderNode()) return;
    qputenv("QT_QUICK_BACKEND", "software");
}

}  // namespace sunpane
