#include "console/scalars.h"

#include <vorn/runtime.h>

#include <cmath>
#include <limits>

#include "collections/core/kinds.h"
#include "console/problems.h"

namespace vorn::console {

namespace {

// A primitive kind, of which elements are kept as T.
template <class T>
constexpr ScalarType kindOf(std::string_view name, ScalarFamily family) {
  ScalarType kind{name, family, 0, family == ScalarFamily::Boolean ? 1 : 0, sizeof(T)};
  if constexpr (std::numeric_limits<T>::is_integer) {
    if (family == ScalarFamily::Integer) {
      kind.lowest = std::numeric_limits<T>::min();
      kind.highest = std::numeric_limits<T>::max();
    }
  }
  return kind;
}

constexpr ScalarType kTypes[] = {
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot) \
  kindOf<type>(#enumerator, ScalarFamily::family),
#include "collections/core/kinds.def"
    {"Char", ScalarFamily::Character, 0, 0x10FFFF, sizeof(std::uint32_t)},
    {"CodeUnit", ScalarFamily::Character, 0, 0xFFFF, sizeof(std::uint16_t)},
};

std::string_view shortName(std::string_view fullName) { return fullName.substr(fullName.rfind('.') + 1); }

WideInteger truncated(double value) {
  constexpr double kLimit = 1e37;
  if (std::isnan(value)) return 0;
  if (std::fabs(value) > kLimit) return static_cast<WideInteger>(value > 0 ? kLimit : -kLimit);
  return static_cast<WideInteger>(value);
}

[[noreturn]] void refuse(const ScalarType& type, const std::string& value) {
  if (type.family == ScalarFamily::Boolean) throw Refusal("a Boolean is true or false, not " + value);
  throw Refusal(std::string(type.name) + " holds " + integerText(type.lowest) + " to " + integerText(type.highest) +
                ", not " + value);
}

}  // namespace

std::span<const ScalarType> scalarTypes() { return kTypes; }

const ScalarType* scalarType(std::string_view name) {
  for (const ScalarType& type : kTypes) {
    if (type.name == name) return &type;
  }
  return nullptr;
}

std::optional<Number> readNumber(void* handle) {
  if (handle == nullptr || vorn_is_object(handle) == 0) return std::nullopt;
  const ScalarType* type = scalarType(shortName(vorn_type_name(handle)));
  if (type == nullptr) return std::nullopt;
  Number number;
  number.type = type;
  if (type->family == ScalarFamily::Floating) {
    if (vorn_unbox_floating(handle, &number.floating) == 0) return std::nullopt;
    number.integer = truncated(number.floating);
    return number;
  }
  std::int64_t bits = 0;
  if (vorn_unbox_integer(handle, &bits) == 0) return std::nullopt;
  number.integer = type->name == "ULong" ? WideInteger{static_cast<std::uint64_t>(bits)} : WideInteger{bits};
  number.floating = static_cast<double>(number.integer);
  return number;
}

void* boxInteger(const ScalarType& type, WideInteger value) {
  if (type.family == ScalarFamily::Floating) {
    return vorn_box_floating(type.name.data(), static_cast<double>(value));
  }
  const bool surrogate = type.name == "Char" && value >= 0xD800 && value <= 0xDFFF;
  if (value < type.lowest || value > type.highest || surrogate) refuse(type, integerText(value));
  if (type.family == ScalarFamily::Boolean) return vorn_box_boolean(value != 0);
  return vorn_box_integer(type.name.data(), static_cast<std::int64_t>(value));
}

void* boxNumber(const ScalarType& type, const Number& number) {
  if (type.family == ScalarFamily::Floating) return vorn_box_floating(type.name.data(), number.floating);
  if (number.isFloating() && (std::trunc(number.floating) != number.floating || std::isinf(number.floating))) {
    refuse(type, std::to_string(number.floating));
  }
  return boxInteger(type, number.integer);
}

void* boxCount(std::int64_t value) {
  const bool fits =
      value >= std::numeric_limits<std::int32_t>::min() && value <= std::numeric_limits<std::int32_t>::max();
  return fits ? vorn_box_int(static_cast<std::int32_t>(value)) : vorn_box_long(value);
}

std::optional<WideInteger> parseInteger(std::string_view digits) {
  constexpr WideInteger kPastAll = WideInteger{1} << 65;
  const bool negative = digits.starts_with('-');
  WideInteger value = 0;
  for (const char c : digits.substr(negative ? 1 : 0)) {
    value = value * 10 + (c - '0');
    if (value > kPastAll) return std::nullopt;
  }
  return negative ? -value : value;
}

std::string integerText(WideInteger value) {
  if (value == 0) return "0";
  const bool negative = value < 0;
  std::string text;
  for (; value != 0; value /= 10) {
    const int digit = static_cast<int>(value % 10);
    text.insert(text.begin(), static_cast<char>('0' + (digit < 0 ? -digit : digit)));
  }
  return negative ? "-" + text : text;
}

}  // namespace vorn::console
