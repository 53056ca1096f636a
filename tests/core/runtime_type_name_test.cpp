#include "collections/core/port/type_name.h"

#include "collections/core/port/type_names.h"
#include "tests/core/core_test_support.h"

namespace vorn::tests {
namespace {

TEST(RuntimeTypeName, NullIsTheEmptyName) {
  const RuntimeTypeName none;
  EXPECT_EQ(none.text, nullptr);
  EXPECT_EQ(none.get(), "");
}

TEST(RuntimeTypeName, NullNamesShareOneStaticEmptyString) {
  const RuntimeTypeName one;
  const RuntimeTypeName other;
  EXPECT_EQ(&one.get(), &other.get());
}

TEST(RuntimeTypeName, GetGivesTheInternedString) {
  const RuntimeTypeName name = internRuntimeTypeName("Int");
  ASSERT_NE(name.text, nullptr);
  EXPECT_EQ(name.get(), "Int");
  EXPECT_EQ(&name.get(), name.text);
}

TEST(RuntimeTypeName, EqualNamesAreOneHandle) {
  const std::string copy = std::string("Ani") + "mal";
  EXPECT_EQ(internRuntimeTypeName("Animal").text, internRuntimeTypeName(copy).text);
  EXPECT_NE(internRuntimeTypeName("Animal").text, internRuntimeTypeName("Animals").text);
  EXPECT_TRUE(internRuntimeTypeName("Animal") == internRuntimeTypeName(copy));
  EXPECT_FALSE(internRuntimeTypeName("Animal") == internRuntimeTypeName("Plant"));
  EXPECT_FALSE(internRuntimeTypeName("Animal") == RuntimeTypeName());
}

TEST(RuntimeTypeName, TheEmptyNameInternsToNull) { EXPECT_EQ(internRuntimeTypeName("").text, nullptr); }

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
  static const std::string emptyText;
  EXPECT_TRUE(RuntimeTypeName() == std::string_view());
  EXPECT_TRUE(RuntimeTypeName() == std::string_view(""));
  EXPECT_TRUE(RuntimeTypeName{&emptyText} == std::string_view(""));
  EXPECT_FALSE(RuntimeTypeName() == std::string_view("Int"));
}

}  // namespace
}  // namespace vorn::tests
