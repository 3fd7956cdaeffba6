#include "linux/desktop/ToolkitChoice.h"

#include <unistd.h>

#include <QByteArray>
#include <filesystem>
#include <system_error>

#include "linux/system/OwnEnvironment.h"

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
    if (qEnvironmentVariableIsSet("DISPLAY")) setOwnVariable("QT_QPA_PLATFORM", "xcb");
}

void chooseRenderer() {
    if (!hasUsableRenderNode()) setOwnVariable("QT_QUICK_BACKEND", "software");
}

void interpretScripts() {
    setOwnVariable("QV4_FORCE_INTERPRETER", "1");
}

}  // namespace sunpane
