#include "console/evaluator.h"

#include <vorn/runtime.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "console/construction.h"
#include "console/operators.h"
#include "console/problems.h"
#include "console/scalars.h"
#include "console/text.h"
#include "console/user_classes.h"

namespace vorn::console {

namespace {

std::vector<Value> evaluateAll(Session& session, const std::vector<ExpressionPointer>& parts, std::size_t from = 0) {
  std::vector<Value> values;
  values.reserve(parts.size() - from);
  for (std::size_t i = from; i < parts.size(); ++i) values.push_back(evaluate(session, *parts[i]));
  return values;
}

Value integerLiteral(const Expression& expression) {
  const ScalarType& type = *scalarType(expression.type);
  const std::optional<WideInteger> value = parseInteger(expression.text);
  if (!value || *value < type.lowest || *value > type.highest) {
    std::string hint;
    const ScalarType& widest = *scalarType("Long");
    if (type.name == "Int" && value && *value >= widest.lowest && *value <= widest.highest) {
      hint = "; write " + expression.text + "L for a Long";
    }
    throw Refusal(expression.text + " does not fit " + expression.type + hint);
  }
  return newObject(boxInteger(type, *value));
}

Value floatingLiteral(const Expression& expression) {
  double value = 0;
  if (expression.text == "NaN") {
    value = std::numeric_limits<double>::quiet_NaN();
  } else if (expression.text.ends_with("Infinity")) {
    value = std::numeric_limits<double>::infinity() * (expression.text[0] == '-' ? -1 : 1);
  } else if (expression.type == "Float") {
    value = std::strtof(expression.text.c_str(), nullptr);
  } else {
    value = std::strtod(expression.text.c_str(), nullptr);
  }
  return newObject(vorn_box_floating(expression.type.c_str(), value));
}

// The code point of a text of one character, which the scanner has checked.
std::uint32_t codePoint(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint32_t>(static_cast<unsigned char>(text[i])); };
  if (text.size() == 1) return byte(0);
  std::uint32_t value = byte(0) & (0xFFU >> (text.size() + 1));
  for (std::size_t i = 1; i < text.size(); ++i) value = value << 6 | (byte(i) & 0x3F);
  return value;
}

Value variable(const Session& session, const Expression& expression) {
  if (const Value* value = session.find(expression.text)) return *value;
  if (isReservedName(expression.text) || findUserClass(expression.text) != nullptr) {
    throw Refusal(expression.text + " is no value by itself; to make one, write " + expression.text + "(...)");
  }
  std::vector<std::string_view> known = reservedNames();
  for (const auto& [name, value] : session.variables()) known.push_back(name);
  throw Refusal("there is no variable " + expression.text + suggestion(expression.text, known));
}

[[noreturn]] void refuseMethod(Family family, std::string_view owner, std::string_view method) {
  const std::vector<std::string_view> names = methodNames(family);
  throw Refusal(std::string(owner) + " has no native " + std::string(method) + suggestion(method, names));
}

// ArrayList.add(null, 1): a native by its class, with the receiver as the first argument.
Value classCall(Session& session, const Expression& expression) {
  const std::string& owner = expression.parts[0]->text;
  const NativeRow* row = findNative(owner, expression.text);
  if (row == nullptr) {
    std::vector<std::string_view> names;
    for (const NativeRow* each : allNatives()) {
      if (each->className == owner) names.push_back(each->method);
    }
    throw Refusal(owner + " has no native " + expression.text + suggestion(expression.text, names));
  }
  const std::vector<Value> arguments = evaluateAll(session, expression.parts, 1);
  if (row->hasReceiver() && row->slots[0] == Slot::Handle && !arguments.empty() && !arguments[0].isNull()) {
    const bool serves = arguments[0].isObject() && findMethod(familyOf(arguments[0].handle()), row->method) == row;
    if (!serves) throw Refusal(owner + "." + expression.text + " does not serve " + shortDisplay(arguments[0], 40));
  }
  return session.call(*row, arguments);
}

// record.addIntToData(5): a native on what dataHandle gives.
const NativeRow* recordNative(std::string_view method) {
  const NativeRow* row = findNative("ArrayList", method);
  return row != nullptr && !row->slots.empty() && row->slots[0] == Slot::Record ? row : nullptr;
}

Value methodCall(Session& session, const Expression& expression) {
  const Expression& owner = *expression.parts[0];
  const bool byClass = owner.kind == ExpressionKind::Name && session.find(owner.text) == nullptr;
  if (byClass && isNativeClass(owner.text)) return classCall(session, expression);
  const std::vector<Value> arguments = evaluateAll(session, expression.parts);
  const Value& receiver = arguments[0];
  if (receiver.kind() == Value::Kind::Record) {
    if (const NativeRow* row = recordNative(expression.text)) return session.call(*row, arguments);
    throw Refusal("a record has only addIntToData and getIntFromData");
  }
  if (receiver.isNull()) {
    throw Refusal("null alone does not say of which class it is; name it, as in ArrayList." + expression.text +
                  "(null, ...)");
  }
  if (!receiver.isObject()) throw Refusal("that is no value with methods");
  const Family family = familyOf(receiver.handle());
  const NativeRow* row = findMethod(family, expression.text);
  if (row == nullptr) refuseMethod(family, className(receiver.handle()), expression.text);
  return session.call(*row, arguments);
}

SliceBounds sliceBounds(Session& session, const Expression& expression) {
  const auto bound = [&](std::size_t part) {
    return expression.parts[part] != nullptr ? evaluate(session, *expression.parts[part]) : Value();
  };
  SliceBounds bounds;
  bounds.start = bound(1);
  bounds.stop = bound(2);
  bounds.step = bound(3);
  return bounds;
}

Value negation(const Value& boolean) {
  const std::optional<Number> number = readNumber(boolean.handle());
  return newObject(vorn_box_boolean(!number || number->integer == 0));
}

Value listOf(Session& session, const Expression& expression) {
  const bool allInts = std::ranges::all_of(expression.parts, [](const ExpressionPointer& part) {
    return part->kind == ExpressionKind::Integer && part->type == "Int";
  });
  return listLiteral(session, evaluateAll(session, expression.parts), allInts && !expression.parts.empty());
}

}  // namespace

Value evaluate(Session& session, const Expression& expression) {
  const auto part = [&](std::size_t i) { return evaluate(session, *expression.parts[i]); };
  switch (expression.kind) {
    case ExpressionKind::Null:
      return Value::object(nullptr);
    case ExpressionKind::Boolean:
      return newObject(vorn_box_boolean(expression.text == "true"));
    case ExpressionKind::Integer:
      return integerLiteral(expression);
    case ExpressionKind::Floating:
      return floatingLiteral(expression);
    case ExpressionKind::Character:
      return newObject(vorn_box_char(codePoint(expression.text)));
    case ExpressionKind::Text:
      return newObject(vorn_string_new(expression.text.data(), expression.text.size()));
    case ExpressionKind::List:
      return listOf(session, expression);
    case ExpressionKind::Tuple:
      return tupleLiteral(session, evaluateAll(session, expression.parts));
    case ExpressionKind::Set:
      return setLiteral(session, evaluateAll(session, expression.parts));
    case ExpressionKind::Map:
      return mapLiteral(session, evaluateAll(session, expression.parts));
    case ExpressionKind::Name:
      return variable(session, expression);
    case ExpressionKind::Call:
      return construct(session, expression, evaluateAll(session, expression.parts));
    case ExpressionKind::Method:
      return methodCall(session, expression);
    case ExpressionKind::Field:
      return readField(part(0), expression.text);
    case ExpressionKind::Index: {
      const Value collection = part(0);
      return readIndex(session, collection, part(1));
    }
    case ExpressionKind::Slice: {
      const Value collection = part(0);
      return readSlice(session, collection, sliceBounds(session, expression));
    }
    case ExpressionKind::In:
    case ExpressionKind::NotIn: {
      const Value value = part(0);
      const Value found = contains(session, part(1), value);
      return expression.kind == ExpressionKind::In ? found : negation(found);
    }
    case ExpressionKind::Equal:
    case ExpressionKind::NotEqual: {
      const Value left = part(0);
      return equal(session, left, part(1), expression.kind == ExpressionKind::NotEqual);
    }
    case ExpressionKind::Add: {
      const Value left = part(0);
      return concatenated(session, left, part(1));
    }
    case ExpressionKind::Times: {
      const Value left = part(0);
      return repeated(session, left, part(1));
    }
  }
  return {};
}

void store(Session& session, const Expression& target, const Value& value) {
  const Value object = evaluate(session, *target.parts[0]);
  switch (target.kind) {
    case ExpressionKind::Index:
      return storeIndex(session, object, evaluate(session, *target.parts[1]), value);
    case ExpressionKind::Slice:
      return storeSlice(session, object, sliceBounds(session, target), value);
    default:
      return storeField(object, target.text, value);
  }
}

void assign(Session& session, std::string_view name, const Value& value) {
  if (isReservedName(name) || findUserClass(name) != nullptr) {
    throw Refusal(std::string(name) + " cannot be a variable: the name is taken");
  }
  if (value.kind() == Value::Kind::Nothing) throw Refusal("that native gives no value to keep in " + std::string(name));
  session.variables().insert_or_assign(std::string(name), value);
}

}  // namespace vorn::console
