// The form of what a person types, once it is understood.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vorn::console {

struct Expression;
using ExpressionPointer = std::unique_ptr<Expression>;

enum class ExpressionKind : std::uint8_t {
  Null,
  Boolean,    // text: "true" or "false"
  Integer,    // text: digits, with a sign; type: what the suffix says
  Floating,   // text: the number, with a sign, or NaN or Infinity; type: "Float" or "Double"
  Character,  // text: the character
  Text,       // text: the text
  List,       // parts: the elements
  Tuple,      // parts: the items
  Set,        // parts: the elements
  Map,        // parts: key, value, key, value, ...
  Name,       // text: the variable
  Call,       // text: the class or function; type: the same with its type arguments; parts: the arguments
  Method,     // text: the method; parts: the receiver and the arguments
  Field,      // text: the field; parts: the object
  Index,      // parts: the collection and the index
  Slice,      // parts: the collection, start, stop and step, null where omitted
  In,         // parts: the value and the collection
  NotIn,
  Equal,  // parts: both sides
  NotEqual,
  Add,    // parts: both sides
  Times,  // parts: both sides
};

// One node. Every kind uses the same four fields as the list above says, which keeps the parser and whoever walks the
// tree small.
struct Expression {
  ExpressionKind kind = ExpressionKind::Null;
  std::size_t offset = 0;  // in the statement's text
  std::size_t depth = 1;   // of the tree below and with this node
  std::string text;
  std::string type;
  std::vector<ExpressionPointer> parts;
};

// What the hooks of a user class do. Each is one of a few forms, named as they are written.
struct HookForms {
  std::string equals;  // "" for none: identity
  std::string order;
  std::string hash;
  std::string text;

  bool operator==(const HookForms&) const = default;
};

struct ClassDeclaration {
  std::string name;
  std::string base;  // "" for none
  std::vector<std::string> fields;
  HookForms hooks;
};

enum class StatementKind : std::uint8_t {
  Empty,
  Expression,  // value
  Assignment,  // name, value
  Store,       // target (an Index, Slice or Field), value
  Class,       // declaration
  Command,     // name: the command's, text: what follows it
};

struct Statement {
  StatementKind kind = StatementKind::Empty;
  std::string name;
  std::string text;
  ExpressionPointer target;
  ExpressionPointer value;
  ClassDeclaration declaration;
};

}  // namespace vorn::console
