#include "console/arguments.h"

#include <vorn/runtime.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "console/problems.h"
#include "console/scalars.h"
#include "console/text.h"

namespace vorn::console {

namespace {

constexpr std::size_t kShownInMessages = 40;

std::string shown(const Value& value) {
  if (value.kind() == Value::Kind::Nothing) return "nothing";
  return shortDisplay(value, kShownInMessages);
}

[[noreturn]] void refuse(const std::string& purpose, const char* expected, const Value& value) {
  throw Refusal(purpose + " must be " + expected + ", not " + shown(value));
}

std::optional<Number> numberOf(const Value& value) {
  return value.isObject() ? readNumber(value.handle()) : std::nullopt;
}

bool isList(void* handle) {
  const Family family = familyOf(handle);
  return family == Family::List || family == Family::ImmutableList;
}

[[noreturn]] void refuseCount(const NativeRow& row, std::size_t given) {
  const std::string wanted = signatureText(row);
  const std::size_t shownCount = given - std::min<std::size_t>(given, row.hasReceiver() ? 1 : 0);
  throw Refusal(std::string(row.method) + (wanted.empty() ? " takes no arguments" : " takes (" + wanted + ")") +
                ", not " + counted(shownCount, "argument"));
}

// What the raw elements of a list or array are; null when they are none.
const ScalarType* rawElementType(void* owner) {
  vorn_list_storage_info info = {};
  if (vorn_list_get_storage(owner, &info) != 0) return scalarType(info.primitive_type);
  return scalarType(elementTypeText(owner));
}

// A buffer that is to be written shows zeros until it is, whatever the memory held.
Value bufferValue(const NativeRow& row, const RawResult& result, const PassedArguments& passed,
                  std::span<const Value> values, std::uint64_t callsBefore) {
  const bool creates = !row.hasReceiver();
  void* owner = creates ? passed.stored() : values.front().handle();
  if (result.pointer == nullptr || owner == nullptr) return Value::object(nullptr);
  Value::Raw raw;
  raw.data = result.pointer;
  raw.type = row.result == Slot::Longs     ? scalarType("Long")
             : row.result == Slot::Doubles ? scalarType("Double")
                                           : rawElementType(owner);
  if (raw.type == nullptr) return Value::object(nullptr);
  raw.callsBefore = callsBefore;
  const bool written = creates || row.method.starts_with("prepare");
  raw.count = written ? passed.count() : static_cast<std::int64_t>(sizeOf(owner));
  if (written) std::memset(raw.data, 0, static_cast<std::size_t>(raw.count) * raw.type->width);
  return Value::buffer(owner, raw);
}

}  // namespace

long long integerOf(const Value& value, const std::string& purpose) {
  const std::optional<Number> number = numberOf(value);
  const bool integer =
      number && (number->type->family == ScalarFamily::Integer || number->type->family == ScalarFamily::Character);
  if (!integer) refuse(purpose, "an integer", value);
  // The natives take the bits of an unsigned 64-bit integer as they are.
  return static_cast<long long>(number->integer);
}

PassedArguments::PassedArguments(const NativeRow& row, std::span<const Value> values) : row_(row) {
  const std::vector<ArgumentName> names = argumentNames(row);
  if (row.variadic) {
    if (values.size() > kMostVariadic) {
      throw Refusal(std::string(row.method) + " takes at most " + std::to_string(kMostVariadic) + " values here");
    }
    raw_.resize(values.size() + 1);
    raw_[0].integer = static_cast<long long>(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
      RawArgument& raw = raw_[i + 1];
      if (row.slots[1] == Slot::Handle && values[i].isObject()) {
        raw.handle = values[i].handle();
      } else {
        raw.integer = integerOf(values[i], "a value of " + std::string(row.method));
      }
    }
    return;
  }
  raw_.resize(row.slots.size());
  std::size_t used = 0;
  for (std::size_t i = 0; i < row.slots.size(); ++i) {
    if (row.slots[i] == Slot::Out) {
      raw_[i].out = stored_.out();
    } else if (used < values.size()) {
      pass(i, values[used++], names[i]);
    } else if (!names[i].defaultText.empty()) {
      raw_[i].integer = static_cast<long long>(*parseInteger(names[i].defaultText));
    } else {
      refuseCount(row, values.size());
    }
  }
  if (used != values.size()) refuseCount(row, values.size());
}

void PassedArguments::pass(std::size_t slot, const Value& value, const ArgumentName& argument) {
  const std::string name = std::string(row_.method) + "'s " + std::string(argument.name);
  RawArgument& raw = raw_[slot];
  switch (row_.slots[slot]) {
    case Slot::Handle:
      if (!value.isObject()) refuse(name, "a value of the language", value);
      if (argument.mustBeList && !value.isNull() && !isList(value.handle())) refuse(name, "a list", value);
      raw.handle = value.handle();
      return;
    case Slot::Integer:
      raw.integer = integerOf(value, name);
      return;
    case Slot::Floating: {
      const std::optional<Number> number = numberOf(value);
      if (!number || number->type->family == ScalarFamily::Boolean) refuse(name, "a number", value);
      raw.floating = number->floating;
      return;
    }
    case Slot::Boolean: {
      const std::optional<Number> number = numberOf(value);
      if (!number || number->type->family != ScalarFamily::Boolean) refuse(name, "true or false", value);
      raw.boolean = number->integer != 0;
      return;
    }
    case Slot::Text:
      raw.text = value.isObject() && !value.isNull() ? vorn_string_text(value.handle()) : nullptr;
      if (raw.text == nullptr && !value.isNull()) refuse(name, "a text or null", value);
      return;
    case Slot::Record:
      if (value.kind() != Value::Kind::Record && !value.isNull()) refuse(name, "what dataHandle gives", value);
      raw.record = value.data();
      return;
    default:
      throw Refusal(name + " cannot be passed");
  }
}

long long PassedArguments::count() const {
  const std::vector<ArgumentName> names = argumentNames(row_);
  const auto found = std::ranges::find(names, "count", &ArgumentName::name);
  if (found == names.end()) return 0;
  return std::max(raw_[static_cast<std::size_t>(found - names.begin())].integer, 0LL);
}

Value resultValue(const NativeRow& row, const RawResult& result, const PassedArguments& passed,
                  std::span<const Value> values, std::uint64_t callsBefore) {
  const bool raw = row.gives == Gives::Raw || row.result == Slot::Longs || row.result == Slot::Doubles;
  if (raw) return bufferValue(row, result, passed, values, callsBefore);
  switch (row.result) {
    case Slot::Handle:
      return Value::object(result.pointer);
    case Slot::Integer:
      return newObject(row.gives == Gives::Long ? vorn_box_long(result.integer) : boxCount(result.integer));
    case Slot::Floating:
      return newObject(vorn_box_double(result.floating));
    case Slot::Boolean: {
      void* answer = vorn_box_boolean(result.boolean);
      if (std::ranges::count(row.slots, Slot::Out) == 0) return Value::object(answer);
      const std::array<void*, 2> items = {answer, passed.stored()};
      return newObject(vorn_tuple_new(nullptr, items.data(), items.size()));
    }
    case Slot::Record:
      if (result.record == nullptr) return Value::object(nullptr);
      return Value::record(values.front().handle(), result.record);
    default:
      return {};
  }
}

}  // namespace vorn::console
