#include "fuzz/list_model.h"

#include <algorithm>
#include <cmath>

namespace vorn::fuzz {

namespace {

constexpr bool isScalar(std::int64_t value) {
  const auto scalar = static_cast<std::uint64_t>(value);
  return scalar <= 0x10FFFF && (scalar < 0xD800 || scalar > 0xDFFF);
}

bool isInRange(Kind kind, std::int64_t value) {
  switch (kind) {
    case Kind::SByte:
      return value >= -128 && value <= 127;
    case Kind::Byte:
      return value >= 0 && value <= 255;
    case Kind::Short:
      return value >= -32768 && value <= 32767;
    case Kind::UShort:
      return value >= 0 && value <= 65535;
    case Kind::Int:
      return value >= INT32_MIN && value <= INT32_MAX;
    case Kind::UInt:
      return value >= 0 && value <= UINT32_MAX;
    case Kind::ULong:
      return value >= 0;
    default:
      return true;
  }
}

std::string fullNameOf(const Value& value) {
  if (isPrimitive(value.type)) return std::string("vorn.") + nameOf(value.type);
  switch (value.type) {
    case Type::String:
    case Type::Text:
      return "vorn.String";
    case Type::Item:
      return "fuzz.Item";
    case Type::Plain:
      return "fuzz.Plain";
    case Type::Pair:
      return "vorn.collections.Tuple";
    default:
      return "null";
  }
}

bool isInstance(const Value& value, Type type) {
  return type == Type::String ? isText(value.type) : value.type == type;
}

}  // namespace

ExpectedError indexOutOfBounds() { return {"IndexException", "Index out of bounds"}; }

RawValue rawInteger(Kind kind, Type name, std::int64_t integer) {
  return {kind, name, integer, static_cast<double>(integer)};
}
RawValue rawFloating(Kind kind, Type name, double floating) { return {kind, name, truncated(floating), floating}; }

std::optional<RawValue> rawOf(const Value& value) {
  if (!isPrimitive(value.type)) return std::nullopt;
  if (isFloating(value.type)) return rawFloating(kindOf(value.type), value.type, value.floating);
  return rawInteger(kindOf(value.type), value.type, value.integer);
}

std::optional<RawValue> converted(Kind declaredKind, Type declaredName, const RawValue& raw) {
  const RawValue asInteger = rawInteger(declaredKind, declaredName, raw.integer);
  bool fits = false;
  if (declaredKind == Kind::Boolean) {
    fits = raw.kind == Kind::Boolean && raw.name == declaredName;
  } else if (declaredName == Type::CodeUnit || raw.name == Type::CodeUnit) {
    fits = raw.name == declaredName && static_cast<std::uint64_t>(raw.integer) < 0x10000;
  } else if (declaredName == Type::Char || raw.name == Type::Char) {
    fits = raw.name == declaredName && isScalar(raw.integer);
  } else if (isInteger(declaredKind)) {
    fits = isInteger(raw.kind) && isInRange(declaredKind, raw.integer);
  } else if (isFloating(declaredKind)) {
    if (isFloating(raw.kind)) return rawFloating(declaredKind, declaredName, raw.floating);
    fits = isInteger(raw.kind) || raw.kind == Kind::Boolean;
  }
  if (!fits) return std::nullopt;
  return asInteger;
}

Value boxed(const RawValue& raw) {
  Value value;
  if (isFloating(raw.kind)) {
    value.type = raw.name == Type::Float ? Type::Float : Type::Double;
    value.floating = value.type == Type::Float ? static_cast<double>(static_cast<float>(raw.floating)) : raw.floating;
    return value;
  }
  value.integer = raw.integer;
  if (raw.kind == Kind::Boolean || raw.name == Type::Boolean) {
    value.type = Type::Boolean;
    value.integer = raw.integer != 0 ? 1 : 0;
  } else if (raw.name == Type::None) {
    value.type = Type::Int;
  } else if (isPrimitive(raw.name) && !isFloating(raw.name)) {
    value.type = raw.name;
  } else {
    value.type = isInRange(Kind::Int, raw.integer) ? Type::Int : Type::Long;
  }
  return value;
}

Value stored(const RawValue& raw) {
  RawValue kept = raw;
  switch (raw.kind) {
    case Kind::SByte:
      kept.integer = static_cast<std::int8_t>(raw.integer);
      break;
    case Kind::Byte:
      kept.integer = static_cast<std::uint8_t>(raw.integer);
      break;
    case Kind::Short:
      kept.integer = static_cast<std::int16_t>(raw.integer);
      break;
    case Kind::UShort:
      kept.integer = static_cast<std::uint16_t>(raw.integer);
      break;
    case Kind::Int:
      kept.integer = static_cast<std::int32_t>(raw.integer);
      break;
    case Kind::UInt:
      kept.integer = static_cast<std::uint32_t>(raw.integer);
      break;
    case Kind::Float:
      kept.floating = static_cast<float>(raw.floating);
      break;
    default:
      break;
  }
  return boxed(kept);
}

ExpectedError characterError(const RawValue& raw) {
  if (raw.name == Type::CodeUnit && static_cast<std::uint64_t>(raw.integer) > 0xFFFF) {
    return {"TypeError", "CodeUnit code unit out of range (0..0xFFFF)"};
  }
  if (raw.name == Type::Char && !isScalar(raw.integer)) {
    return {"ValueException", "Char value must be a Unicode scalar (0..0x10FFFF, excluding surrogates)"};
  }
  return {};
}

std::optional<std::size_t> ListModel::place(std::int64_t index) const {
  if (index < 0) index += size();
  if (index < 0 || index >= size()) return std::nullopt;
  return static_cast<std::size_t>(index);
}

ExpectedError ListModel::refusal(const Value& value) const {
  if (declared == Type::None || declared == Type::Object) return {};
  bool accepted = false;
  if (kindOf(declared) != Kind::None) {
    accepted = unboxedFormOf(value).has_value();
  } else {
    accepted = value.type == Type::None || isInstance(value, declared);
  }
  if (accepted) return {};
  return {"TypeError", std::string("ArrayList<") + nameOf(declared) + "> cannot accept " + fullNameOf(value)};
}

std::optional<RawValue> ListModel::unboxedFormOf(const Value& value) const {
  const std::optional<RawValue> raw = rawOf(value);
  if (!raw || kindOf(declared) == Kind::None) return std::nullopt;
  return converted(kindOf(declared), declared, *raw);
}

bool ListModel::takesUnboxed(Kind valueKind, Type valueName) const {
  if (linked) return false;
  if (isUnboxed()) return valueKind == kind && valueName == name;
  if (!elements.empty()) return false;
  if (kindOf(declared) != Kind::None) return valueKind == kindOf(declared) && valueName == declared;
  return declared == Type::None;
}

// Only where takesUnboxed.
ExpectedError ListModel::insertRaw(std::size_t index, const RawValue& raw) {
  if (ExpectedError error = characterError(raw); error.exceptionClass != nullptr) return error;
  kind = raw.kind;
  name = raw.name;
  elements.insert(elements.begin() + static_cast<std::ptrdiff_t>(index), stored(raw));
  return {};
}

ExpectedError ListModel::add(const Value& value) { return addAt(size(), value); }

ExpectedError ListModel::addAt(std::int64_t index, const Value& value) {
  if (index < 0 || index > size()) return indexOutOfBounds();
  const auto at = static_cast<std::size_t>(index);
  if (ExpectedError error = refusal(value); error.exceptionClass != nullptr) return error;
  if (const auto raw = unboxedFormOf(value); raw && takesUnboxed(raw->kind, raw->name)) return insertRaw(at, *raw);
  if (const auto raw = rawOf(value); raw && takesUnboxed(raw->kind, raw->name)) return insertRaw(at, *raw);
  materialise();
  elements.insert(elements.begin() + index, value);
  return {};
}

ExpectedError ListModel::assignAt(std::int64_t index, const Value& value) {
  if (index == size()) return add(value);
  const auto at = place(index);
  if (!at) return indexOutOfBounds();
  if (isUnboxed()) {
    for (const std::optional<RawValue>& raw : {unboxedFormOf(value), rawOf(value)}) {
      if (!raw || raw->kind != kind || raw->name != name) continue;
      if (ExpectedError error = characterError(*raw); error.exceptionClass != nullptr) return error;
      elements[*at] = stored(*raw);
      return {};
    }
  }
  if (ExpectedError error = refusal(value); error.exceptionClass != nullptr) return error;
  materialise();
  elements[*at] = value;
  return {};
}

ExpectedError ListModel::addConverted(const RawValue& raw) {
  const Kind declaredKind = kindOf(declared);
  if (declaredKind == Kind::None) return addRaw(raw);
  const std::optional<RawValue> fitting = converted(declaredKind, declared, raw);
  return addRaw(fitting ? *fitting : raw);
}

ExpectedError ListModel::addRaw(const RawValue& raw) {
  const bool adopts = !linked && !isUnboxed() && elements.empty();
  if (adopts || (isUnboxed() && raw.kind == kind && raw.name == name)) return insertRaw(elements.size(), raw);
  materialise();
  elements.push_back(boxed(raw));
  return {};
}

ExpectedError ListModel::addAll(std::int64_t index, const Values& values) {
  if (values.empty()) return {};
  if (index < 0 || index > size()) return indexOutOfBounds();
  for (const Value& value : values) {
    if (ExpectedError error = refusal(value); error.exceptionClass != nullptr) return error;
  }
  std::vector<RawValue> batch;
  for (const Value& value : values) {
    const auto raw = kindOf(declared) != Kind::None ? unboxedFormOf(value) : rawOf(value);
    if (!raw || (!batch.empty() && (raw->kind != batch[0].kind || raw->name != batch[0].name))) break;
    batch.push_back(*raw);
  }
  if (batch.size() == values.size() && takesUnboxed(batch[0].kind, batch[0].name)) {
    for (const RawValue& raw : batch) {
      if (ExpectedError error = characterError(raw); error.exceptionClass != nullptr) return error;
    }
    for (const RawValue& raw : batch) insertRaw(static_cast<std::size_t>(index++), raw);
    return {};
  }
  materialise();
  elements.insert(elements.begin() + index, values.begin(), values.end());
  return {};
}

ExpectedError ListModel::removeAt(std::int64_t index) {
  const auto at = place(index);
  if (!at) return indexOutOfBounds();
  elements.erase(elements.begin() + static_cast<std::ptrdiff_t>(*at));
  return {};
}

void ListModel::clear() {
  materialise();
  elements.clear();
}

void ListModel::materialise() {
  kind = Kind::None;
  name = Type::None;
}

void ListModel::reserve(std::int64_t count) {
  if (count <= 0 || linked || isUnboxed() || !elements.empty() || kindOf(declared) == Kind::None) return;
  kind = kindOf(declared);
  name = declared;
}

ExpectedError ListModel::assignRaw(Kind newKind, Type newName, const std::vector<RawValue>& values) {
  for (RawValue raw : values) {
    raw.name = newName;
    if (ExpectedError error = characterError(raw); error.exceptionClass != nullptr) return error;
  }
  kind = newKind;
  name = declared = newName;
  elements.clear();
  for (const RawValue& raw : values) elements.push_back(stored({newKind, newName, raw.integer, raw.floating}));
  return {};
}

std::vector<std::size_t> ListModel::findUnboxed(const RawValue& raw) const {
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const bool same = isFloating(kind) ? elements[i].floating == raw.floating : elements[i].integer == raw.integer;
    if (same) places.push_back(i);
  }
  return places;
}

std::vector<std::size_t> ListModel::find(const Value& value) {
  if (isUnboxed()) {
    if (const auto raw = rawOf(value); raw && raw->kind == kind && raw->name == name) return findUnboxed(*raw);
    materialise();
  }
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (areElementsEqual(value, elements[i])) places.push_back(i);
  }
  return places;
}

std::int64_t ListModel::indexOf(const Value& value, std::int64_t start) const {
  if (isUnboxed()) {
    const auto raw = rawOf(value);
    if (!raw || raw->kind != kind || raw->name != name) return -1;
  }
  ListModel copy = *this;
  for (const std::size_t at : copy.find(value)) {
    if (static_cast<std::int64_t>(at) >= start) return static_cast<std::int64_t>(at);
  }
  return -1;
}

std::int64_t ListModel::lastIndexOf(const Value& value, std::int64_t start) const {
  if (isUnboxed()) {
    const auto raw = rawOf(value);
    if (!raw || raw->kind != kind || raw->name != name) return -1;
  }
  if (start < 0 || start >= size()) start = size() - 1;
  ListModel copy = *this;
  std::int64_t last = -1;
  for (const std::size_t at : copy.find(value)) {
    if (static_cast<std::int64_t>(at) <= start) last = static_cast<std::int64_t>(at);
  }
  return last;
}

std::vector<std::size_t> positionsOf(const Slice& slice, std::int64_t size) {
  // A bound counted from the end; what is still negative stays so.
  const auto counted = [&](std::int64_t bound) { return bound < 0 ? bound + size : bound; };
  std::vector<std::size_t> positions;
  if (slice.step > 0) {
    std::int64_t low = slice.hasStart ? std::max<std::int64_t>(counted(slice.start), 0) : 0;
    const std::int64_t high = slice.hasStop ? std::min(counted(slice.stop), size) : size;
    for (; low < high; low += slice.step) {
      positions.push_back(static_cast<std::size_t>(low));
      if (slice.step > high) break;  // the next would be beyond, and may be beyond all numbers
    }
  } else if (slice.step < 0) {
    const auto clamped = [&](std::int64_t bound) {
      return std::min(std::max<std::int64_t>(counted(bound), -1), size - 1);
    };
    std::int64_t at = slice.hasStart ? clamped(slice.start) : size - 1;
    const std::int64_t limit = slice.hasStop ? clamped(slice.stop) : -1;
    for (; at > limit; at += slice.step) {
      positions.push_back(static_cast<std::size_t>(at));
      if (slice.step < -size) break;
    }
  }
  return positions;
}

}  // namespace vorn::fuzz
