#include "core/briefing/PlainBriefing.h"

#include <unicode/brkiter.h>
#include <unicode/regex.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <functional>
#include <memory>
#include <optional>

namespace sunpane::testing {
namespace {

using icu::UnicodeString;
// One user-perceived character each.
using Characters = std::vector<UnicodeString>;

UnicodeString fromUtf8(std::string_view text) {
    return UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int>(text.size())));
}

std::string toUtf8(const UnicodeString& text) {
    std::string result;
    return text.toUTF8String(result);
}

Characters characters(const UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> boundaries(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    boundaries->setText(text);
    Characters result;
    for (int start = 0, end = boundaries->next(); end != icu::BreakIterator::DONE;
         start = end, end = boundaries->next()) {
        result.emplace_back(text, start, end - start);
    }
    return result;
}

UnicodeString slice(const UnicodeString& text, std::size_t from, std::size_t to) {
    const Characters all = characters(text);
    UnicodeString result;
    for (std::size_t i = from; i < std::min(to, all.size()); ++i)
        result += all[i];
    return result;
}

UnicodeString first(const UnicodeString& text, std::size_t count) {
    return slice(text, 0, count);
}
UnicodeString dropFirst(const UnicodeString& text, std::size_t count) {
    return slice(text, count, SIZE_MAX);
}
UnicodeString dropLast(const UnicodeString& text, std::size_t count) {
    const std::size_t size = characters(text).size();
    return slice(text, 0, size > count ? size - count : 0);
}

bool begins(const UnicodeString& text, const char16_t* prefix) {
    const UnicodeString wanted(prefix);
    return first(text, characters(wanted).size()) == wanted;
}

bool ends(const UnicodeString& text, const char16_t* suffix) {
    const UnicodeString wanted(suffix);
    const std::size_t size = characters(text).size();
    const std::size_t count = characters(wanted).size();
    return size >= count && slice(text, size - count, size) == wanted;
}

bool isSpace(UChar32 c) {
    return c == '\t' || u_charType(c) == U_SPACE_SEPARATOR;
}
bool isSpaceOrNewline(UChar32 c) {
    return isSpace(c) || (c >= 0x0A && c <= 0x0D) || c == 0x85;
}
bool isNewline(UChar32 c) {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

UnicodeString trim(UnicodeString text, const std::function<bool(UChar32)>& isTrimmed = isSpace) {
    while (!text.isEmpty() && isTrimmed(text.char32At(0)))
        text.remove(0, U16_LENGTH(text.char32At(0)));
    while (!text.isEmpty() && isTrimmed(text.char32At(text.length() - 1)))
        text.truncate(text.moveIndex32(text.length(), -1));
    return text;
}

Characters lines(const UnicodeString& text) {
    Characters result(1);
    for (int i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        if (isNewline(text.char32At(i))) {
            result.emplace_back();
        } else {
            result.back() += text.char32At(i);
        }
    }
    return result;
}

UnicodeString joined(const Characters& parts, const char16_t* separator) {
    UnicodeString result;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) result += separator;
        result += parts[i];
    }
    return result;
}

UnicodeString lower(UnicodeString text) {
    return text.toLower(icu::Locale::getRoot());
}

bool isLetter(const UnicodeString& character) {
    return u_hasBinaryProperty(character.char32At(0), UCHAR_ALPHABETIC);
}
bool isNumber(const UnicodeString& character) {
    return u_getIntPropertyValue(character.char32At(0), UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

UnicodeString key(const UnicodeString& text) {
    const UnicodeString lowered = lower(text);
    Characters words;
    bool isOpen = false;
    for (int i = 0; i < lowered.length(); i = lowered.moveIndex32(i, 1)) {
        const UChar32 c = lowered.char32At(i);
        if ((U_GET_GC_MASK(c) & (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) == 0) {
            isOpen = false;
            continue;
        }
        if (!isOpen) words.emplace_back();
        isOpen = true;
        words.back() += c;
    }
    return first(joined(words, u"-"), 100);
}

UnicodeString suggestion(UnicodeString markdown) {
    UErrorCode status = U_ZERO_ERROR;
    icu::RegexMatcher matcher(u"\\*\\*([^*]+)\\*\\*", markdown, 0, status);
    if (matcher.find()) {
        UnicodeString phrase = trim(dropLast(dropFirst(matcher.group(status), 2), 2));
        if (characters(phrase).size() >= 8) return phrase;
    }
    markdown.findAndReplace(u"**", u"").findAndReplace(u"`", u"");
    const int dash = markdown.indexOf(u" \u2014 ");
    return trim(dash >= 0 ? UnicodeString(markdown, 0, dash) : first(markdown, 100));
}

std::optional<UnicodeString> boldTitle(UnicodeString t) {
    if (ends(t, u":")) t = dropLast(t, 1);
    const std::size_t count = characters(t).size();
    if (count < 5 || count > 80 || !ends(t, u"**")) return std::nullopt;
    const int at = t.indexOf(u"**");
    const UnicodeString lead = trim(UnicodeString(t, 0, at));
    const Characters leading = characters(lead);
    if (leading.size() > 4) return std::nullopt;
    for (const auto& character : leading) {
        if (isLetter(character) || isNumber(character)) return std::nullopt;
    }
    const UnicodeString rest(t, at + 2);
    if (!ends(rest, u"**")) return std::nullopt;
    const UnicodeString inner = trim(dropLast(rest, 2));
    if (inner.isEmpty() || inner.indexOf(u'*') >= 0) return std::nullopt;
    return lead.isEmpty() ? inner : lead + u" " + inner;
}

std::optional<UnicodeString> headingTitle(const UnicodeString& t) {
    if (begins(t, u"### ")) return trim(dropFirst(t, 4));
    if (begins(t, u"#### ")) return trim(dropFirst(t, 5));
    if (begins(t, u"## ")) return trim(dropFirst(t, 3));
    return boldTitle(t);
}

UnicodeString decorate(const UnicodeString& line) {
    const UnicodeString t = trim(line);
    return begins(t, u"- ") && !begins(t, u"- [") ? u"\u2022 " + dropFirst(t, 2) : line;
}

bool holdsActionItems(const UnicodeString& title) {
    UnicodeString folded(title);
    if (folded.foldCase().indexOf(u"action items") >= 0) return true;
    UnicodeString letters;
    for (const auto& character : characters(lower(title))) {
        if (isLetter(character)) letters += character;
    }
    return letters == u"wrk" || letters == u"prsnl";
}

PlainSection splitBody(int id, const UnicodeString& title, const Characters& body) {
    Characters intro;
    Characters items;
    for (const auto& line : body) {
        const UnicodeString t = trim(line);
        if (begins(t, u"\u2022 ")) {
            items.push_back(dropFirst(t, 2));
        } else if (items.empty()) {
            intro.push_back(line);
        } else if (!t.isEmpty()) {
            items.back() += u" " + t;
        }
    }
    PlainSection section{id, toUtf8(title), toUtf8(trim(joined(intro, u"\n"), isSpaceOrNewline)), {}};
    for (const auto& item : items)
        section.items.push_back({toUtf8(key(item)), toUtf8(item), toUtf8(suggestion(item))});
    return section;
}

std::vector<PlainSection> plainSections(const UnicodeString& markdown) {
    std::vector<PlainSection> result;
    int nextId = 0;
    UnicodeString title = u"Overview";
    Characters body;
    const auto push = [&] {
        if (trim(joined(body, u""), isSpaceOrNewline).isEmpty() || holdsActionItems(title)) return;
        PlainSection section = splitBody(nextId++, title, body);
        if (!section.intro.empty() || !section.items.empty()) result.push_back(section);
    };
    for (const auto& line : lines(markdown)) {
        const UnicodeString t = trim(line);
        if (const auto heading = headingTitle(t)) {
            push();
            title = *heading;
            body.clear();
        } else if (t != u"---") {
            body.push_back(decorate(line));
        }
    }
    push();
    return result;
}

std::vector<BriefingActionItem> plainActionItems(const UnicodeString& markdown) {
    std::vector<BriefingActionItem> result;
    for (const auto& line : lines(markdown)) {
        UnicodeString t = trim(line);
        if (begins(t, u"- ")) t = trim(dropFirst(t, 2));
        const int end = t.indexOf(u']');
        if (!begins(t, u"[") || end < 0) continue;
        const UnicodeString mark = lower(trim(UnicodeString(t, 1, end - 1)));
        if (!mark.isEmpty() && mark != u"x") continue;
        UnicodeString rest = trim(UnicodeString(t, end + 1));
        BriefingActionItem item{{}, {}, mark == u"x"};
        const auto take = [&](std::size_t count, const char* tag) {
            rest = dropFirst(rest, count);
            item.tag = tag;
        };
        if (begins(rest, u"\U0001F4BC")) {
            take(1, "WRK");
        } else if (begins(rest, u"\U0001F3E0")) {
            take(1, "PRSNL");
        }
        rest = trim(rest);
        UnicodeString upper(rest);
        upper.toUpper(icu::Locale::getRoot());
        if (begins(upper, u"WRK ")) {
            take(4, "WRK");
        } else if (begins(upper, u"PRSNL ")) {
            take(6, "PRSNL");
        }
        item.text = toUtf8(trim(rest));
        if (!item.text.empty()) result.push_back(item);
    }
    return result;
}

}  // namespace

PlainBriefing parsePlainly(std::string_view text) {
    PlainBriefing plain;
    Characters all = lines(fromUtf8(text));
    plain.document.title = "Morning Briefing";
    for (std::size_t i = 0; i < all.size(); ++i) {
        UnicodeString t = trim(all[i]);
        if (t.isEmpty()) continue;
        if (begins(t, u"#")) {
            while (begins(t, u"#"))
                t = dropFirst(t, 1);
            plain.document.title = toUtf8(trim(t));
            all.erase(all.begin() + static_cast<std::ptrdiff_t>(i));
        }
        break;
    }
    const UnicodeString markdown = trim(joined(all, u"\n"), isSpaceOrNewline);
    plain.document.markdown = toUtf8(markdown);
    plain.sections = plainSections(markdown);
    plain.actionItems = plainActionItems(markdown);
    return plain;
}

PlainBriefing parseAsTheProgram(std::string_view text) {
    PlainBriefing result;
    result.document = briefing::splitDocument(text);
    for (const auto& section : briefing::sections(result.document.markdown)) {
        PlainSection plain{section.id, section.title, section.intro, {}};
        for (const auto& item : section.items) {
            plain.items.push_back({std::string(item.id()), std::string(item.markdown()), item.suggestedTodoText()});
        }
        result.sections.push_back(std::move(plain));
    }
    result.actionItems = briefing::actionItems(result.document.markdown);
    return result;
}

}  // namespace sunpane::testing
