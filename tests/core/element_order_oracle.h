// Values of every class that element equality and ordering tell apart, each with a description, and the two rules
// worked out from the descriptions. What the library asks of the runtime at the very end of its rules (structural
// equality, collection order) the oracle asks of it too.
#pragma once

#include <cmath>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "collections/core/port/comparison.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/pending_errors.h"
#include "tests/core/core_test_support.h"
#include "tests/core/user_classes.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {

struct Specimen {
  enum class Class { Null, Text, String, Integer, Floating, Boolean, Character, Other };

  std::string label;
  Class kind = Class::Null;
  Handle handle;
  std::string text = {};     // Text and String
  long long payload = 0;     // Integer
  long double number = 0;    // Integer and Floating, exactly
  double floatingValue = 0;  // Floating

  [[nodiscard]] bool isObject() const { return kind != Class::Null && kind != Class::Text; }
  [[nodiscard]] bool isNumeric() const { return kind == Class::Integer || kind == Class::Floating; }
  [[nodiscard]] bool isIntLike() const { return kind == Class::Integer || kind == Class::Boolean; }
  [[nodiscard]] long long item() const {
    return kind == Class::Integer ? payload : Vorn_getField_i64(handle, "_value");
  }
};

inline Specimen integerSpecimen(const char* type, long long value) {
  static_assert(std::numeric_limits<long double>::digits >= 64, "the oracle needs exact 64-bit integers");
  const bool isUnsigned64 = std::string_view(type) == "ULong";
  return {.label = std::string(type) + " " + std::to_string(value),
          .kind = Specimen::Class::Integer,
          .handle = integer(type, value),
          .payload = value,
          .number = isUnsigned64 ? static_cast<long double>(static_cast<unsigned long long>(value))
                                 : static_cast<long double>(value)};
}

inline Specimen floatingSpecimen(const char* type, double value) {
  return {.label = std::string(type) + " " + std::to_string(value),
          .kind = Specimen::Class::Floating,
          .handle = floating(type, value),
          .number = value,
          .floatingValue = value};
}

inline Specimen textSpecimen(const std::string& value) {
  return {.label = "text \"" + value + '"', .kind = Specimen::Class::Text, .handle = text(value), .text = value};
}

inline Specimen stringSpecimen(const std::string& value) {
  return {.label = "String \"" + value + '"', .kind = Specimen::Class::String, .handle = string(value), .text = value};
}

inline Specimen otherSpecimen(const std::string& label, const Handle& handle) {
  return {.label = label, .kind = Specimen::Class::Other, .handle = handle};
}

// The order of two doubles where at least one side is no number to the runtime: a NaN on either side sorts after.
inline int floatingRule(double x, double y) {
  if (std::isnan(x) || std::isnan(y)) return 1;
  if (x == y) return 0;
  return x > y ? 1 : -1;
}

inline int signOf(long long value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

inline bool expectedEqual(const Specimen& a, const Specimen& b) {
  using Class = Specimen::Class;
  if (a.handle.get() == b.handle.get()) return true;
  if (a.isNumeric() && b.isNumeric()) return a.number == b.number;
  if (!a.isObject() && !b.isObject()) return a.kind == Class::Text && b.kind == Class::Text && a.text == b.text;
  if (!a.isObject()) return a.kind == Class::Text && b.kind == Class::String && a.text == b.text;
  if (!b.isObject()) return b.kind == Class::Text && a.kind == Class::String && a.text == b.text;
  if (a.kind == Class::String || b.kind == Class::String) return a.kind == b.kind && a.text == b.text;
  if (a.kind == Class::Floating) return a.floatingValue == static_cast<double>(b.item());
  if (b.kind == Class::Floating) return static_cast<double>(a.item()) == b.floatingValue;
  if (a.isIntLike() && b.isIntLike()) return a.item() == b.item();
  return Vorn_deepEquals(a.handle, b.handle) != 0;
}

// The sign only where both are numbers.
inline int expectedOrder(const Specimen& a, const Specimen& b) {
  using Class = Specimen::Class;
  if (a.handle.get() == b.handle.get()) return 0;
  if (a.isNumeric() && b.isNumeric()) {
    const bool aNaN = std::isnan(a.number);
    const bool bNaN = std::isnan(b.number);
    if (aNaN || bNaN) return static_cast<int>(aNaN) - static_cast<int>(bNaN);
    return a.number < b.number ? -1 : a.number > b.number ? 1 : 0;
  }
  if (!a.isObject() && !b.isObject()) {
    if (a.kind == Class::Null) return b.kind == Class::Null ? 0 : -1;
    if (b.kind == Class::Null) return 1;
    return signOf(std::strcmp(a.text.c_str(), b.text.c_str()));
  }
  if (a.isObject() != b.isObject()) return a.isObject() ? 1 : -1;
  if (a.kind == Class::Floating) return floatingRule(a.floatingValue, static_cast<double>(b.item()));
  if (b.kind == Class::Floating) return floatingRule(static_cast<double>(a.item()), b.floatingValue);
  if (a.isIntLike() && b.isIntLike()) return a.item() < b.item() ? -1 : a.item() > b.item() ? 1 : 0;
  bool equal = false;
  if (!Vorn_collectionObjectsEqual(a.handle, b.handle, equal) || equal) return 0;
  bool less = false;
  if (Vorn_collectionObjectsLess(a.handle, b.handle, less) && less) return -1;
  if (Vorn_hasPendingError() != 0) return 0;
  less = false;
  if (Vorn_collectionObjectsLess(b.handle, a.handle, less) && less) return 1;
  if (Vorn_hasPendingError() != 0) return 0;
  const std::string aName = Vorn_objectTypeName(a.handle);
  const std::string bName = Vorn_objectTypeName(b.handle);
  if (aName != bName) return aName < bName ? -1 : 1;
  return reinterpret_cast<std::uintptr_t>(a.handle.get()) < reinterpret_cast<std::uintptr_t>(b.handle.get()) ? -1 : 1;
}

// One value of every class and, where values of a class differ in what matters, several.
inline std::vector<Specimen> makeSpecimens() {
  std::vector<Specimen> result;
  result.push_back({.label = "null", .kind = Specimen::Class::Null, .handle = Handle()});
  for (const char* value : {"", "a", "a", "ab", "b", "1", "\xC3\xA9", "Z"}) result.push_back(textSpecimen(value));
  static char constantText[] = "a";
  result.push_back(
      {.label = "constant text", .kind = Specimen::Class::Text, .handle = Handle(constantText), .text = "a"});
  for (const char* value : {"", "a", "a", "ab", "b", "1", "\xC3\xA9"}) result.push_back(stringSpecimen(value));
  for (const char* type : {"SByte", "Byte", "Short", "UShort", "Int", "UInt", "Long", "ULong"}) {
    for (const long long value : {0, 1, 97, -1}) result.push_back(integerSpecimen(type, value));
  }
  for (const char* type : {"Long", "ULong"}) {
    for (const long long value : {(1LL << 53), (1LL << 53) + 1, kMaxLong, kMinLong}) {
      result.push_back(integerSpecimen(type, value));
    }
  }
  for (const char* type : {"Float", "Double"}) {
    for (const double value : {0.0, -0.0, 1.0, 97.0, 1.5, -1.0, 9007199254740992.0, 9223372036854775808.0,
                               18446744073709551616.0, kInfinity, -kInfinity, kNaN, kNaN}) {
      result.push_back(floatingSpecimen(type, value));
    }
  }
  result.push_back(floatingSpecimen("Double", 1e300));
  for (const bool value : {false, true}) {
    result.push_back({.label = value ? "true" : "false", .kind = Specimen::Class::Boolean, .handle = boolean(value)});
  }
  for (const auto& [type, value] :
       {std::pair{"Char", 97}, {"Char", 97}, {"Char", 1}, {"CodeUnit", 97}, {"CodeUnit", 1}}) {
    result.push_back({.label = std::string(type) + " " + std::to_string(value),
                      .kind = Specimen::Class::Character,
                      .handle = integer(type, value)});
  }
  result.push_back(otherSpecimen("empty list", object("ArrayList")));
  result.push_back(otherSpecimen("other empty list", object("ArrayList")));
  result.push_back(otherSpecimen("[1]", list("ArrayList", {integer("Int", 1)})));
  result.push_back(otherSpecimen("linked [1]", list("LinkedList", {integer("Int", 1)})));
  result.push_back(otherSpecimen("[2]", list("ArrayList", {integer("Int", 2)})));
  result.push_back(otherSpecimen("[1, 2]", list("ArrayList", {integer("Int", 1), integer("Int", 2)})));
  result.push_back(otherSpecimen("[NaN]", list("ArrayList", {floating("Double", kNaN)})));
  result.push_back(otherSpecimen("other [NaN]", list("ArrayList", {floating("Double", kNaN)})));
  result.push_back(otherSpecimen("synchronised [NaN]", list("ArrayListSync", {floating("Double", kNaN)})));
  result.push_back(otherSpecimen("[\"a\"]", list("ArrayList", {string("a")})));
  definePlainClasses();
  result.push_back(otherSpecimen("an Animal", object("coretest.Animal")));
  result.push_back(otherSpecimen("another Animal", object("coretest.Animal")));
  result.push_back(otherSpecimen("a Plant", object("coretest.Plant")));
  for (const long long value : {1, 97, 97}) {
    result.push_back(otherSpecimen("Holder " + std::to_string(value), holder(value)));
  }
  for (const long long value : {1, 2, 2}) {
    result.push_back(otherSpecimen("Ranked " + std::to_string(value), ranked(value)));
  }
  return result;
}

}  // namespace vorn::tests
