#include "collections/core/port/type_name.h"

#include "collections/core/elements/element_types.h"
#include "collections/core/port/type_names.h"
#include "tests/core/core_test_support.h"

namespace vorn::tests {
namespace {

using namespace vorn::collections;

TEST(RuntimeTypeName, NullIsTheEmptyName) {
  const RuntimeTypeName none;
  EXPECT_EQ(none.name, nullptr);
  EXPECT_EQ(none.get(), "");
}

TEST(RuntimeTypeName, NullNamesShareOneStaticEmptyString) {
  const RuntimeTypeName one;
  const RuntimeTypeName other;
  ASSERT_NE(one.get().data(), nullptr);
  EXPECT_EQ(one.get().data(), other.get().data());
  EXPECT_STREQ(one.get().data(), "");
}

TEST(RuntimeTypeName, GetGivesTheInternedString) {
  for (const char* text : {"Int", "Object", "Animal", "zoo.Animal"}) {
    const RuntimeTypeName name = internRuntimeTypeName(text);
    ASSERT_NE(name.name, nullptr);
    EXPECT_EQ(name.get(), text);
    EXPECT_EQ(name.get().data(), name.name->text.data());
    EXPECT_STREQ(name.get().data(), text);  // NUL-terminated
  }
}

TEST(RuntimeTypeName, NamesOfPrimitiveTypesKnowTheirType) {
  for (std::size_t i = 1; i < kPrimitiveTypes; ++i) {
    const auto type = static_cast<PrimitiveType>(i);
    const RuntimeTypeName name = internRuntimeTypeName(infoOf(type).name);
    EXPECT_EQ(name.primitiveType(), type);
    EXPECT_EQ(name, typeNameOf(type));
    EXPECT_EQ(name.shortForm(), name);
  }
}

TEST(RuntimeTypeName, OtherNamesHaveNoPrimitiveType) {
  for (const char* text : {"Object", "String", "int", "Ints", "In", "vorn.Int", "Animal", "CodeUnits", "CodeUni"}) {
    EXPECT_EQ(internRuntimeTypeName(text).primitiveType(), PrimitiveType::None) << text;
  }
  EXPECT_EQ(RuntimeTypeName().primitiveType(), PrimitiveType::None);
  const std::string_view behindNul("\0Int", 4);
  EXPECT_EQ(internRuntimeTypeName(behindNul).primitiveType(), PrimitiveType::None);
  EXPECT_EQ(internRuntimeTypeName(std::string_view("Int\0", 4)).primitiveType(), PrimitiveType::None);
}

TEST(RuntimeTypeName, RefersToItsCanonicalShortForm) {
  for (const char* text : {"Int", "vorn.Int", "zoo.Animal", "Animal", "Map<zoo.Animal,Int>", "a.b.c", "zoo.", "."}) {
    EXPECT_EQ(normalizedTypeName(internRuntimeTypeName(text)), normalizePrimitiveTypeName(text)) << text;
  }
  EXPECT_EQ(normalizedTypeName(RuntimeTypeName()), "Object");
  EXPECT_EQ(internRuntimeTypeName("vorn.Int").shortForm(), internRuntimeTypeName("Int"));
  EXPECT_EQ(RuntimeTypeName().shortForm(), RuntimeTypeName());
}

TEST(RuntimeTypeName, EqualNamesAreOneHandle) {
  const std::string copy = std::string("Ani") + "mal";
  EXPECT_EQ(internRuntimeTypeName("Animal").name, internRuntimeTypeName(copy).name);
  EXPECT_NE(internRuntimeTypeName("Animal").name, internRuntimeTypeName("Animals").name);
  EXPECT_TRUE(internRuntimeTypeName("Animal") == internRuntimeTypeName(copy));
  EXPECT_FALSE(internRuntimeTypeName("Animal") == internRuntimeTypeName("Plant"));
  EXPECT_FALSE(internRuntimeTypeName("Animal") == RuntimeTypeName());
}

TEST(RuntimeTypeName, TheEmptyNameInternsToNull) { EXPECT_EQ(internRuntimeTypeName("").name, nullptr); }

TEST(RuntimeTypeName, ComparesWithAViewByLengthAndBytes) {
  const RuntimeTypeName name = internRuntimeTypeName("Short");
  const std::string_view longer = "UShorts";
  EXPECT_TRUE(name == std::string_view("Short"));
  EXPECT_TRUE(name == longer.substr(1, 5));
  EXPECT_FALSE(name == std::string_view("Shor"));
  EXPECT_FALSE(name == longer.substr(1));
  EXPECT_FALSE(name == std::string_view("short"));
  EXPECT_FALSE(name == std::string_view("Shorx"));
  EXPECT_FALSE(name == std::string_view());
  EXPECT_FALSE(name == std::string_view("Short\0", 6));
}

TEST(RuntimeTypeName, AnEmptyViewEqualsANullOrEmptyName) {
  static const InternedTypeName emptyName;
  EXPECT_TRUE(RuntimeTypeName() == std::string_view());
  EXPECT_TRUE(RuntimeTypeName() == std::string_view(""));
  EXPECT_TRUE(RuntimeTypeName{&emptyName} == std::string_view(""));
  EXPECT_FALSE(RuntimeTypeName() == std::string_view("Int"));
}

}  // namespace
}  // namespace vorn::tests
