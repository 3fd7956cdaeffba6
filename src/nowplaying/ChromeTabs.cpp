#include "nowplaying/ChromeTabs.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "base/Text.h"
#include "nowplaying/PlayerScripts.h"
#include "nowplaying/ReplyText.h"

namespace sunpane::chrome_tabs {
namespace {

// Every address that the program knows of media sites.
constexpr std::string_view youTubeVideo = "youtube.com/watch";
constexpr std::array<std::string_view, 11> mediaHosts{
    "untitled.stream", "soundcloud.com", "bandcamp.com", "open.spotify.com", "music.youtube.com", "mixcloud.com",
    "tidal.com",       "deezer.com",     "nts.live",     "twitch.tv",        "vimeo.com"};
constexpr std::string_view thumbnailPrefix = "https://i.ytimg.com/vi/";
constexpr std::string_view thumbnailSuffix = "/hqdefault.jpg";
constexpr std::string_view faviconPrefix = "https://www.google.com/s2/favicons?domain=";
constexpr std::string_view faviconSuffix = "&sz=128";

constexpr std::string_view youTubeName = "YouTube";
constexpr std::string_view youTubeTitleEnding = " - YouTube";

bool isLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// Only names go on into other addresses and onto the screen; anything else in a host's place counts as no host.
std::string hostOf(std::string_view url) {
    const std::size_t scheme = url.find("://");
    if (scheme == std::string_view::npos) return {};
    std::string_view host = url.substr(scheme + 3);
    host = host.substr(0, host.find_first_of("/?#\\"));
    if (const std::size_t at = host.rfind('@'); at != std::string_view::npos) host.remove_prefix(at + 1);
    host = host.substr(0, host.find(':'));
    const auto isNamePart = [](char c) { return isLetterOrDigit(c) || c == '-' || c == '.' || c == '_'; };
    if (!std::all_of(host.begin(), host.end(), isNamePart)) return {};
    return text::replacingAll(host, "www.", "");
}

// The video that an address names; absent when it names none in the form in which the site makes its names.
std::optional<std::string_view> videoOf(std::string_view url) {
    url = url.substr(0, url.find('#'));
    const std::size_t question = url.find('?');
    if (question == std::string_view::npos) return std::nullopt;
    std::string_view rest = url.substr(question + 1);
    while (!rest.empty()) {
        const std::string_view item = rest.substr(0, rest.find('&'));
        rest.remove_prefix(std::min(item.size() + 1, rest.size()));
        if (!item.starts_with("v=")) continue;
        const std::string_view video = item.substr(2);
        const auto isIdPart = [](char c) { return isLetterOrDigit(c) || c == '-' || c == '_'; };
        if (video.empty() || !std::all_of(video.begin(), video.end(), isIdPart)) return std::nullopt;
        return video;
    }
    return std::nullopt;
}

bool readNumber(std::string_view text, std::int64_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && end == text.data() + text.size();
}

std::optional<Tab> parseLine(std::string_view line) {
    const auto parts = splitReply(line);
    if (parts.size() < 6) return std::nullopt;
    Tab tab;
    if (!readNumber(parts[0], tab.win) || !readNumber(parts[1], tab.tab) || !readNumber(parts[3], tab.id)) {
        return std::nullopt;
    }
    if (parts[4].size() > maximumAddress) return std::nullopt;
    tab.active = parts[2] == "1";
    tab.url = parts[4];
    tab.title = boundedReplyText(parts[5]);
    tab.host = hostOf(tab.url);
    return tab;
}

}  // namespace

std::vector<Tab> parse(std::string_view scan) {
    std::vector<Tab> tabs;
    while (!scan.empty() && tabs.size() < maximumTabs) {
        const std::string_view line = scan.substr(0, scan.find('\n'));
        scan.remove_prefix(std::min(line.size() + 1, scan.size()));
        if (auto tab = parseLine(line)) tabs.push_back(std::move(*tab));
    }
    return tabs;
}

bool isYouTubeVideo(const Tab& tab) {
    return tab.url.find(youTubeVideo) != std::string::npos;
}

bool isMedia(const Tab& tab) {
    return isYouTubeVideo(tab) || std::any_of(mediaHosts.begin(), mediaHosts.end(),
                                              [&](std::string_view host) { return tab.host.ends_with(host); });
}

const Tab* pick(const std::vector<Tab>& tabs) {
    const auto first = [&](auto holds) -> const Tab* {
        const auto found = std::find_if(tabs.begin(), tabs.end(), holds);
        return found == tabs.end() ? nullptr : &*found;
    };
    const Tab* shown = first([](const Tab& tab) { return tab.win == 1 && tab.active; });
    if (shown != nullptr && isMedia(*shown)) return shown;
    if (const Tab* video = first(isYouTubeVideo)) return video;
    return first(isMedia);
}

Track trackOf(const Tab& tab) {
    Track track{.title = tab.title,
                .artist = tab.host,
                .playing = true,
                .artworkURL = {},
                .player = Player::youtube,
                .chromeWindow = tab.win,
                .chromeTab = tab.tab,
                .chromeTabID = tab.id,
                .pageURL = tab.url};
    if (isYouTubeVideo(tab)) {
        track.artist = youTubeName;
        if (track.title.ends_with(youTubeTitleEnding)) {
            track.title.resize(track.title.size() - youTubeTitleEnding.size());
        }
        if (const auto video = videoOf(tab.url)) {
            track.artworkURL.emplace(thumbnailPrefix).append(*video).append(thumbnailSuffix);
        }
    } else if (!tab.host.empty()) {
        track.artworkURL.emplace(faviconPrefix).append(tab.host).append(faviconSuffix);
    }
    return track;
}

}  // namespace sunpane::chrome_tabs
