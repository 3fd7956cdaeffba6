#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "nowplaying/Track.h"

/// Which of the browser's tabs plays something. Pure functions; what they read comes from whatever pages are open.
namespace sunpane::chrome_tabs {

/// Of more tabs than this the first are looked at.
inline constexpr std::size_t maximumTabs = 2000;
/// A tab with a longer address (bytes) is passed over.
inline constexpr std::size_t maximumAddress = 8192;

/// One line of a scan.
struct Tab {
    /// Counted from 1; window 1 is the frontmost.
    std::int64_t win = 0;
    std::int64_t tab = 0;
    /// Whether it is the one that its window shows.
    bool active = false;
    std::int64_t id = 0;
    std::string url;
    std::string title;
    /// Without "www."; empty when the address has no host.
    std::string host;
    friend bool operator==(const Tab&, const Tab&) = default;
};

/// Reads the reply to a scan of all tabs. Lines that are none of a scan's are skipped.
std::vector<Tab> parse(std::string_view scan);

bool isYouTubeVideo(const Tab& tab);
/// A YouTube video, or a page of a site that plays music or video.
bool isMedia(const Tab& tab);

/// The tab that most likely makes the sound: the one that the frontmost window shows if it is a media tab, otherwise
/// the first YouTube video, otherwise the first media tab. Null without any. Points into `tabs`.
const Tab* pick(const std::vector<Tab>& tabs);

/// What a media tab plays, counted as playing.
Track trackOf(const Tab& tab);

}  // namespace sunpane::chrome_tabs
