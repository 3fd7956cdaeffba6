#include "calendar/JoinLink.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "base/Text.h"

namespace sunpane {
namespace {

// A host counts when it is one of these or a subdomain of one.
constexpr std::array<std::string_view, 7> meetingHosts{
    "zoom.us", "meet.google.com", "teams.microsoft.com", "teams.live.com", "webex.com", "whereby.com", "meet.jit.si"};

constexpr std::string_view linkPrefix = "https://";

enum CharacterClass : std::uint8_t {
    // Ends a link in running text.
    endsLink = 1,
    // May stand in an address (RFC 3986), a percent sign apart.
    inAddress = 2,
    // May stand in a host name.
    inHost = 4,
};

constexpr std::array<std::uint8_t, 256> makeClasses() {
    std::array<std::uint8_t, 256> classes{};
    const auto add = [&](std::string_view characters, std::uint8_t what) {
        for (const char c : characters)
            classes[static_cast<unsigned char>(c)] |= what;
    };
    add(" \t\n\v\f\r<>\"')]", endsLink);
    add("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~", inAddress | inHost);
    add("!$&()*+,;='", inAddress | inHost);
    add(":/?#@%", inAddress);
    // Other scripts are written out in paths, and browsers take them.
    for (std::size_t byte = 0x80; byte < 256; ++byte)
        classes[byte] |= inAddress;
    return classes;
}
constexpr auto classes = makeClasses();

bool is(char c, CharacterClass what) {
    return (classes[static_cast<unsigned char>(c)] & what) != 0;
}

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool hasOnlyWholeEscapes(std::string_view address) {
    for (std::size_t i = address.find('%'); i != std::string_view::npos; i = address.find('%', i + 1)) {
        if (i + 2 >= address.size() || !isHexDigit(address[i + 1]) || !isHexDigit(address[i + 2])) return false;
    }
    return true;
}

bool isPort(std::string_view digits) {
    constexpr int maximumPort = 65535;
    int port = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9') return false;
        port = port * 10 + (c - '0');
        if (port > maximumPort) return false;
    }
    return true;
}

// Characters that are not seen, or that change how others are: no address needs them, and they make one look like
// another.
bool hasInvisibleCharacters(std::string_view address) {
    for (std::size_t position = 0; position < address.size();) {
        const int type = u_charType(static_cast<UChar32>(text::nextCodePoint(address, position)));
        if (type == U_CONTROL_CHAR || type == U_FORMAT_CHAR) return true;
    }
    return false;
}

// The host of an address as it is written there, from what follows "//". Empty when the address is malformed. A host
// in other scripts than ASCII counts as malformed: browsers rewrite such names before they look them up, so that what
// is read here need not be where the browser goes.
std::string_view hostOf(std::string_view afterSlashes) {
    if (!std::all_of(afterSlashes.begin(), afterSlashes.end(), [](char c) { return is(c, inAddress); })) return {};
    if (!hasOnlyWholeEscapes(afterSlashes) || hasInvisibleCharacters(afterSlashes)) return {};
    std::string_view host = afterSlashes.substr(0, afterSlashes.find_first_of("/?#"));
    const std::size_t at = host.find('@');
    if (at != std::string_view::npos) host.remove_prefix(at + 1);
    if (const std::size_t colon = host.find(':'); colon != std::string_view::npos) {
        if (!isPort(host.substr(colon + 1))) return {};
        host = host.substr(0, colon);
    }
    if (!std::all_of(host.begin(), host.end(), [](char c) { return is(c, inHost); })) return {};
    return host;
}

bool isMeetingHost(std::string_view host) {
    return std::any_of(meetingHosts.begin(), meetingHosts.end(), [&](std::string_view service) {
        if (!host.ends_with(service)) return false;
        return host.size() == service.size() || host[host.size() - service.size() - 1] == '.';
    });
}

// Where the link that runs through `position` ends.
std::size_t endOfLink(std::string_view text, std::size_t position) {
    while (position < text.size()) {
        if (static_cast<unsigned char>(text[position]) < 0x80) {
            if (is(text[position], endsLink)) break;
            ++position;
            continue;
        }
        std::size_t next = position;
        if (u_isUWhiteSpace(static_cast<UChar32>(text::nextCodePoint(text, next)))) break;
        position = next;
    }
    return position;
}

}  // namespace

std::optional<std::string> joinURL(std::string_view text) {
    for (std::size_t position = 0; position < text.size();) {
        // The C library's search stays at memory speed whatever the text looks like.
        const void* found =
            memmem(text.data() + position, text.size() - position, linkPrefix.data(), linkPrefix.size());
        if (found == nullptr) return std::nullopt;
        const auto start = static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
        const std::size_t end = endOfLink(text, start + linkPrefix.size());
        const std::string_view link = text.substr(start, end - start);
        position = end;
        if (link.size() > maximumLinkBytes) continue;
        if (isMeetingHost(hostOf(link.substr(linkPrefix.size())))) return std::string(link);
    }
    return std::nullopt;
}

std::optional<std::string> joinURL(const CalendarEvent& event) {
    // No link reaches across two parts, so there is no need to put them together first.
    for (const auto* part : {&event.url, &event.location, &event.notes}) {
        if (!*part) continue;
        if (auto link = joinURL(std::string_view(**part))) return link;
    }
    return std::nullopt;
}

bool isWebAddress(std::string_view text) {
    if (text.size() > maximumLinkBytes) return false;
    for (const std::string_view scheme : {std::string_view("https://"), std::string_view("http://")}) {
        if (text.starts_with(scheme)) return !hostOf(text.substr(scheme.size())).empty();
    }
    return false;
}

}  // namespace sunpane
