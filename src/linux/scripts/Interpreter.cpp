#include "linux/scripts/Interpreter.h"

#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "linux/scripts/Parser.h"

namespace sunpane::scripts {
namespace {

/// Thrown within this file only: the script fails here.
struct Failure {};

template <class... Visitors>
struct Overloaded : Visitors... {
    using Visitors::operator()...;
};
template <class... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

std::string asText(Value value) {
    if (auto* text = std::get_if<std::string>(&value)) return std::move(*text);
    if (const auto* integer = std::get_if<std::int64_t>(&value)) return std::to_string(*integer);
    throw Failure();
}

template <class T>
T expect(std::optional<Value> value) {
    if (!value || !std::holds_alternative<T>(*value)) throw Failure();
    return std::get<T>(std::move(*value));
}

class Run {
public:
    Run(const Script& script, Host& host) : host_(host), variables_(script.variableCount) {
        targets_.push_back(host.additions());
    }

    Value result(const Block& body) {
        run(body);
        keepResult();
        return std::move(result_);
    }

private:
    /// False once the script has returned.
    bool run(const Block& block) {
        for (const auto& statement : block) {
            step();
            const bool goesOn = std::visit([this](const auto& node) { return execute(node); }, statement.node);
            if (!goesOn) return false;
        }
        return true;
    }

    bool execute(const Tell& tell) {
        auto application = host_.application(tell.application);
        if (!application) throw Failure();
        targets_.push_back(std::move(application));
        const bool goesOn = run(tell.body);
        targets_.pop_back();
        return goesOn;
    }

    bool execute(const Repeat& repeat) {
        const auto list = expect<ObjectList>(evaluate(repeat.list));
        for (const auto& object : list) {
            step();
            if (resultSlot_ == repeat.slot) keepResult();
            variables_[repeat.slot] = object;
            if (!run(repeat.body)) return false;
        }
        return true;
    }

    bool execute(const If& branch) { return !expect<bool>(evaluate(branch.condition)) || run(branch.body); }

    bool execute(const SetVariable& set) {
        const auto* join = std::get_if<Join>(&set.value->node);
        if (join != nullptr && isVariable(join->parts.front(), set.slot)) {
            appendTo(set.slot, *join);
        } else {
            variables_[set.slot] = evaluate(set.value);
        }
        // The text may be long, and is mostly not the result in the end.
        resultSlot_ = set.slot;
        return true;
    }

    bool execute(const SetProperty& set) {
        const auto owner = expect<ObjectPointer>(evaluate(set.owner));
        if (!owner->set(set.term, evaluate(set.value))) throw Failure();
        return true;
    }

    bool execute(const SetMuted& set) {
        const auto settings = expect<ObjectPointer>(host_.additions()->get(Term::volumeSettings));
        if (!settings->set(Term::outputMuted, set.muted)) throw Failure();
        return true;
    }

    bool execute(const Return& statement) {
        setResult(evaluate(statement.value));
        return false;
    }

    bool execute(const Perform& perform) {
        if (!targets_.back()->perform(perform.verb)) throw Failure();
        setResult(Value());
        return true;
    }

    bool execute(const Evaluate& statement) {
        setResult(evaluate(statement.value));
        return true;
    }

    Value evaluate(const ExpressionPointer& expression) {
        step();
        return std::visit([this](const auto& node) { return value(node); }, expression->node);
    }

    Value value(const Literal& literal) { return literal.value; }

    Value value(const Variable& variable) {
        // A variable that was set in a branch not taken has no value.
        if (std::holds_alternative<std::monostate>(variables_[variable.slot])) throw Failure();
        return variables_[variable.slot];
    }

    Value value(const Property& property) {
        const auto owner = property.owner ? expect<ObjectPointer>(evaluate(property.owner)) : targets_.back();
        auto result = owner->get(property.term);
        if (!result) throw Failure();
        return std::move(*result);
    }

    Value value(const Join& join) {
        // Only a text joins what follows to itself; anything else would make a list, which the language has not.
        auto text = expect<std::string>(evaluate(join.parts.front()));
        appendRest(join, text);
        return text;
    }

    static bool isVariable(const ExpressionPointer& expression, std::size_t slot) {
        const auto* variable = std::get_if<Variable>(&expression->node);
        return variable != nullptr && variable->slot == slot;
    }

    /// `set x to x & …` without a copy of what is there, so that a text that grows line by line takes linear time.
    void appendTo(std::size_t slot, const Join& join) {
        step();
        // What follows may name the variable too, and means it as it was.
        std::string rest;
        if (!std::holds_alternative<std::string>(variables_[slot])) throw Failure();
        appendRest(join, rest);
        auto& text = std::get<std::string>(variables_[slot]);
        text += rest;
        if (text.size() > maximumTextBytes) throw Failure();
    }

    void appendRest(const Join& join, std::string& text) {
        for (auto part = join.parts.begin() + 1; part != join.parts.end(); ++part) {
            if (const auto* variable = std::get_if<Variable>(&(*part)->node);
                variable != nullptr && std::holds_alternative<std::string>(variables_[variable->slot])) {
                step();
                text += std::get<std::string>(variables_[variable->slot]);
            } else {
                text += asText(evaluate(*part));
            }
            if (text.size() > maximumTextBytes) throw Failure();
        }
    }

    Value value(const Sum& sum) {
        std::int64_t total = 0;
        for (const auto& part : sum.parts) {
            if (__builtin_add_overflow(total, expect<std::int64_t>(evaluate(part)), &total)) throw Failure();
        }
        return total;
    }

    Value value(const Comparison& comparison) {
        const auto left = evaluate(comparison.left);
        return left == evaluate(comparison.right);
    }

    Value value(const AsText& cast) { return asText(evaluate(cast.operand)); }

    Value value(const ExecuteJavaScript& execution) {
        const auto target = expect<ObjectPointer>(evaluate(execution.target));
        auto result = target->executeJavaScript(expect<std::string>(evaluate(execution.source)));
        if (!result) throw Failure();
        return std::move(*result);
    }

    void step() {
        if (++steps_ > maximumSteps || !host_.mayGoOn()) throw Failure();
    }

    void setResult(Value value) {
        result_ = std::move(value);
        resultSlot_.reset();
    }

    void keepResult() {
        if (resultSlot_) setResult(variables_[*resultSlot_]);
    }

    Host& host_;
    /// What the enclosing `tell`s address, the innermost last; never empty.
    std::vector<ObjectPointer> targets_;
    std::vector<Value> variables_;
    Value result_;
    /// The variable whose value is the result, in place of `result_`.
    std::optional<std::size_t> resultSlot_;
    int steps_ = 0;
};

}  // namespace

std::optional<Value> runScript(std::string_view source, Host& host) {
    const auto script = parseScript(source);
    if (!script) return std::nullopt;
    try {
        return Run(*script, host).result(script->body);
    } catch (const Failure&) {
        return std::nullopt;
    }
}

}  // namespace sunpane::scripts
