#include "console/construction.h"

#include <vorn/collections/array.h>
#include <vorn/runtime.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "console/arguments.h"
#include "console/functions.h"
#include "console/problems.h"
#include "console/scalars.h"
#include "console/text.h"
#include "console/user_classes.h"

namespace vorn::console {

namespace {

constexpr std::string_view kCollections[] = {
    "ArrayList", "ArrayListSync", "LinkedList",  "LinkedListSync", "ImmutableList", "Array",   "ArraySync",
    "Tuple",     "Map",           "HashMapSync", "SortedMap",      "SortedMapSync", "HashSet", "HashSetSync"};
constexpr std::string_view kTexts[] = {"String", "Text"};

Value newOfType(const std::string& type) {
  void* handle = vorn_object_new(type.c_str());
  if (handle == nullptr) throw Refusal("there is no type " + type + ", or no memory for it");
  return Value::object(handle);
}

void requireCount(const Expression& call, std::span<const Value> arguments, std::size_t most, const char* what) {
  if (arguments.size() <= most) return;
  throw Refusal(call.type + " takes " + what + ", not " + counted(arguments.size(), "argument"));
}

Value scalar(const ScalarType& type, std::span<const Value> arguments) {
  const std::string name(type.name);
  if (arguments.size() != 1 || !arguments[0].isObject()) throw Refusal(name + " takes one value");
  if (const std::optional<Number> number = readNumber(arguments[0].handle())) {
    return newObject(boxNumber(type, *number));
  }
  throw Refusal(name + " is made from a number, a character or a Boolean, not from " + shortDisplay(arguments[0], 40));
}

Value text(std::string_view type, std::span<const Value> arguments) {
  if (arguments.size() != 1 || !arguments[0].isObject()) throw Refusal(std::string(type) + " takes one value");
  void* source = arguments[0].handle();
  if (familyOf(source) == Family::Array) {
    const std::string elements = elementTypeText(source);
    Value result =
        Value::object(elements == "CodeUnit" ? Vorn_stringFromCodeUnitArray(source) : Vorn_stringFromCharArray(source));
    throwPendingErrors();
    return result;
  }
  const char* given = source != nullptr ? vorn_string_text(source) : nullptr;
  if (given == nullptr) throw Refusal(std::string(type) + " is made from a text or an array of characters");
  const std::string copy = given;
  return newObject(type == "String" ? vorn_string_new(copy.data(), copy.size()) : vorn_text_new(copy.c_str()));
}

Value collection(Session& session, const Expression& call, std::span<const Value> arguments) {
  Value object = newOfType(call.type);
  const auto construct = [&](std::string_view className, std::string_view native) {
    const std::array<Value, 2> passed = {object, arguments[0]};
    session.call(className, native, passed);
    return object;
  };
  switch (familyOf(object.handle())) {
    case Family::Array: {
      requireCount(call, arguments, 1, "a size or an ordered collection");
      if (arguments.empty()) throw Refusal(call.type + " takes a size or an ordered collection");
      const bool size = arguments[0].isObject() && readNumber(arguments[0].handle()).has_value();
      return construct("Array", size ? "ctor" : "copyCtor");
    }
    case Family::ImmutableList:
      requireCount(call, arguments, 1, "a list");
      return arguments.empty() ? object : construct("ImmutableList", "ctor");
    case Family::Tuple:
      requireCount(call, arguments, 1, "a list of its items");
      return arguments.empty() ? object : construct("Tuple", "ctor");
    default:
      break;
  }
  if (!arguments.empty()) {
    throw Refusal(call.type + "() takes no arguments; fill it with addAll, put or add");
  }
  return object;
}

Value userObject(const UserClass& type, std::span<const Value> arguments) {
  requireObjects(arguments);
  if (arguments.size() != type.fields.size()) {
    std::string fields;
    for (const std::string& field : type.fields) fields += (fields.empty() ? "" : ", ") + field;
    throw Refusal(type.name + " takes (" + fields + "), not " + counted(arguments.size(), "argument"));
  }
  return newUserObject(type, arguments);
}

// The type name that all the values share, when it is that of a primitive type; else null.
const ScalarType* commonType(std::span<const Value> values) {
  const ScalarType* common = nullptr;
  for (const Value& value : values) {
    const std::optional<Number> number = readNumber(value.handle());
    if (!number || (common != nullptr && number->type != common)) return nullptr;
    common = number->type;
  }
  return common;
}

Value added(Session& session, const Value& list, std::span<const Value> elements) {
  for (const Value& element : elements) session.call("ArrayList", "add", std::array<Value, 2>{list, element});
  return list;
}

}  // namespace

void requireObjects(std::span<const Value> values) {
  for (const Value& value : values) {
    if (value.kind() == Value::Kind::Nothing) throw Refusal("that native gives no value");
    if (!value.isObject()) throw Refusal(displayText(value) + " is no value of the language");
  }
}

Value listLiteral(Session& session, std::span<const Value> elements, bool allInts) {
  requireObjects(elements);
  const std::size_t count = elements.size();
  if (count == 0) return session.call("ArrayList", "literal0", {});
  // Compilers unroll the common counts.
  const bool fixed = count == 1 || count == 5 || count == 10 || (allInts && count == 20);
  const std::string name = std::string(allInts ? "intLiteral" : "literal") + (fixed ? std::to_string(count) : "");
  if (count <= kMostVariadic) return session.call("ArrayList", name, elements);
  // More than a call can be given here: what the literal would come to, element by element.
  if (const ScalarType* type = commonType(elements)) {
    const std::array<Value, 1> typeName = {newObject(vorn_string_new(type->name.data(), type->name.size()))};
    return added(session, session.call("ArrayList", "primitiveLiteral0", typeName), elements);
  }
  return added(session, session.call("ArrayList", "literal0", {}), elements);
}

Value mapLiteral(Session& session, std::span<const Value> keysAndValues) {
  requireObjects(keysAndValues);
  Value map = newOfType("Map");
  for (std::size_t i = 0; i + 1 < keysAndValues.size(); i += 2) {
    session.call("Map", "put", std::array<Value, 3>{map, keysAndValues[i], keysAndValues[i + 1]});
  }
  return map;
}

Value setLiteral(Session& session, std::span<const Value> elements) {
  requireObjects(elements);
  Value set = newOfType("HashSet");
  for (const Value& element : elements) session.call("HashSet", "add", std::array<Value, 2>{set, element});
  return set;
}

Value tupleLiteral(Session& session, std::span<const Value> items) {
  const Value packed = listLiteral(session, items, false);
  Value tuple = newOfType("Tuple");
  session.call("Tuple", "ctor", std::array<Value, 2>{tuple, packed});
  return tuple;
}

bool isReservedName(std::string_view name) { return std::ranges::count(reservedNames(), name) != 0; }

std::vector<std::string_view> reservedNames() {
  std::vector<std::string_view> names(std::begin(kCollections), std::end(kCollections));
  names.insert(names.end(), std::begin(kTexts), std::end(kTexts));
  for (const ScalarType& type : scalarTypes()) names.push_back(type.name);
  for (const ConsoleFunction& function : consoleFunctions()) names.push_back(function.name);
  for (const std::string_view word : {"null", "true", "false", "in", "not", "class", "NaN", "Infinity"}) {
    names.push_back(word);
  }
  return names;
}

Value construct(Session& session, const Expression& call, std::span<const Value> arguments) {
  const std::string_view name = call.text;
  if (std::ranges::count(kCollections, name) != 0) return collection(session, call, arguments);
  if (call.type != call.text) throw Refusal(call.text + " takes no type arguments");
  if (const ScalarType* type = scalarType(name)) return scalar(*type, arguments);
  if (std::ranges::count(kTexts, name) != 0) return text(name, arguments);
  if (const UserClass* type = findUserClass(name)) return userObject(*type, arguments);
  if (const ConsoleFunction* function = findFunction(name)) return function->call(session, arguments);
  std::vector<std::string_view> known = reservedNames();
  for (const UserClass* type : userClasses()) known.push_back(type->name);
  throw Refusal("there is no class or function " + call.text + suggestion(name, known));
}

}  // namespace vorn::console
