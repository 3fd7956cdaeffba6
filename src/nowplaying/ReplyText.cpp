#include "nowplaying/ReplyText.h"

#include "nowplaying/PlayerScripts.h"

namespace sunpane {

std::vector<std::string_view> splitReply(std::string_view reply) {
    std::vector<std::string_view> parts;
    while (parts.size() < maximumReplyParts) {
        const std::size_t end = reply.find(player_scripts::separator);
        parts.push_back(reply.substr(0, end));
        if (end == std::string_view::npos) break;
        reply.remove_prefix(end + player_scripts::separator.size());
    }
    return parts;
}

std::string boundedReplyText(std::string_view text) {
    if (text.size() <= maximumReplyText) return std::string(text);
    std::size_t end = maximumReplyText;
    const auto continuesCodePoint = [&](std::size_t at) {
        return (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
    };
    while (end > 0 && continuesCodePoint(end))
        --end;
    return std::string(text.substr(0, end));
}

}  // namespace sunpane
