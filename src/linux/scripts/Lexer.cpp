#include "linux/scripts/Lexer.h"

#include <charconv>
#include <system_error>
#include <utility>

namespace sunpane::scripts {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

class Lexer {
public:
    explicit Lexer(std::string_view source) : source_(source) {}

    std::optional<std::vector<Token>> run() {
        while (position_ < source_.size()) {
            if (!takeToken()) return std::nullopt;
        }
        add(Token::Kind::lineEnd, {});
        return std::move(tokens_);
    }

private:
    bool takeToken() {
        const char c = source_[position_];
        if (c == ' ' || c == '\t') {
            ++position_;
            return true;
        }
        if (c == '\n' || c == '\r') {
            ++position_;
            add(Token::Kind::lineEnd, {});
            return true;
        }
        if (c == '(' || c == ')' || c == '&' || c == '+') {
            ++position_;
            add(Token::Kind::symbol, std::string(1, c));
            return true;
        }
        if (c == '"') return takeText();
        if (isDigit(c)) return takeInteger();
        if (isLetter(c)) return takeWord();
        return false;
    }

    bool takeText() {
        std::string text;
        for (++position_; position_ < source_.size(); ++position_) {
            char c = source_[position_];
            if (c == '"') {
                ++position_;
                add(Token::Kind::text, std::move(text));
                return true;
            }
            if (c == '\n' || c == '\r') return false;
            if (c == '\\') {
                if (++position_ == source_.size()) return false;
                c = source_[position_];
                if (c == 'n') {
                    c = '\n';
                } else if (c != '"' && c != '\\') {
                    return false;
                }
            }
            text += c;
        }
        return false;
    }

    bool takeInteger() {
        Token token{Token::Kind::integer, {}, 0};
        const auto [end, error] =
            std::from_chars(source_.data() + position_, source_.data() + source_.size(), token.integer);
        position_ = static_cast<std::size_t>(end - source_.data());
        if (error != std::errc()) return false;
        if (position_ < source_.size() && isLetter(source_[position_])) return false;
        tokens_.push_back(std::move(token));
        return true;
    }

    bool takeWord() {
        std::string word;
        for (; position_ < source_.size(); ++position_) {
            const char c = source_[position_];
            if (!isLetter(c) && !isDigit(c)) break;
            word += lowered(c);
        }
        add(Token::Kind::word, std::move(word));
        return true;
    }

    void add(Token::Kind kind, std::string text) { tokens_.push_back({kind, std::move(text), 0}); }

    std::string_view source_;
    std::size_t position_ = 0;
    std::vector<Token> tokens_;
};

}  // namespace

std::optional<std::vector<Token>> tokenize(std::string_view source) {
    return Lexer(source).run();
}

}  // namespace sunpane::scripts
