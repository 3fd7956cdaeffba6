#include "linux/players/SoundServer.h"

#include "linux/system/OwnModule.h"

namespace sunpane {

SoundServer* SoundAccess::server() {
    if (!tried_) {
        tried_ = true;
        const auto make = reinterpret_cast<SoundModuleEntry>(loadOwnModule("dawnly-pulse", soundModuleEntry));
        if (make != nullptr) server_.reset(make());
    }
    return server_.get();
}

}  // namespace sunpane
