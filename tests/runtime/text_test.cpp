// The texts that the runtime makes: escapes, numbers, objects.
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "collections/core/port/text.h"
#include "tests/support/runtime_test.h"
#include "tests/support/sequences.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

using Texts = RuntimeTest;

TEST_F(Texts, ControlCharacters_AreEscaped) {
  constexpr const char* kNamed[] = {"\\b", "\\t", "\\n", nullptr, "\\f", "\\r"};
  constexpr const char* kDigits = "0123456789abcdef";
  for (int c = 0; c < 0x20; ++c) {
    const std::string numbered = std::string("\\u00") + kDigits[c / 16] + kDigits[c % 16];
    const char* named = c >= 8 && c <= 13 ? kNamed[c - 8] : nullptr;
    EXPECT_EQ(escapeDisplayString(std::string(1, static_cast<char>(c))), named != nullptr ? named : numbered) << c;
  }
}

TEST_F(Texts, QuotesAndBackslashes_AreEscaped) {
  EXPECT_EQ(escapeDisplayString("\""), "\\\"");
  EXPECT_EQ(escapeDisplayString("\\"), "\\\\");
  EXPECT_EQ(escapeDisplayString("\"\\\"n"), R"(\"\\\"n)");
}

TEST_F(Texts, AllOtherBytes_AreKept) {
  for (int c = 0x20; c < 0x100; ++c) {
    if (c == '"' || c == '\\') continue;
    const std::string one(1, static_cast<char>(c));
    EXPECT_EQ(escapeDisplayString(one), one) << c;
  }
  EXPECT_EQ(escapeDisplayString("'/é€\xF0\x9F\x98\x80\x7F"), "'/é€\xF0\x9F\x98\x80\x7F");
  EXPECT_EQ(escapeDisplayString(""), "");
}

TEST_F(Texts, EscapesInALongText_StandInTheirPlaces) {
  std::string plain;
  std::string escaped;
  for (int i = 0; i < 1000; ++i) {
    plain += "a\n";
    escaped += "a\\n";
  }
  EXPECT_EQ(escapeDisplayString(plain), escaped);
}

TEST_F(Texts, Integers_AreDecimalAndULongUnsigned) {
  constexpr long long kLeastLong = std::numeric_limits<long long>::min();
  constexpr long long kMost = std::numeric_limits<long long>::max();
  for (const char* type : {"Int", "UInt", "Long", "Short", "UShort", "Byte", "SByte", "", "Foo", "ulong"}) {
    EXPECT_EQ(integerLikeToDisplayString(type, 0), "0");
    EXPECT_EQ(integerLikeToDisplayString(type, -1), "-1");
    EXPECT_EQ(integerLikeToDisplayString(type, kLeastLong), "-9223372036854775808");
    EXPECT_EQ(integerLikeToDisplayString(type, kMost), "9223372036854775807");
  }
  EXPECT_EQ(integerLikeToDisplayString("ULong", 0), "0");
  EXPECT_EQ(integerLikeToDisplayString("ULong", -1), "18446744073709551615");
  EXPECT_EQ(integerLikeToDisplayString("ULong", kLeastLong), "9223372036854775808");
}

TEST_F(Texts, FloatingNumbers_HaveAPointOrAnExponent) {
  EXPECT_EQ(formatVornFloat(0.0), "0.0");
  EXPECT_EQ(formatVornFloat(-0.0), "-0.0");
  EXPECT_EQ(formatVornFloat(1), "1.0");
  EXPECT_EQ(formatVornFloat(-17), "-17.0");
  EXPECT_EQ(formatVornFloat(0.1), "0.1");
  EXPECT_EQ(formatVornFloat(1e21), "1e+21");
  EXPECT_EQ(formatVornFloat(5e-324), "5e-324");
  EXPECT_EQ(formatVornFloat(1.7976931348623157e308), "1.7976931348623157e+308");
}

TEST_F(Texts, SpecialFloatingNumbers_HaveNames) {
  EXPECT_EQ(formatVornFloat(std::nan("")), "NaN");
  EXPECT_EQ(formatVornFloat(-std::nan("")), "NaN");
  EXPECT_EQ(formatVornFloat(INFINITY), "Infinity");
  EXPECT_EQ(formatVornFloat(-INFINITY), "-Infinity");
}

TEST_F(Texts, FloatingNumbers_ReadBack) {
  std::mt19937_64 random(5);
  for (int i = 0; i < 20000; ++i) {
    const double value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    const std::string text = formatVornFloat(value);
    double back = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), back).ptr;
    ASSERT_EQ(end, text.data() + text.size()) << text;
    ASSERT_EQ(std::bit_cast<std::uint64_t>(back), std::bit_cast<std::uint64_t>(value)) << text;
    ASSERT_NE(text.find_first_of(".e"), std::string::npos) << text;
  }
}

TEST_F(Texts, DefaultOfAnObject_NamesClassAndFields) {
  EXPECT_EQ(formatObjectDefault(plain(3), "Plain"), "Plain(id=3, next=null)");
  EXPECT_EQ(formatObjectDefault(plain(-3), "Other"), "Other(id=-3, next=null)") << "the class name is the caller's";
  EXPECT_EQ(formatObjectDefault(object("Object"), "Object"), "Object");
}

TEST_F(Texts, FieldsOfTheDefault_ShowTextsAndValuesAndTheNamesOfObjects) {
  const Handle made = plain(1);
  const auto withNext = [&](const Handle& next) {
    EXPECT_EQ(vorn_field_set_handle(made, "next", next), 1);
    return formatObjectDefault(made, "P");
  };
  EXPECT_EQ(withNext(string("a\"b")), "P(id=1, next=a\"b)");
  EXPECT_EQ(withNext(text("bare")), "P(id=1, next=bare)");
  EXPECT_EQ(withNext(integer("ULong", -1)), "P(id=1, next=18446744073709551615)");
  EXPECT_EQ(withNext(floating("Double", 2)), "P(id=1, next=2.0)");
  EXPECT_EQ(withNext(boolean(true)), "P(id=1, next=true)");
  EXPECT_EQ(withNext(integer("Char", 0xE9)), "P(id=1, next=é)");
  EXPECT_EQ(withNext(list("ArrayList", {string("a")})), "P(id=1, next=ArrayList)");
  EXPECT_EQ(withNext(hooked(2)), "P(id=1, next=Hooked)");
  EXPECT_EQ(withNext(made), "P(id=1, next=Plain)") << "objects that refer to themselves come to an end";
}

TEST_F(Texts, DefaultOfAnObjectWithAHook_IsTheHooksText) {
  EXPECT_EQ(formatObjectDefault(hooked(4), "Hooked"), "#4");
  userHooks.toString = [](void*) -> void* { return nullptr; };
  EXPECT_EQ(formatObjectDefault(hooked(4), "Inner"), "Inner(id=4, next=null)");
  userHooks.toString = [](void*) -> void* {
    vorn_raise("app.Broken", "no text");
    return vorn_text_new("ignored");
  };
  EXPECT_EQ(formatObjectDefault(hooked(4), "Inner"), "Inner(id=4, next=null)");
  EXPECT_RAISED("app.Broken: no text");
}

TEST_F(Texts, DefaultOfABox_IsItsValue) {
  EXPECT_EQ(formatObjectDefault(integer("Char", 'x'), "Char"), "x");
  EXPECT_EQ(formatObjectDefault(integer("CodeUnit", 0xDC00), "CodeUnit"), "\xEF\xBF\xBD");
  EXPECT_EQ(formatObjectDefault(integer("Int", 7), "Int"), "7");
}

TEST_F(Texts, Characters_AreUtf8) {
  const auto shown = [](std::int64_t scalar) { return std::string(Vorn_objectToString(integer("Char", scalar))); };
  EXPECT_EQ(shown(0x7F), "\x7F");
  EXPECT_EQ(shown(0x80), "\xC2\x80");
  EXPECT_EQ(shown(0x7FF), "\xDF\xBF");
  EXPECT_EQ(shown(0x800), "\xE0\xA0\x80");
  EXPECT_EQ(shown(0xFFFF), "\xEF\xBF\xBF");
  EXPECT_EQ(shown(0x10000), "\xF0\x90\x80\x80");
  EXPECT_EQ(shown(0x10FFFF), "\xF4\x8F\xBF\xBF");
  for (const std::int64_t none :
       {std::int64_t{0xD800}, std::int64_t{0xDFFF}, std::int64_t{0x110000}, std::int64_t{-1}}) {
    EXPECT_EQ(shown(none), "\xEF\xBF\xBD") << none;
  }
}

TEST_F(Texts, LanguageTextOfNull_IsNone) { EXPECT_EQ(Vorn_objectToString(nullptr), nullptr); }

TEST_F(Texts, LanguageTextOfATextIsItself) {
  const Handle bare = text("bare \"text\"");
  EXPECT_EQ(static_cast<const void*>(Vorn_objectToString(bare)), bare.get());
  EXPECT_STREQ(Vorn_objectToString(string("a \"string\"")), "a \"string\"");
}

TEST_F(Texts, LanguageTextOfValues) {
  EXPECT_STREQ(Vorn_objectToString(integer("Int", -5)), "-5");
  EXPECT_STREQ(Vorn_objectToString(integer("ULong", -1)), "18446744073709551615");
  EXPECT_STREQ(Vorn_objectToString(floating("Float", 3)), "3.0");
  EXPECT_STREQ(Vorn_objectToString(boolean(false)), "false");
  EXPECT_STREQ(Vorn_objectToString(object("Type")), "Type");
}

TEST_F(Texts, LanguageTextOfObjects) {
  EXPECT_STREQ(Vorn_objectToString(plain(3)), "Plain(id=3, next=null)");
  EXPECT_STREQ(Vorn_objectToString(hooked(3)), "#3");
  userHooks.toString = [](void*) -> void* { return nullptr; };
  EXPECT_EQ(Vorn_objectToString(hooked(3)), nullptr);
  userHooks.toString = [](void*) { return vorn_box_integer("Int", 3); };
  EXPECT_EQ(Vorn_objectToString(hooked(3)), nullptr) << "a number is no text";
}

TEST_F(Texts, LanguageTextOfCollections_IsTheirDisplay) {
  constexpr const char* kEmpty[][2] = {
      {"ArrayList", "[]"},         {"ArrayListSync", "[]"},   {"LinkedList", "l:[]"},
      {"LinkedListSync", "ls:[]"}, {"ImmutableList", "i:[]"}, {"Tuple", "()"},
      {"HashSet", "{}"},           {"HashSetSync", "s:{}"},   {"Map", "{}"},
      {"HashMapSync", "s:{}"},     {"SortedMap", "t:{}"},     {"SortedMapSync", "ts:{}"},
      {"Array", "f:[]"},           {"ArraySync", "fs:[]"},    {"ArrayList<String>", "[]"},
      {"Map<Int, Int>", "{}"},
  };
  for (const auto& [type, expected] : kEmpty) EXPECT_STREQ(Vorn_objectToString(object(type)), expected) << type;
  EXPECT_STREQ(Vorn_objectToString(list("ArrayListSync", {string("a"), integer("Int", 1)})), R"(s:["a", 1])");
  EXPECT_STREQ(Vorn_objectToString(tupleOf({text("a")})), R"(("a",))");
}

}  // namespace
}  // namespace vorn::tests
