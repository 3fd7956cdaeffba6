#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "linux/scripts/ScriptObject.h"

/// A script as a tree. A variable is known by its slot, its place in the order in which the script sets variables.
namespace sunpane::scripts {

struct Expression;
using ExpressionPointer = std::unique_ptr<Expression>;

struct Literal {
    Value value;
};
struct Variable {
    std::size_t slot;
};
/// `term of owner`; without an owner, of what the enclosing `tell` addresses.
struct Property {
    Term term;
    ExpressionPointer owner;
};
/// `a & b & c`: texts and integers as one text. At least two parts.
struct Join {
    std::vector<ExpressionPointer> parts;
};
/// `a + b + c`: at least two parts.
struct Sum {
    std::vector<ExpressionPointer> parts;
};
/// `left is right`
struct Comparison {
    ExpressionPointer left;
    ExpressionPointer right;
};
/// `operand as text`
struct AsText {
    ExpressionPointer operand;
};
/// `execute target javascript source`
struct ExecuteJavaScript {
    ExpressionPointer target;
    ExpressionPointer source;
};

struct Expression {
    std::variant<Literal, Variable, Property, Join, Sum, Comparison, AsText, ExecuteJavaScript> node;
};

struct Statement;
using Block = std::vector<Statement>;

/// `tell application "name"`
struct Tell {
    std::string application;
    Block body;
};
/// `repeat with slot in list`
struct Repeat {
    std::size_t slot;
    ExpressionPointer list;
    Block body;
};
struct If {
    ExpressionPointer condition;
    Block body;
};
struct SetVariable {
    std::size_t slot;
    ExpressionPointer value;
};
struct SetProperty {
    Term term;
    ExpressionPointer owner;
    ExpressionPointer value;
};
/// `set volume with output muted`, or `without`
struct SetMuted {
    bool muted;
};
struct Return {
    ExpressionPointer value;
};
struct Perform {
    Verb verb;
};
/// An expression alone on its line; what it amounts to is the script's result unless something follows.
struct Evaluate {
    ExpressionPointer value;
};

struct Statement {
    std::variant<Tell, Repeat, If, SetVariable, SetProperty, SetMuted, Return, Perform, Evaluate> node;
};

struct Script {
    Block body;
    std::size_t variableCount = 0;
};

}  // namespace sunpane::scripts
