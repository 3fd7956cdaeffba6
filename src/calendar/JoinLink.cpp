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
    // Has to be escaped in an address, and is often written as it is.
    escapable = 8,
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
    add("|{}[\\^`", escapable);
    // Other scripts are written out in paths, and browsers take them.
    for (std::size_t byte = 0x80; byte < 256; ++byte)
        classes[byte] |= inAddress;
    return classes;
}
constexpr auto classes = makeClasses();

bool is(char c, CharacterClass what) {
    return (classes[static_cast<unsigned char>(c)] & what) != 0;
}

bool isAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
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

bool isPlain(std::string_view address) {
    return std::all_of(address.begin(), address.end(), [](char c) { return is(c, inAddress); }) &&
           hasOnlyWholeEscapes(address) && !hasInvisibleCharacters(address);
}

// What follows "//" up to the path: the host, with whoever logs in and the port.
std::string_view authorityOf(std::string_view afterSlashes) {
    return afterSlashes.substr(0, afterSlashes.find_first_of("/?#"));
}

// The host as it is written there. Empty when the authority is malformed. A host in other scripts than ASCII counts as
// malformed: browsers rewrite such names before they look them up, so that what is read here need not be where the
// browser goes.
std::string_view hostOf(std::string_view authority) {
    if (!isPlain(authority)) return {};
    std::string_view host = authority;
    const std::size_t at = host.find('@');
    if (at != std::string_view::npos) host.remove_prefix(at + 1);
    if (const std::size_t colon = host.find(':'); colon != std::string_view::npos) {
        if (!isPort(host.substr(colon + 1))) return {};
        host = host.substr(0, colon);
    }
    if (!std::all_of(host.begin(), host.end(), [](char c) { return is(c, inHost); })) return {};
    return host;
}

// Writes out what services put into paths and queries as it is, though an address has to escape it. Past the host
// nothing can lead elsewhere by that.
std::string withEscapes(std::string_view pathAndQuery) {
    std::string escaped;
    escaped.reserve(pathAndQuery.size());
    for (const char c : pathAndQuery) {
        if (!is(c, escapable)) {
            escaped += c;
            continue;
        }
        constexpr std::string_view digits = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(c);
        escaped.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
    return escaped;
}

// Without the invisible characters that come along when a link is copied out of a message.
std::string_view withoutInvisibleEnd(std::string_view link) {
    while (!link.empty() && !isAscii(link.back())) {
        std::size_t last = link.size() - 1;
        while (last > 0 && (static_cast<unsigned char>(link[last]) & 0xC0) == 0x80)
            --last;
        std::size_t position = last;
        if (u_charType(static_cast<UChar32>(text::nextCodePoint(link, position))) != U_FORMAT_CHAR) break;
        link = link.substr(0, last);
    }
    return link;
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
        if (isAscii(text[position])) {
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
        const std::string_view afterSlashes = withoutInvisibleEnd(link).substr(linkPrefix.size());
        const std::string_view authority = authorityOf(afterSlashes);
        if (!isMeetingHost(hostOf(authority))) continue;
        const std::string rest = withEscapes(afterSlashes.substr(authority.size()));
        if (!isPlain(rest) || linkPrefix.size() + authority.size() + rest.size() > maximumLinkBytes) continue;
        return std::string(linkPrefix).append(authority).append(rest);
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
        if (!text.starts_with(scheme)) continue;
        const std::string_view afterSlashes = text.substr(scheme.size());
        return isPlain(afterSlashes) && !hostOf(authorityOf(afterSlashes)).empty();
    }
    return false;
}

}  // namespace sunpane
