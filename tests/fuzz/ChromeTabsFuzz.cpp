#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "nowplaying/ChromeTabs.h"
#include "nowplaying/PlayerScripts.h"
#include "nowplaying/ReplyText.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

bool isPlain(std::string_view address) {
    for (const char c : address) {
        if (c <= ' ' || c > '~' || c == '"' || c == '\\') return false;
    }
    return true;
}

}  // namespace

// Whatever pages say, what is kept of it is bounded, and the addresses and scripts made from it are well-formed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sunpane;
    const std::string_view scan(reinterpret_cast<const char*>(data), size);
    const auto tabs = chrome_tabs::parse(scan);
    require(tabs.size() <= chrome_tabs::maximumTabs);
    bool hasMedia = false;
    for (const auto& tab : tabs) {
        require(tab.url.size() <= chrome_tabs::maximumAddress && tab.title.size() <= maximumReplyText);
        require(scan.find(tab.url) != std::string_view::npos && tab.host.size() <= tab.url.size());
        hasMedia = hasMedia || chrome_tabs::isMedia(tab);
        const Track track = chrome_tabs::trackOf(tab);
        require(track.isChromeTab() && track.chromeTabID == tab.id && track.pageURL == tab.url);
        require(!track.artworkURL || (track.artworkURL->starts_with("https://") && isPlain(*track.artworkURL)));
        const auto script = player_scripts::showTab(tab.id);
        require(script.find("is \"" + std::to_string(tab.id) + "\" then") != std::string::npos);
    }
    const auto* picked = chrome_tabs::pick(tabs);
    require((picked != nullptr) == hasMedia);
    require(picked == nullptr || chrome_tabs::isMedia(*picked));
    return 0;
}
