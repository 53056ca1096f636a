// The types of single values: numbers, characters, Booleans. Making them, reading them, and what fits them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vorn::console {

// Holds the values of every integer type, ULong included.
__extension__ using WideInteger = __int128;

enum class ScalarFamily : std::uint8_t { Integer, Floating, Boolean, Character };

struct ScalarType {
  std::string_view name;
  ScalarFamily family;
  WideInteger lowest;
  WideInteger highest;
  std::size_t width;  // in bytes, unboxed
};

// All of them, and the one of a short name; null when the name is none of theirs.
std::span<const ScalarType> scalarTypes();
const ScalarType* scalarType(std::string_view name);

// A number of any type.
struct Number {
  const ScalarType* type = nullptr;
  WideInteger integer = 0;  // the code point of a character, 0 or 1 for a Boolean; truncated when floating
  double floating = 0;

  [[nodiscard]] bool isFloating() const { return type->family == ScalarFamily::Floating; }
};

// What a box holds; nothing when the handle is no box.
std::optional<Number> readNumber(void* handle);

// A new box. Refuses a value that the type does not hold, a number with a fraction for an integer type included.
// Allocates.
void* boxNumber(const ScalarType& type, const Number& number);
void* boxInteger(const ScalarType& type, WideInteger value);

// Int when the value fits it, else Long.
void* boxCount(std::int64_t value);

// The value of a literal's digits; nothing when no integer type could hold it.
std::optional<WideInteger> parseInteger(std::string_view digits);
std::string integerText(WideInteger value);

}  // namespace vorn::console
