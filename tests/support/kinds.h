// The primitive kinds, written out once more apart from the table that the library is built from, so that a wrong row
// there fails a test.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string_view>

#include "collections/core/kinds.h"

namespace vorn::tests {

using Kind = collections::PrimitiveKind;

// One type name that selects a kind, with what follows from the kind.
struct NamedKind {
  const char* name;
  int value;
  std::uint64_t width;
  std::uint64_t inlineCapacity;

  [[nodiscard]] Kind kind() const { return static_cast<Kind>(value); }
  [[nodiscard]] bool isInteger() const { return value >= 1 && value <= 8; }
  [[nodiscard]] bool isFloating() const { return value == 9 || value == 10; }
  [[nodiscard]] bool is(std::string_view other) const { return other == name; }
};

// How tests with kinds as parameters name them in their reports.
inline void PrintTo(const NamedKind& row, std::ostream* stream) { *stream << row.name; }

inline constexpr NamedKind kNamedKinds[] = {
    {"SByte", 1, 1, 128}, {"Byte", 2, 1, 128},   {"Short", 3, 2, 64},     {"UShort", 4, 2, 64}, {"CodeUnit", 4, 2, 64},
    {"Int", 5, 4, 32},    {"UInt", 6, 4, 32},    {"Char", 6, 4, 32},      {"Long", 7, 8, 16},   {"ULong", 8, 8, 16},
    {"Float", 9, 4, 32},  {"Double", 10, 8, 16}, {"Boolean", 11, 1, 128},
};

inline const NamedKind& namedKind(std::string_view name) {
  for (const NamedKind& row : kNamedKinds) {
    if (row.is(name)) return row;
  }
  ADD_FAILURE() << "no kind is named " << name;
  return kNamedKinds[0];
}

}  // namespace vorn::tests
