#include "views/InlineMarkdown.h"

#include <array>
#include <cctype>
#include <cstddef>
#include <utility>

namespace sunpane {
namespace {

struct Mark {
    std::string_view sign;
    std::string_view open;
    std::string_view close;
    bool isCode = false;
};

// Longer signs first: "**" is not two "*".
constexpr std::array<Mark, 5> marks{{{"**", "<b>", "</b>"},
                                     {"__", "<b>", "</b>"},
                                     {"*", "<i>", "</i>"},
                                     {"_", "<i>", "</i>"},
                                     {"`", "<code>", "</code>", true}}};

// Marks nest (bold around italic); more levels than this are text.
constexpr int deepestNesting = 4;

class Renderer {
public:
    explicit Renderer(bool styled) : styled_(styled) {}

    std::string take() { return std::move(output_); }

    void render(std::string_view text, int depth) {
        for (std::size_t at = 0; at < text.size();) {
            std::size_t used = 0;
            if (depth < deepestNesting) {
                used = renderMark(text, at, depth);
                if (used == 0) used = renderLink(text, at, depth);
            }
            if (used == 0) {
                append(text[at]);
                used = 1;
            }
            at += used;
        }
    }

private:
    static bool isWordCharacter(char c) {
        return (static_cast<unsigned char>(c) & 0x80) != 0 || std::isalnum(static_cast<unsigned char>(c)) != 0;
    }

    // Returns how many bytes the marked phrase that starts here takes; 0 when none does.
    std::size_t renderMark(std::string_view text, std::size_t at, int depth) {
        for (const Mark& mark : marks) {
            if (!text.substr(at).starts_with(mark.sign)) continue;
            // snake_case is no emphasis.
            if (mark.sign[0] == '_' && at > 0 && isWordCharacter(text[at - 1])) return 0;
            const std::size_t start = at + mark.sign.size();
            const std::size_t end = text.find(mark.sign, start);
            if (end == std::string_view::npos || end == start) continue;
            const std::string_view inner = text.substr(start, end - start);
            if (!mark.isCode && (inner.front() == ' ' || inner.back() == ' ')) continue;
            if (inner.find('\n') != std::string_view::npos) continue;
            if (styled_) output_ += mark.open;
            if (mark.isCode) {
                for (const char c : inner)
                    append(c);
            } else {
                render(inner, depth + 1);
            }
            if (styled_) output_ += mark.close;
            return end + mark.sign.size() - at;
        }
        return 0;
    }

    // Links show their text; opening them is another matter.
    std::size_t renderLink(std::string_view text, std::size_t at, int depth) {
        if (text[at] != '[') return 0;
        const std::size_t middle = text.find("](", at);
        if (middle == std::string_view::npos || middle == at + 1) return 0;
        const std::string_view label = text.substr(at + 1, middle - at - 1);
        const std::size_t end = text.find(')', middle);
        if (end == std::string_view::npos || label.find_first_of("[\n") != std::string_view::npos) return 0;
        render(label, depth + 1);
        return end + 1 - at;
    }

    void append(char c) {
        if (!styled_) {
            output_ += c;
            return;
        }
        switch (c) {
            case '&':
                output_ += "&amp;";
                break;
            case '<':
                output_ += "&lt;";
                break;
            case '>':
                output_ += "&gt;";
                break;
            case '\n':
                output_ += "<br>";
                break;
            default:
                output_ += c;
        }
    }

    bool styled_;
    std::string output_;
};

std::string run(std::string_view markdown, bool styled) {
    std::string_view shown = markdown;
    if (shown.size() > maximumRenderedBytes) {
        std::size_t end = maximumRenderedBytes;
        while (end > 0 && (static_cast<unsigned char>(shown[end]) & 0xC0) == 0x80)
            --end;
        shown = shown.substr(0, end);
    }
    Renderer renderer(styled);
    renderer.render(shown, 0);
    std::string text = renderer.take();
    if (shown.size() < markdown.size()) text += "…";
    return text;
}

}  // namespace

std::string rendered(std::string_view markdown) {
    return run(markdown, true);
}

std::string plainText(std::string_view markdown) {
    return run(markdown, false);
}

}  // namespace sunpane
