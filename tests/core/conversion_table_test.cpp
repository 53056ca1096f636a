// The conversion of a raw value to a declared kind, over the whole table: every declared name, every value name, every
// boundary value, against the rules written out here once more.

#include <cmath>
#include <optional>

#include "collections/core/elements/primitive_values.h"
#include "tests/core/core_test_support.h"

namespace vorn::tests {
namespace {

struct Pair {
  long long integer;
  double floating;
};

// The range of values an integer kind takes.
bool inRange(const NamedKind& declared, long long x) {
  if (declared.is("SByte")) return x >= -128 && x <= 127;
  if (declared.is("Byte")) return x >= 0 && x <= 255;
  if (declared.is("Short")) return x >= -32768 && x <= 32767;
  if (declared.is("UShort")) return x >= 0 && x <= 65535;
  if (declared.is("Int")) return x >= -2147483648LL && x <= 2147483647LL;
  if (declared.is("UInt")) return x >= 0 && x <= 4294967295LL;
  if (declared.is("Long")) return true;
  return x >= 0;  // ULong: only what fits the signed range arrives as non-negative
}

long long truncated(double d) {
  if (!(d >= -9223372036854775808.0 && d < 9223372036854775808.0)) return kMinLong;
  return static_cast<long long>(d);
}

std::optional<Pair> expectedConversion(const NamedKind& declared, const NamedKind& value, long long x, double d) {
  const Pair asInteger{x, static_cast<double>(x)};
  const bool sameName = declared.is(value.name);
  if (declared.is("Boolean")) {
    if (!sameName) return std::nullopt;
    return Pair{x != 0 ? 1 : 0, x != 0 ? 1.0 : 0.0};
  }
  if (declared.is("CodeUnit") || value.is("CodeUnit")) {
    if (sameName && x >= 0 && x <= 65535) return asInteger;
    return std::nullopt;
  }
  if (declared.is("Char") || value.is("Char")) {
    if (sameName && x >= 0 && x <= 0x10FFFF && !(x >= 0xD800 && x <= 0xDFFF)) return asInteger;
    return std::nullopt;
  }
  if (declared.isFloating()) {
    if (value.isFloating()) return Pair{truncated(d), d};
    return asInteger;  // integers and booleans
  }
  if (value.isInteger() && inRange(declared, x)) return asInteger;
  return std::nullopt;
}

const long long kBoundaries[] = {0,
                                 1,
                                 2,
                                 -1,
                                 126,
                                 127,
                                 128,
                                 -127,
                                 -128,
                                 -129,
                                 254,
                                 255,
                                 256,
                                 32766,
                                 32767,
                                 32768,
                                 -32768,
                                 -32769,
                                 0xD7FF,
                                 0xD800,
                                 0xDFFF,
                                 0xE000,
                                 65535,
                                 65536,
                                 0x10FFFF,
                                 0x110000,
                                 2147483647,
                                 2147483648LL,
                                 -2147483648LL,
                                 -2147483649LL,
                                 4294967295LL,
                                 4294967296LL,
                                 (1LL << 53) + 1,
                                 kMaxLong,
                                 kMaxLong - 1,
                                 kMinLong,
                                 kMinLong + 1};

const double kDoubles[] = {
    0.0,  -0.0,      0.5,        -0.5, 1.0, -1.9, 1e10, 0.1, 9223372036854774784.0, 9223372036854775808.0,
    1e30, kInfinity, -kInfinity, kNaN};

void expectConversion(const NamedKind& declared, const NamedKind& value, long long x, double d) {
  const auto expected = expectedConversion(declared, value, x, d);
  long long integer = 12345;
  double floating = 12345.5;
  const bool accepted = convertPrimitiveListValueToDeclared(
      declared.kind(), named(declared.name), BulkPrimitiveListValue{value.kind(), named(value.name), x, d}, integer,
      floating);
  SCOPED_TRACE(std::string(value.name) + " " + std::to_string(x) + "/" + std::to_string(d) + " to " + declared.name);
  ASSERT_EQ(accepted, expected.has_value());
  if (!expected) return;
  EXPECT_EQ(integer, expected->integer);
  if (std::isnan(expected->floating)) {
    EXPECT_TRUE(std::isnan(floating));
  } else {
    EXPECT_EQ(floating, expected->floating);
    EXPECT_EQ(std::signbit(floating), std::signbit(expected->floating));
  }
}

TEST(ConversionTable, EveryNameToEveryNameAtEveryBoundary) {
  for (const NamedKind& declared : kNamedKinds) {
    for (const NamedKind& value : kNamedKinds) {
      if (value.isFloating()) {
        for (const double d : kDoubles) expectConversion(declared, value, truncated(d), d);
      } else {
        // The double of an integer value does not count; a wrong one shows who looks at it.
        for (const long long x : kBoundaries) expectConversion(declared, value, x, static_cast<double>(x) + 0.5);
      }
    }
  }
}

struct Row {
  const char* declared;
  const char* value;
  long long x;
  bool accepted;
};

TEST(ConversionTable, RowsWorthReading) {
  const Row rows[] = {
      {"Byte", "Int", 255, true},
      {"Byte", "Int", 256, false},
      {"Byte", "Int", -1, false},
      {"SByte", "Byte", 127, true},
      {"SByte", "Byte", 128, false},
      {"Int", "Long", 2147483647, true},
      {"Int", "Long", 2147483648LL, false},
      {"UInt", "Int", -1, false},
      {"Long", "ULong", -1, true},
      {"ULong", "Long", kMaxLong, true},
      {"ULong", "ULong", kMinLong, false},
      {"Double", "Int", 3, true},
      {"Float", "Boolean", 1, true},
      {"Int", "Boolean", 1, false},
      {"Boolean", "Int", 1, false},
      {"Boolean", "Boolean", 1, true},
      {"Char", "Int", 65, false},
      {"Char", "CodeUnit", 65, false},
      {"Char", "UInt", 65, false},
      {"Char", "Char", 65, true},
      {"Char", "Char", 0xD800, false},
      {"CodeUnit", "UShort", 65, false},
      {"CodeUnit", "CodeUnit", 0xD800, true},
      {"CodeUnit", "CodeUnit", 65536, false},
      {"CodeUnit", "CodeUnit", -1, false},
      {"UShort", "CodeUnit", 65, false},
      {"UInt", "Char", 65, false},
      {"Double", "Char", 65, false},
      {"Double", "CodeUnit", 65, false},
      {"Int", "Double", 3, false},
      {"Long", "Float", 3, false},
      {"Boolean", "Double", 1, false},
      {"Float", "Double", 3, true},
      {"Double", "ULong", -1, true},
      {"Char", "Char", 0x110000, false},
      {"Char", "Boolean", 1, false},
  };
  for (const Row& row : rows) {
    long long integer = 0;
    double floating = 0;
    EXPECT_EQ(convertPrimitiveListValueToDeclared(namedKind(row.declared).kind(), named(row.declared),
                                                  rawInteger(row.value, row.x), integer, floating),
              row.accepted)
        << row.value << ' ' << row.x << " to " << row.declared;
  }
}

bool converts(int declaredKind, const char* declaredName, int valueKind, const char* valueName, long long x, double d,
              Pair* result = nullptr) {
  Pair pair{0, 0};
  const bool accepted = convertPrimitiveListValueToDeclared(
      kindNumbered(declaredKind), named(declaredName),
      BulkPrimitiveListValue{kindNumbered(valueKind), named(valueName), x, d}, pair.integer, pair.floating);
  if (result != nullptr) *result = pair;
  return accepted;
}

TEST(ConversionTable, BooleanNeedsTheKindAndTheSameName) {
  Pair result{};
  EXPECT_TRUE(converts(11, "Boolean", 11, "Boolean", -7, 0.0, &result));
  EXPECT_EQ(result.integer, 1);
  EXPECT_EQ(result.floating, 1.0);
  EXPECT_FALSE(converts(11, "Boolean", 11, "Flag", 1, 1.0));
  EXPECT_FALSE(converts(11, "Flag", 11, "Boolean", 1, 1.0));
  EXPECT_FALSE(converts(11, "Boolean", 1, "Boolean", 1, 1.0));
}

TEST(ConversionTable, BooleanIsDecidedBeforeTheCharacterNames) {
  EXPECT_TRUE(converts(11, "CodeUnit", 11, "CodeUnit", 70000, 0.0));
  EXPECT_TRUE(converts(11, "Char", 11, "Char", 0xD800, 0.0));
}

TEST(ConversionTable, CharacterNamesDecideOverTheKinds) {
  EXPECT_TRUE(converts(7, "CodeUnit", 10, "CodeUnit", 65535, 0.0));
  EXPECT_FALSE(converts(7, "CodeUnit", 7, "CodeUnit", 65536, 0.0));
  EXPECT_TRUE(converts(1, "Char", 9, "Char", 0x10FFFF, 0.0));
  EXPECT_FALSE(converts(7, "Char", 7, "Char", 0xD800, 0.0));
  EXPECT_FALSE(converts(7, "Char", 7, "CodeUnit", 1, 1.0));
  EXPECT_FALSE(converts(7, "CodeUnit", 7, "Char", 1, 1.0));
}

TEST(ConversionTable, OtherNamesDoNotMatterToIntegersAndFloats) {
  EXPECT_TRUE(converts(5, "", 7, "", 12, 0.0));
  EXPECT_TRUE(converts(5, "Whole", 7, "Other", 12, 0.0));
  EXPECT_TRUE(converts(10, "", 9, "", 0, 2.5));
  EXPECT_TRUE(converts(10, "", 11, "", 1, 0.0));
}

TEST(ConversionTable, UnknownValueKindsAreRejected) {
  for (const int kind : {0, 12, 255}) {
    for (const int declared : {1, 5, 8, 9, 10, 11}) EXPECT_FALSE(converts(declared, "X", kind, "Y", 1, 1.0)) << kind;
  }
}

TEST(ConversionTable, DeclaredNoneAcceptsNothing) {
  for (const NamedKind& value : kNamedKinds) EXPECT_FALSE(converts(0, "Object", value.value, value.name, 1, 1.0));
  EXPECT_FALSE(converts(12, "Object", 5, "Int", 1, 1.0));
}

TEST(ConversionTable, FloatingResultIsNotNarrowed) {
  Pair result{};
  EXPECT_TRUE(converts(9, "Float", 10, "Double", 0, 0.1, &result));
  EXPECT_EQ(result.floating, 0.1);
  EXPECT_EQ(result.integer, 0);
  EXPECT_TRUE(converts(9, "Float", 10, "Double", 999, -2.75, &result));
  EXPECT_EQ(result.integer, -2) << "the integer is the truncation, whatever came with the value";
}

}  // namespace
}  // namespace vorn::tests
