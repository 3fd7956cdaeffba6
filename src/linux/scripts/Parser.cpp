#include "linux/scripts/Parser.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "linux/scripts/Lexer.h"

namespace sunpane::scripts {
namespace {

template <class Meaning>
struct Phrase {
    std::array<std::string_view, 3> words;
    Meaning meaning;
};

// No phrase begins with another phrase of its table, so the first that fits is the right one.
constexpr std::array<Phrase<Term>, 14> terms{{
    {{"player", "state"}, Term::playerState},
    {{"current", "track"}, Term::currentTrack},
    {{"name"}, Term::name},
    {{"artist"}, Term::artist},
    {{"artwork", "url"}, Term::artworkUrl},
    {{"windows"}, Term::windows},
    {{"tabs"}, Term::tabs},
    {{"active", "tab", "index"}, Term::activeTabIndex},
    {{"id"}, Term::id},
    {{"url"}, Term::url},
    {{"title"}, Term::title},
    {{"index"}, Term::index},
    {{"output", "muted"}, Term::outputMuted},
    {{"volume", "settings"}, Term::volumeSettings},
}};

constexpr std::array<Phrase<Verb>, 4> verbs{{
    {{"playpause"}, Verb::playPause},
    {{"next", "track"}, Verb::nextTrack},
    {{"previous", "track"}, Verb::previousTrack},
    {{"activate"}, Verb::activate},
}};

// What `player state` amounts to.
constexpr std::array<std::string_view, 3> states{"stopped", "playing", "paused"};

// Words that are neither phrases nor states, and which no variable can be called.
constexpr std::array<std::string_view, 21> keywords{
    "tell", "application", "to", "end",  "repeat", "with",   "in",      "set",        "if",      "then",  "return",
    "of",   "is",          "as", "text", "get",    "volume", "without", "javascript", "execute", "output"};

/// Thrown within this file only: the source is not a script.
struct NotAScript {};

class Parser {
public:
    explicit Parser(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

    Script run() {
        Script script;
        while (skipLineEnds(), !atEnd())
            script.body.push_back(statementLine());
        script.variableCount = variables_.size();
        return script;
    }

private:
    /// Counts how deep the parser's own calls are nested.
    class Level {
    public:
        explicit Level(Parser& parser) : parser_(parser) {
            if (parser_.depth_ == maximumNesting) throw NotAScript();
            ++parser_.depth_;
        }
        ~Level() { --parser_.depth_; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        Parser& parser_;
    };

    // Statements.

    Statement statementLine() {
        Statement statement = parseStatement();
        expectLineEnd();
        return statement;
    }

    Statement parseStatement() {
        const Level level(*this);
        if (acceptWords({"tell", "application"})) return {tell()};
        if (acceptWords({"repeat", "with"})) return {repeat()};
        if (acceptWord("if")) return {ifStatement()};
        if (acceptWord("return")) return {Return{expression()}};
        if (acceptWords({"set", "volume"})) return {setMuted()};
        if (acceptWord("set")) return set();
        if (const auto verb = acceptPhrase(verbs)) return {Perform{*verb}};
        return {Evaluate{expression()}};
    }

    Tell tell() {
        const Token& name = next();
        if (name.kind != Token::Kind::text) throw NotAScript();
        Tell result{name.text, {}};
        if (acceptWord("to")) {
            result.body.push_back(parseStatement());
        } else {
            result.body = block("tell");
        }
        return result;
    }

    Repeat repeat() {
        std::string name = newName();
        expectWord("in");
        auto list = expression();
        const std::size_t slot = slotFor(std::move(name));
        return {slot, std::move(list), block("repeat")};
    }

    If ifStatement() {
        If result{expression(), {}};
        expectWord("then");
        if (peek().kind == Token::Kind::lineEnd) {
            result.body = block("if");
        } else {
            result.body.push_back(parseStatement());
        }
        return result;
    }

    SetMuted setMuted() {
        const bool muted = acceptWord("with");
        if (!muted) expectWord("without");
        expectWord("output");
        expectWord("muted");
        return {muted};
    }

    Statement set() {
        if (const auto term = acceptPhrase(terms)) {
            expectWord("of");
            auto owner = primary();
            expectWord("to");
            return {SetProperty{*term, std::move(owner), expression()}};
        }
        std::string name = newName();
        expectWord("to");
        // The value is read before the name is known: a variable cannot be set from itself first.
        auto value = expression();
        return {SetVariable{slotFor(std::move(name)), std::move(value)}};
    }

    /// The lines up to `end kind`.
    Block block(std::string_view kind) {
        expectLineEnd();
        Block lines;
        while (skipLineEnds(), !acceptWord("end")) {
            if (atEnd()) throw NotAScript();
            lines.push_back(statementLine());
        }
        expectWord(kind);
        return lines;
    }

    // Expressions, from what binds loosest to what binds tightest.

    ExpressionPointer expression() {
        const Level level(*this);
        auto left = cast();
        if (!acceptWord("is")) return left;
        return make(Comparison{std::move(left), cast()});
    }

    ExpressionPointer cast() {
        auto operand = join();
        if (!acceptWord("as")) return operand;
        expectWord("text");
        return make(AsText{std::move(operand)});
    }

    ExpressionPointer join() {
        auto first = sum();
        if (!isSymbol('&')) return first;
        Join result;
        result.parts.push_back(std::move(first));
        while (acceptSymbol('&'))
            result.parts.push_back(sum());
        return make(std::move(result));
    }

    ExpressionPointer sum() {
        auto first = primary();
        if (!isSymbol('+')) return first;
        Sum result;
        result.parts.push_back(std::move(first));
        while (acceptSymbol('+'))
            result.parts.push_back(primary());
        return make(std::move(result));
    }

    ExpressionPointer primary() {
        const Level level(*this);
        if (acceptSymbol('(')) {
            auto inner = expression();
            if (!acceptSymbol(')')) throw NotAScript();
            return inner;
        }
        if (peek().kind == Token::Kind::text) return make(Literal{next().text});
        if (peek().kind == Token::Kind::integer) return make(Literal{next().integer});
        if (acceptWord("get")) return primary();
        if (acceptWord("execute")) {
            auto target = primary();
            expectWord("javascript");
            return make(ExecuteJavaScript{std::move(target), primary()});
        }
        if (const auto term = acceptPhrase(terms)) {
            return make(Property{*term, acceptWord("of") ? primary() : nullptr});
        }
        return word();
    }

    ExpressionPointer word() {
        const Token& token = next();
        if (token.kind != Token::Kind::word) throw NotAScript();
        if (std::find(states.begin(), states.end(), token.text) != states.end()) return make(Literal{token.text});
        const auto variable = std::find(variables_.begin(), variables_.end(), token.text);
        if (variable == variables_.end()) throw NotAScript();
        return make(Variable{static_cast<std::size_t>(variable - variables_.begin())});
    }

    template <class Node>
    static ExpressionPointer make(Node node) {
        return std::make_unique<Expression>(Expression{std::move(node)});
    }

    // Names.

    /// A word that a variable can be called.
    std::string newName() {
        if (acceptPhrase(terms) || acceptPhrase(verbs)) throw NotAScript();
        const Token& token = next();
        const auto isTaken = [&](const auto& words) {
            return std::find(words.begin(), words.end(), token.text) != words.end();
        };
        if (token.kind != Token::Kind::word || isTaken(keywords) || isTaken(states)) throw NotAScript();
        return token.text;
    }

    std::size_t slotFor(std::string name) {
        const auto known = std::find(variables_.begin(), variables_.end(), name);
        const auto slot = static_cast<std::size_t>(known - variables_.begin());
        if (known == variables_.end()) variables_.push_back(std::move(name));
        return slot;
    }

    // Tokens.

    const Token& peek() const {
        assert(position_ < tokens_.size());
        return tokens_[position_];
    }

    /// Stays on the last token, a line end, which nothing but `expectLineEnd` takes for granted.
    const Token& next() {
        const Token& token = peek();
        if (position_ + 1 < tokens_.size()) ++position_;
        return token;
    }

    bool atEnd() const { return position_ + 1 == tokens_.size(); }

    bool isWord(std::size_t position, std::string_view word) const {
        return position < tokens_.size() && tokens_[position].kind == Token::Kind::word &&
               tokens_[position].text == word;
    }

    bool isSymbol(char symbol) const {
        return peek().kind == Token::Kind::symbol && peek().text == std::string_view(&symbol, 1);
    }

    bool acceptSymbol(char symbol) {
        if (!isSymbol(symbol)) return false;
        next();
        return true;
    }

    bool acceptWords(std::initializer_list<std::string_view> words) {
        std::size_t position = position_;
        for (const auto word : words) {
            if (!isWord(position++, word)) return false;
        }
        position_ = position;
        return true;
    }

    bool acceptWord(std::string_view word) { return acceptWords({word}); }

    template <class Meaning, std::size_t count>
    std::optional<Meaning> acceptPhrase(const std::array<Phrase<Meaning>, count>& phrases) {
        for (const auto& phrase : phrases) {
            std::size_t position = position_;
            const bool fits = std::all_of(phrase.words.begin(), phrase.words.end(), [&](std::string_view word) {
                return word.empty() || isWord(position++, word);
            });
            if (!fits) continue;
            position_ = position;
            return phrase.meaning;
        }
        return std::nullopt;
    }

    void expectWord(std::string_view word) {
        if (!acceptWord(word)) throw NotAScript();
    }

    void expectLineEnd() {
        if (peek().kind != Token::Kind::lineEnd) throw NotAScript();
        next();
    }

    void skipLineEnds() {
        while (!atEnd() && peek().kind == Token::Kind::lineEnd)
            next();
    }

    std::vector<Token> tokens_;
    std::size_t position_ = 0;
    int depth_ = 0;
    std::vector<std::string> variables_;
};

}  // namespace

std::optional<Script> parseScript(std::string_view source) {
    if (source.size() > maximumSourceBytes) return std::nullopt;
    auto tokens = tokenize(source);
    if (!tokens) return std::nullopt;
    try {
        return Parser(std::move(*tokens)).run();
    } catch (const NotAScript&) {
        return std::nullopt;
    }
}

}  // namespace sunpane::scripts
