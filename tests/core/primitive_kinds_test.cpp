#include "collections/core/kinds.h"

#include <type_traits>

#include "collections/core/elements/element_types.h"
#include "collections/core/port/type_names.h"
#include "tests/core/core_test_support.h"

namespace vorn::tests {
namespace {

using collections::primitiveWidth;
using collections::visitKind;
using collections::visitWidth;

TEST(PrimitiveKinds, EnumeratorsHaveTheirFixedValues) {
  EXPECT_EQ(static_cast<int>(Kind::None), 0);
  EXPECT_EQ(static_cast<int>(Kind::SByte), 1);
  EXPECT_EQ(static_cast<int>(Kind::Byte), 2);
  EXPECT_EQ(static_cast<int>(Kind::Short), 3);
  EXPECT_EQ(static_cast<int>(Kind::UShort), 4);
  EXPECT_EQ(static_cast<int>(Kind::Int), 5);
  EXPECT_EQ(static_cast<int>(Kind::UInt), 6);
  EXPECT_EQ(static_cast<int>(Kind::Long), 7);
  EXPECT_EQ(static_cast<int>(Kind::ULong), 8);
  EXPECT_EQ(static_cast<int>(Kind::Float), 9);
  EXPECT_EQ(static_cast<int>(Kind::Double), 10);
  EXPECT_EQ(static_cast<int>(Kind::Boolean), 11);
  static_assert(std::is_same_v<std::underlying_type_t<Kind>, std::uint8_t>);
}

TEST(PrimitiveKinds, WidthsAndInlineCapacitiesFollowTheTable) {
  for (const NamedKind& row : kNamedKinds) {
    EXPECT_EQ(primitiveWidth(row.kind()), row.width) << row.name;
    EXPECT_EQ(SmallPrimitiveBuffer::kInlineBytes / primitiveWidth(row.kind()), row.inlineCapacity) << row.name;
  }
}

TEST(PrimitiveKinds, WidthOfNoneAndUnknownKindsIsOne) {
  for (const int value : {0, 12, 13, 200, 255}) EXPECT_EQ(primitiveWidth(kindNumbered(value)), 1u) << value;
}

TEST(PrimitiveKinds, EveryNameSelectsItsKind) {
  for (const NamedKind& row : kNamedKinds) EXPECT_EQ(primitiveKindForType(row.name), row.kind()) << row.name;
}

TEST(PrimitiveKinds, NameLookupComparesTheWholeStringAndItsCase) {
  for (const NamedKind& row : kNamedKinds) {
    const std::string name = row.name;
    std::string lower = name;
    std::string upper = name;
    for (char& c : lower) c = static_cast<char>(std::tolower(c));
    for (char& c : upper) c = static_cast<char>(std::toupper(c));
    for (const std::string& other : {lower, upper, name + " ", " " + name, name + "s", name + '\0',
                                     name.substr(0, name.size() - 1), "vorn." + name, "." + name, name + "<Int>"}) {
      EXPECT_EQ(primitiveKindForType(other), Kind::None) << '"' << other << '"';
    }
  }
}

TEST(PrimitiveKinds, NameLookupTakesAViewThatIsNotTerminated) {
  const std::string_view longer = "UShortcut";
  EXPECT_EQ(primitiveKindForType(longer.substr(0, 6)), Kind::UShort);
  EXPECT_EQ(primitiveKindForType(longer.substr(1, 5)), Kind::Short);
}

TEST(PrimitiveKinds, EveryOtherNameSelectsNone) {
  for (const char* name : {"", "None", "Object", "String", "Int8", "Int32", "Int64", "Integer", "UChar", "Number",
                           "Bool", "Single", "Decimal", "ArrayList<Int>", "Animal"}) {
    EXPECT_EQ(primitiveKindForType(name), Kind::None) << '"' << name << '"';
  }
}

TEST(PrimitiveKinds, NormalisedNameIsTheShortName) {
  EXPECT_EQ(normalizePrimitiveTypeName("Int"), "Int");
  EXPECT_EQ(normalizePrimitiveTypeName("vorn.Int"), "Int");
  for (const NamedKind& row : kNamedKinds) {
    EXPECT_EQ(normalizePrimitiveTypeName(row.name), row.name);
    EXPECT_EQ(normalizePrimitiveTypeName(std::string("vorn.") + row.name), row.name);
  }
  EXPECT_EQ(normalizePrimitiveTypeName("String"), "String");
  EXPECT_EQ(normalizePrimitiveTypeName("vorn.String"), "String");
  EXPECT_EQ(normalizePrimitiveTypeName("app.models.Animal"), "Animal");
  EXPECT_EQ(normalizePrimitiveTypeName("Animal"), "Animal");
  EXPECT_EQ(normalizePrimitiveTypeName("vorn.collections.ArrayList"), "ArrayList");
}

TEST(PrimitiveKinds, NormalisedNameFollowsTheRuntimesShortName) {
  for (const char* name : {"vorn.collections.ArrayList<vorn.Int>", "ArrayList<Int>", "ArrayList<app.Animal>", "a.b.c.D",
                           "vorn.Integer", "vorn.Int8", "vorn.Intx", "x.vorn.Int"}) {
    EXPECT_EQ(normalizePrimitiveTypeName(name), shortTypeNameLocal(name)) << name;
  }
}

TEST(PrimitiveKinds, EmptyNameNormalisesToObject) {
  EXPECT_EQ(normalizePrimitiveTypeName(""), "Object");
  EXPECT_EQ(normalizePrimitiveTypeName(std::string_view()), "Object");
  EXPECT_EQ(normalizePrimitiveTypeName("Object"), "Object");
}

TEST(PrimitiveKinds, NormalisedNameOfAViewStopsAtItsEnd) {
  EXPECT_EQ(normalizePrimitiveTypeName(std::string_view("vorn.Integer").substr(0, 8)), "Int");
}

TEST(PrimitiveKinds, IntLikeNamesWithAndWithoutThePrefix) {
  for (const char* name : {"Boolean", "Int", "UInt", "Long", "ULong", "Short", "UShort", "Byte", "SByte"}) {
    EXPECT_TRUE(isIntLikeListType(name)) << name;
    EXPECT_TRUE(isIntLikeListType((std::string("vorn.") + name).c_str())) << name;
    EXPECT_FALSE(isFloatLikeListType(name)) << name;
    EXPECT_FALSE(isFloatLikeListType((std::string("vorn.") + name).c_str())) << name;
  }
}

TEST(PrimitiveKinds, FloatLikeNamesWithAndWithoutThePrefix) {
  for (const char* name : {"Double", "Float"}) {
    EXPECT_TRUE(isFloatLikeListType(name)) << name;
    EXPECT_TRUE(isFloatLikeListType((std::string("vorn.") + name).c_str())) << name;
    EXPECT_FALSE(isIntLikeListType(name)) << name;
    EXPECT_FALSE(isIntLikeListType((std::string("vorn.") + name).c_str())) << name;
  }
}

TEST(PrimitiveKinds, CharactersAreNeitherIntLikeNorFloatLike) {
  for (const char* name : {"Char", "CodeUnit", "vorn.Char", "vorn.CodeUnit"}) {
    EXPECT_FALSE(isIntLikeListType(name)) << name;
    EXPECT_FALSE(isFloatLikeListType(name)) << name;
  }
}

TEST(PrimitiveKinds, NullNameIsNeitherIntLikeNorFloatLike) {
  EXPECT_FALSE(isIntLikeListType(nullptr));
  EXPECT_FALSE(isFloatLikeListType(nullptr));
}

TEST(PrimitiveKinds, PredicatesCompareExactlyAfterOnePrefix) {
  for (const char* name : {"",
                           "vorn.",
                           "vorn",
                           "int",
                           "INT",
                           "Int ",
                           " Int",
                           "Ints",
                           "In",
                           "vorn.vorn.Int",
                           "Vorn.Int",
                           "app.Int",
                           "vorn.collections.Int",
                           "Object",
                           "String",
                           "double",
                           "Doubles",
                           "vorn.float",
                           "vorn.vorn.Double",
                           "app.Float",
                           "boolean",
                           "Bool"}) {
    EXPECT_FALSE(isIntLikeListType(name)) << '"' << name << '"';
    EXPECT_FALSE(isFloatLikeListType(name)) << '"' << name << '"';
  }
}

template <class Element>
bool visits(Kind kind) {
  return visitKind(
      kind,
      [&](auto tag) { return decltype(tag)::kind == kind && std::is_same_v<typename decltype(tag)::Element, Element>; },
      false);
}

TEST(PrimitiveKinds, VisitKindPassesTheElementTypeOfTheKind) {
  EXPECT_TRUE(visits<std::int8_t>(Kind::SByte));
  EXPECT_TRUE(visits<std::uint8_t>(Kind::Byte));
  EXPECT_TRUE(visits<std::int16_t>(Kind::Short));
  EXPECT_TRUE(visits<std::uint16_t>(Kind::UShort));
  EXPECT_TRUE(visits<std::int32_t>(Kind::Int));
  EXPECT_TRUE(visits<std::uint32_t>(Kind::UInt));
  EXPECT_TRUE(visits<std::int64_t>(Kind::Long));
  EXPECT_TRUE(visits<std::uint64_t>(Kind::ULong));
  EXPECT_TRUE(visits<float>(Kind::Float));
  EXPECT_TRUE(visits<double>(Kind::Double));
  EXPECT_TRUE(visits<std::uint8_t>(Kind::Boolean));
}

TEST(PrimitiveKinds, VisitKindGivesTheFallbackForNoneAndUnknownKinds) {
  for (const int value : {0, 12, 255}) {
    EXPECT_EQ(visitKind(
                  kindNumbered(value), [](auto) { return 1; }, 7),
              7)
        << value;
    bool visited = false;
    visitKind(kindNumbered(value), [&](auto) { visited = true; });
    EXPECT_FALSE(visited) << value;
  }
}

TEST(PrimitiveKinds, VisitWidthPassesAnUnsignedIntegerOfThatWidth) {
  for (const std::uint64_t width : {1, 2, 4, 8}) {
    std::uint64_t seen = 0;
    visitWidth(width, [&](auto value) {
      static_assert(std::is_unsigned_v<decltype(value)>);
      seen = sizeof(value);
    });
    EXPECT_EQ(seen, width);
  }
  for (const std::uint64_t width : {0, 3, 5, 16}) {
    bool visited = false;
    visitWidth(width, [&](auto) { visited = true; });
    EXPECT_FALSE(visited) << width;
  }
}

}  // namespace
}  // namespace vorn::tests
