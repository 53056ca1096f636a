#include "fuzz/array_model.h"

#include <algorithm>
#include <cmath>

#include "collections/array/array_data.h"
#include "collections/array/array_validation.h"
#include "collections/core/port/object_layout.h"

namespace vorn::fuzz {

namespace {

ExpectedError nulInString() { return {"ValueException", "U+0000 cannot be stored in a String"}; }

void appendScalar(std::string& text, std::uint32_t scalar) {
  const auto add = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
  if (scalar < 0x80) return add(scalar);
  if (scalar < 0x800) {
    add(0xC0 + scalar / 64);
  } else if (scalar < 0x10000) {
    add(0xE0 + scalar / 4096);
    add(0x80 + scalar / 64 % 64);
  } else {
    add(0xF0 + scalar / 262144);
    add(0x80 + scalar / 4096 % 64);
    add(0x80 + scalar / 64 % 64);
  }
  add(0x80 + scalar % 64);
}

}  // namespace

ExpectedError invalidElement() { return {"TypeError", "Invalid array element type"}; }

double numericOf(const Value& value) {
  return value.type == Type::ULong ? static_cast<double>(static_cast<std::uint64_t>(value.integer)) : floatingOf(value);
}

std::optional<std::size_t> ArrayModel::place(std::int64_t index) const {
  if (index < 0) index += size();
  if (index < 0 || index >= size()) return std::nullopt;
  return static_cast<std::size_t>(index);
}

std::string ArrayModel::className() const {
  std::string name = synchronised ? "ArraySync" : "Array";
  if (argument != Type::None) name += std::string("<") + nameOf(argument) + ">";
  return name;
}

void ArrayModel::construct(std::int64_t size) {
  element = argument != Type::None ? argument : Type::Object;
  resize(static_cast<std::size_t>(size));
}

void ArrayModel::resize(std::size_t size) { slots.assign(size, isUnboxed() ? kept(0, 0) : Value()); }

Value ArrayModel::kept(std::int64_t integer, double floating) const {
  return stored({kind(), element, integer, floating});
}

std::optional<Value> ArrayModel::fitting(const Value& value) const {
  if (!isUnboxed()) {
    const bool takesAll = element == Type::Object || element == Type::String;
    if (value.type == Type::None || takesAll || value.type == element) return value;
    return std::nullopt;
  }
  const auto wide = static_cast<std::uint64_t>(value.integer);
  bool fits = false;
  if (isFloating(element)) {
    fits = isNumber(value.type);
  } else if (element == Type::Boolean) {
    fits = value.type == Type::Boolean;
  } else if (element == Type::CodeUnit) {
    fits = value.type == Type::CodeUnit && wide <= 0xFFFF;
  } else if (element == Type::Char) {
    fits = value.type == Type::Char && wide <= 0x10FFFF && (wide < 0xD800 || wide > 0xDFFF);
  } else {
    fits = isNumber(value.type) && !isFloating(value.type);
  }
  if (!fits) return std::nullopt;
  return isFloating(element) ? kept(truncated(numericOf(value)), numericOf(value))
                             : kept(value.integer, floatingOf(value));
}

bool ArrayModel::assign(std::size_t at, const Value& value) {
  const std::optional<Value> slot = fitting(value);
  if (!slot) return false;
  slots[at] = *slot;
  return true;
}

ExpectedError ArrayModel::setBoxed(std::size_t at, const Value& box) {
  return assign(at, box) ? ExpectedError() : invalidElement();
}

ExpectedError ArrayModel::setInteger(std::int64_t index, std::int64_t integer) {
  const auto at = place(index);
  if (!at) return indexOutOfBounds();
  if (ExpectedError error = characterError(rawInteger(kind(), element, integer)); error.exceptionClass != nullptr) {
    return error;
  }
  if (!isUnboxed()) return setBoxed(*at, boxed(rawInteger(Kind::Long, Type::Object, integer)));
  slots[*at] = kept(integer, static_cast<double>(integer));
  return {};
}

ExpectedError ArrayModel::setFloating(std::int64_t index, double floating) {
  const auto at = place(index);
  if (!at) return indexOutOfBounds();
  if (!isUnboxed()) return setBoxed(*at, boxed(rawFloating(Kind::Double, Type::Object, floating)));
  slots[*at] = kept(truncated(floating), floating);
  return {};
}

ExpectedError ArrayModel::setTruth(std::int64_t index, bool truth) {
  const auto at = place(index);
  if (!at) return indexOutOfBounds();
  if (!isUnboxed()) return setBoxed(*at, boxed(rawInteger(Kind::Boolean, Type::Boolean, truth ? 1 : 0)));
  slots[*at] = kept(truth ? 1 : 0, truth ? 1 : 0);
  return {};
}

ExpectedError ArrayModel::assignSlice(const Slice& slice, bool isOrderedSource, const Values& values) {
  if (slice.step == 0) return {"Exception", "slice step cannot be zero"};
  if (!isOrderedSource) return {"TypeError", "slice assignment source must be an ordered collection"};
  const std::vector<std::size_t> positions = positionsOf(slice, size());
  if (positions.size() != values.size()) {
    return {"ValueException", "fixed array slice assignment requires the same number of values"};
  }
  for (std::size_t i = 0; i < positions.size(); ++i) {
    if (!assign(positions[i], values[i])) return invalidElement();
  }
  return {};
}

bool ArrayModel::equals(std::size_t at, const Value& value) const {
  if (!isUnboxed()) return areElementsEqual(value, slots[at]);
  if (isFloating(element)) return isNumber(value.type) && numericOf(value) == slots[at].floating;
  const bool comparable = isCharacter(element) || element == Type::Boolean
                              ? fitting(value).has_value()
                              : isNumber(value.type) && !isFloating(value.type);
  return comparable && value.integer == slots[at].integer;
}

ArrayText textOfScalars(const ArrayModel& model) {
  std::string text;
  for (std::size_t i = 0; i < model.slots.size(); ++i) {
    const std::int64_t scalar = model.isUnboxed() ? model.integerAt(i) : 0;
    ExpectedError error = characterError(rawInteger(Kind::UInt, Type::Char, scalar));
    if (error.exceptionClass == nullptr && scalar == 0) error = nulInString();
    if (error.exceptionClass != nullptr) return {"", error};
    appendScalar(text, static_cast<std::uint32_t>(scalar));
  }
  return {text, {}};
}

ArrayText textOfUnits(const ArrayModel& model) {
  std::string text;
  const auto unitAt = [&](std::size_t at) {
    return model.isUnboxed() && at < model.slots.size() ? static_cast<std::uint32_t>(model.integerAt(at)) : 0;
  };
  for (std::size_t i = 0; i < model.slots.size(); ++i) {
    const std::uint32_t unit = unitAt(i);
    if (unit == 0) return {"", nulInString()};
    if (unit >= 0xD800 && unit <= 0xDBFF) {
      const std::uint32_t low = unitAt(++i);
      if (low < 0xDC00 || low > 0xDFFF) return {"", {"ValueException", "Unpaired high surrogate in CodeUnit[]"}};
      appendScalar(text, (unit - 0xD800) * 0x400 + (low - 0xDC00) + 0x10000);
    } else if (unit >= 0xDC00 && unit <= 0xDFFF) {
      return {"", {"ValueException", "Unpaired low surrogate in CodeUnit[]"}};
    } else if (unit <= 0xFFFF) {
      appendScalar(text, unit);
    }
  }
  return {text, {}};
}

void requireArray(const char* what, void* handle, ArrayModel& model) {
  const ArrayData& array = *getArrayData(handle);
  requireSame(what, collections::validateArrayData(array), "");
  requireEqual("being synchronised", array.synchronized ? 1 : 0, model.synchronised ? 1 : 0);
  requireSame("the element type", array.elementType.get(), nameOf(model.element));
  const int slotKind = model.isUnboxed() ? static_cast<int>(model.kind()) - 1 : 11;
  requireEqual("the kind of slots", static_cast<int>(array.slotKind), slotKind);
  requireEqual("the size", static_cast<std::int64_t>(arrayLogicalSize(array)), model.size());
  for (std::size_t i = 0; i < model.slots.size(); ++i) {
    Value& slot = model.slots[i];
    if (!model.isUnboxed()) {
      requireValue(what, array.objects.data[i], slot);
    } else if (isFloating(model.element)) {
      requireEqualFloating(what, arrayReadF64(array, i), slot.floating);
    } else {
      requireEqual(what, arrayReadI64(array, i), slot.integer);
    }
  }
}

void adoptArrayOrder(const char* what, void* handle, ArrayModel& model) {
  const ArrayData& array = *getArrayData(handle);
  requireEqual("the size", static_cast<std::int64_t>(arrayLogicalSize(array)), model.size());
  if (model.isUnboxed()) {
    const auto isBefore = [&](const Value& left, const Value& right) {
      if (isFloating(model.element)) {
        return std::isnan(right.floating) ? !std::isnan(left.floating) : left.floating < right.floating;
      }
      if (model.element == Type::ULong) {
        return static_cast<std::uint64_t>(left.integer) < static_cast<std::uint64_t>(right.integer);
      }
      return left.integer < right.integer;
    };
    std::stable_sort(model.slots.begin(), model.slots.end(), isBefore);
    // Zeros of either sign are equal, so that their order is not known.
    std::int64_t negativeZeros = 0;
    for (std::size_t i = 0; isFloating(model.element) && i < model.slots.size(); ++i) {
      Value& slot = model.slots[i];
      if (slot.floating != 0) continue;
      const double actual = arrayReadF64(array, i);
      negativeZeros += (std::signbit(slot.floating) ? 1 : 0) - (std::signbit(actual) ? 1 : 0);
      requireEqualFloating(what, std::fabs(actual), 0);
      slot.floating = actual;
    }
    requireEqual("the number of negative zeros", negativeZeros, 0);
    return;
  }
  // Every slot must hold one of the elements, each once.
  Values remaining = std::move(model.slots);
  model.slots.clear();
  for (std::uint64_t i = 0; i < array.objects.size; ++i) {
    const auto found = std::find_if(remaining.begin(), remaining.end(),
                                    [&](const Value& value) { return value.handle == array.objects.data[i]; });
    if (found == remaining.end()) diverge(what, describe(array.objects.data[i]), "an element of before");
    model.slots.push_back(*found);
    remaining.erase(found);
  }
  const auto isComparable = [&](const Value& value) { return haveOneOrder(model.slots[0], value); };
  if (!std::all_of(model.slots.begin(), model.slots.end(), isComparable)) return;
  for (std::size_t i = 1; i < model.slots.size(); ++i) {
    if (compareElements(model.slots[i - 1], model.slots[i]) <= 0) continue;
    diverge(what, describe(model.slots[i - 1]) + " before " + describe(model.slots[i]), "ascending order");
  }
}

}  // namespace vorn::fuzz
