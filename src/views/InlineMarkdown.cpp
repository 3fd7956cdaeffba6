#include "views/InlineMarkdown.h"

#include <unicode/ubidi.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "calendar/JoinLink.h"

namespace sunpane {
namespace {

// The toolkit's styled text knows no other font within a line, but colours.
constexpr std::string_view codeStart = R"(<font color="#e8c9a0">)";
constexpr std::string_view codeEnd = "</font>";

constexpr std::string_view rightToLeftMark = "\u200F";

// More signs that wait for a partner than this, and more brackets in each other, are text.
constexpr std::size_t mostOpenSigns = 64;
constexpr int deepestBrackets = 8;

enum class Form { styled, styledWithoutLinks, plain };

bool isPunctuation(char c) {
    return std::ispunct(static_cast<unsigned char>(c)) != 0;
}

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}

std::string lowercasedStart(std::string_view text, std::size_t count) {
    std::string start(text.substr(0, count));
    for (char& c : start)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return start;
}

bool isSafeAddress(std::string_view address) {
    const auto isUnfit = [](char c) { return static_cast<unsigned char>(c) <= ' ' || c == '"' || c == '\x7F'; };
    if (address.size() > maximumLinkBytes || std::any_of(address.begin(), address.end(), isUnfit)) return false;
    const std::string start = lowercasedStart(address, 8);
    for (const std::string_view scheme : {"http://", "https://", "mailto:"}) {
        if (start.starts_with(scheme) && address.size() > scheme.size()) return true;
    }
    return false;
}

// The address between the parentheses of a link, without a title behind it.
std::string_view addressOf(std::string_view target) {
    target = text::trimWhitespace(target);
    const std::size_t end = target.find_first_of(" \t");
    if (end != std::string_view::npos) target = target.substr(0, end);
    if (target.size() > 1 && target.front() == '<' && target.back() == '>')
        target = target.substr(1, target.size() - 2);
    return target;
}

struct LinkParts {
    std::string_view label;
    std::string_view address;
    std::size_t size = 0;
};

// The link that begins with the bracket at `at`; brackets and parentheses in it come in pairs.
std::optional<LinkParts> linkAt(std::string_view text, std::size_t at) {
    const auto closing = [text](std::size_t from, char open, char close) {
        int depth = 0;
        for (std::size_t i = from; i < text.size() && text[i] != '\n'; ++i) {
            if (text[i] == '\\') {
                ++i;
            } else if (text[i] == open) {
                if (++depth > deepestBrackets) break;
            } else if (text[i] == close && --depth == 0) {
                return i;
            }
        }
        return std::string_view::npos;
    };
    const std::size_t labelEnd = closing(at, '[', ']');
    if (labelEnd == std::string_view::npos || labelEnd == at + 1) return std::nullopt;
    if (labelEnd + 1 >= text.size() || text[labelEnd + 1] != '(') return std::nullopt;
    const std::size_t end = closing(labelEnd + 1, '(', ')');
    if (end == std::string_view::npos) return std::nullopt;
    return LinkParts{text.substr(at + 1, labelEnd - at - 1), addressOf(text.substr(labelEnd + 2, end - labelEnd - 2)),
                     end + 1 - at};
}

// A stretch of output. One of signs (`**`, `_`) keeps those that found no partner as text, between the tags that it
// closes and those that it opens.
struct Piece {
    std::string text;
    char sign = 0;
    std::size_t count = 0;
    std::size_t length = 0;  // how many signs there were
    bool canOpen = false;
    bool canClose = false;
    std::string closed;
    std::string opened;
};

class Renderer {
public:
    explicit Renderer(Form form) : form_(form) {}

    std::vector<InlineLink> takeLinks() { return std::move(links_); }

    std::string render(std::string_view text, bool inLink = false) {
        std::vector<Piece> pieces(1);
        for (std::size_t at = 0; at < text.size();) {
            if (const std::size_t used = special(text, at, pieces, inLink)) {
                at += used;
                continue;
            }
            append(pieces, text[at++]);
        }
        pair(pieces);
        std::string output;
        for (const Piece& piece : pieces)
            output.append(piece.text).append(piece.closed).append(piece.count, piece.sign).append(piece.opened);
        return output;
    }

private:
    // Takes what is more than a letter at `at`, and returns how many bytes it is; 0 for a letter.
    std::size_t special(std::string_view text, std::size_t at, std::vector<Piece>& pieces, bool inLink) {
        switch (text[at]) {
            case '\\':
                if (at + 1 >= text.size() || !isPunctuation(text[at + 1])) return 0;
                append(pieces, text[at + 1]);
                return 2;
            case '`':
                return code(text, at, pieces);
            case '*':
            case '_':
                return signs(text, at, pieces);
            case '[':
                return inLink ? 0 : link(text, at, pieces);
            default:
                return 0;
        }
    }

    std::size_t code(std::string_view text, std::size_t at, std::vector<Piece>& pieces) {
        const std::size_t start = std::min(text.find_first_not_of('`', at), text.size());
        const std::size_t count = start - at;
        for (std::size_t end = text.find('`', start); end != std::string_view::npos;) {
            const std::size_t next = std::min(text.find_first_not_of('`', end), text.size());
            if (next - end == count) {
                std::string_view inner = text.substr(start, end - start);
                if (inner.find('\n') != std::string_view::npos) break;
                if (inner.size() > 2 && inner.front() == ' ' && inner.back() == ' ')
                    inner = inner.substr(1, inner.size() - 2);
                appendTag(pieces, codeStart);
                for (const char c : inner)
                    append(pieces, c);
                appendTag(pieces, codeEnd);
                return next - at;
            }
            end = text.find('`', next);
        }
        for (std::size_t i = 0; i < count; ++i)
            append(pieces, '`');
        return count;
    }

    static std::size_t signs(std::string_view text, std::size_t at, std::vector<Piece>& pieces) {
        Piece piece;
        piece.sign = text[at];
        const std::size_t end = std::min(text.find_first_not_of(piece.sign, at), text.size());
        piece.count = piece.length = end - at;
        const char before = at > 0 ? text[at - 1] : ' ';
        const char after = end < text.size() ? text[end] : ' ';
        const bool leans = !isSpace(after) && (!isPunctuation(after) || isSpace(before) || isPunctuation(before));
        const bool ends = !isSpace(before) && (!isPunctuation(before) || isSpace(after) || isPunctuation(after));
        // snake_case is no emphasis.
        const bool isUnderscore = piece.sign == '_';
        piece.canOpen = leans && (!isUnderscore || !ends || isPunctuation(before));
        piece.canClose = ends && (!isUnderscore || !leans || isPunctuation(after));
        pieces.push_back(std::move(piece));
        return end - at;
    }

    std::size_t link(std::string_view text, std::size_t at, std::vector<Piece>& pieces) {
        const auto parts = linkAt(text, at);
        if (!parts) return 0;
        const bool isLink =
            form_ != Form::styledWithoutLinks && isSafeAddress(parts->address) && links_.size() < maximumLinks;
        // By number, so that no address has to survive the toolkit's markup.
        if (isLink) appendTag(pieces, "<a href=\"" + std::to_string(links_.size()) + "\">");
        const std::string label = render(parts->label, true);
        tail(pieces) += label;
        if (isLink) {
            appendTag(pieces, "</a>");
            links_.push_back({Renderer(Form::plain).render(parts->label, true), std::string(parts->address)});
        }
        return parts->size;
    }

    // Signs of three, four and more are taken as bold and italic in each other, two at a time from the inside.
    void pair(std::vector<Piece>& pieces) const {
        std::vector<std::size_t> open;
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            Piece& closer = pieces[i];
            while (closer.canClose && closer.count > 0) {
                std::size_t at = open.size();
                while (at > 0 && !arePartners(pieces[open[at - 1]], closer))
                    --at;
                if (at == 0) break;
                Piece& opener = pieces[open[at - 1]];
                open.resize(at);  // what was opened in between has no partner
                const bool bold = opener.count >= 2 && closer.count >= 2;
                if (form_ != Form::plain) {
                    opener.opened.insert(0, bold ? "<b>" : "<i>");
                    closer.closed += bold ? "</b>" : "</i>";
                }
                opener.count -= bold ? 2 : 1;
                closer.count -= bold ? 2 : 1;
                if (opener.count == 0) open.pop_back();
            }
            if (closer.canOpen && closer.count > 0 && open.size() < mostOpenSigns) open.push_back(i);
        }
    }

    static bool arePartners(const Piece& opener, const Piece& closer) {
        if (opener.sign != closer.sign) return false;
        // "**a*b**" is bold around "a*b", not a half-open italic.
        const bool isTwoWay = opener.canClose || closer.canOpen;
        const bool addUpToThree = (opener.length + closer.length) % 3 == 0;
        return !isTwoWay || !addUpToThree || (opener.length % 3 == 0 && closer.length % 3 == 0);
    }

    // Behind a piece of signs, text belongs to what they open.
    static std::string& tail(std::vector<Piece>& pieces) {
        Piece& last = pieces.back();
        if (last.sign == 0) return last.text;
        return pieces.emplace_back().text;
    }

    void appendTag(std::vector<Piece>& pieces, std::string_view tag) const {
        if (form_ != Form::plain) tail(pieces) += tag;
    }

    void append(std::vector<Piece>& pieces, char c) const {
        std::string& output = tail(pieces);
        if (form_ == Form::plain) {
            output += c;
            return;
        }
        switch (c) {
            case '&':
                output += "&amp;";
                break;
            case '<':
                output += "&lt;";
                break;
            case '>':
                output += "&gt;";
                break;
            case '\n':
                output += "<br>";
                break;
            default:
                output += c;
        }
    }

    Form form_;
    std::vector<InlineLink> links_;
};

// As much of a text as is shown.
std::string_view shownPart(std::string_view markdown) {
    if (markdown.size() <= maximumRenderedBytes) return markdown;
    std::size_t end = maximumRenderedBytes;
    while (end > 0 && (static_cast<unsigned char>(markdown[end]) & 0xC0) == 0x80)
        --end;
    return markdown.substr(0, end);
}

bool isRightToLeft(const std::string& plain) {
    const auto text = icu::UnicodeString::fromUTF8(plain);
    return ubidi_getBaseDirection(text.getBuffer(), text.length()) == UBIDI_RTL;
}

std::string run(std::string_view markdown, Form form) {
    const std::string_view shown = shownPart(markdown);
    std::string text = Renderer(form).render(shown);
    // The toolkit takes the letters of tags for those of the text when it looks for its direction.
    if (form != Form::plain && isRightToLeft(Renderer(Form::plain).render(shown))) text.insert(0, rightToLeftMark);
    if (shown.size() < markdown.size()) text += "…";
    return text;
}

}  // namespace

std::string rendered(std::string_view markdown) {
    return run(markdown, Form::styled);
}

std::string renderedTitle(std::string_view markdown) {
    return run(markdown, Form::styledWithoutLinks);
}

std::string plainText(std::string_view markdown) {
    return run(markdown, Form::plain);
}

std::vector<InlineLink> linksOf(std::string_view markdown) {
    Renderer renderer(Form::styled);
    renderer.render(shownPart(markdown));
    return renderer.takeLinks();
}

}  // namespace sunpane
