// Boxes, Strings, bare texts, and the text of values.
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

#include "collections/core/port/comparison.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/text.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "tests/support/runtime_test.h"
#include "tests/support/threads.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

using Values = RuntimeTest;

constexpr const char* kIntegerTypes[] = {"SByte", "Byte", "Short", "UShort", "Int",
                                         "UInt",  "Long", "ULong", "Char",   "CodeUnit"};
constexpr auto kMinimum = std::numeric_limits<long long>::min();
constexpr auto kMaximum = std::numeric_limits<long long>::max();

TEST_F(Values, IntegerBoxes_KeepAll64BitsUnderTheirName) {
  for (const char* type : kIntegerTypes) {
    for (const long long value : {kMinimum, -1LL, 0LL, 1LL, 300LL, 1LL << 40, kMaximum}) {
      const Handle box = boxIntegerLikeLocal(internRuntimeTypeName(type), value);
      EXPECT_EQ(vorn_type_name(box), std::string("vorn.") + type);
      EXPECT_EQ(Vorn_getField_i64(box, "_value"), value) << type;
      EXPECT_EQ(getRegisteredObjectUnsafe(box)->integer, value) << type;
    }
  }
}

TEST_F(Values, BoxKinds_TellIntegersFromCharacters) {
  for (const char* type : kIntegerTypes) {
    const bool isCharacter = std::strcmp(type, "Char") == 0 || std::strcmp(type, "CodeUnit") == 0;
    EXPECT_EQ(getRegisteredObjectUnsafe(integer(type, 1))->kind(),
              isCharacter ? ObjectKind::CharacterBox : ObjectKind::IntegerBox)
        << type;
  }
  EXPECT_EQ(getRegisteredObjectUnsafe(floating("Float", 1))->kind(), ObjectKind::FloatingBox);
  EXPECT_EQ(getRegisteredObjectUnsafe(boolean(true))->kind(), ObjectKind::BooleanBox);
  EXPECT_EQ(static_cast<int>(ObjectKind::IntegerBox), 1);
}

TEST_F(Values, OtherIntegerNames_BoxAsIntOrLong) {
  for (const char* type : {"", "Foo", "app.Foo", "Double", "Ints", "int", "vorn.", "vorn.Foo", "Inz", "Shorz"}) {
    EXPECT_STREQ(vorn_type_name(Handle(boxIntegerLikeLocal(internRuntimeTypeName(type), 2147483647))), "vorn.Int")
        << type;
    EXPECT_STREQ(vorn_type_name(Handle(boxIntegerLikeLocal(internRuntimeTypeName(type), -2147483648LL))), "vorn.Int")
        << type;
    EXPECT_STREQ(vorn_type_name(Handle(boxIntegerLikeLocal(internRuntimeTypeName(type), 2147483648LL))), "vorn.Long")
        << type;
    EXPECT_STREQ(vorn_type_name(Handle(boxIntegerLikeLocal(internRuntimeTypeName(type), -2147483649LL))), "vorn.Long")
        << type;
  }
}

TEST_F(Values, FullNames_BoxAsTheirShortOnes) {
  EXPECT_STREQ(vorn_type_name(Handle(boxIntegerLikeLocal(internRuntimeTypeName("vorn.Byte"), 1))), "vorn.Byte");
  EXPECT_STREQ(vorn_type_name(Handle(boxIntegerLikeLocal(internRuntimeTypeName("vorn.Char"), 1))), "vorn.Char");
  EXPECT_EQ(boxIntegerLikeLocal(internRuntimeTypeName("vorn.Boolean"), 1), Vorn_boxBool(true));
  EXPECT_STREQ(vorn_type_name(Handle(boxFloatingLikeLocal(internRuntimeTypeName("vorn.Float"), 1))), "vorn.Float");
}

TEST_F(Values, FloatingBoxes_KeepADoubleWholeAndAFloatInSinglePrecision) {
  for (const double value : {0.0, -0.0, 0.1, 1e308, 1e-320, std::numeric_limits<double>::infinity()}) {
    for (const bool isFloat : {false, true}) {
      const char* const type = isFloat ? "Float" : "Double";
      const double kept = isFloat ? static_cast<float>(value) : value;
      for (const Handle& box :
           {Handle(boxFloatingLikeLocal(internRuntimeTypeName(type), value)), Handle(vorn_box_floating(type, value))}) {
        EXPECT_EQ(vorn_type_name(box), std::string("vorn.") + type);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(Vorn_getField_double(box, "_value")),
                  std::bit_cast<std::uint64_t>(kept));
      }
    }
  }
  for (const char* type : {"", "Int", "app.Float"}) {
    EXPECT_STREQ(vorn_type_name(Handle(boxFloatingLikeLocal(internRuntimeTypeName(type), 1))), "vorn.Double") << type;
  }
}

TEST_F(Values, Boxing_MakesANewBoxEachTime) {
  const Handle first = integer("Int", 5);
  const Handle second = integer("Int", 5);
  EXPECT_NE(first.get(), second.get());
  EXPECT_NE(floating("Double", 5).get(), first.get());
}

TEST_F(Values, Booleans_HaveTwoSharedBoxes) {
  EXPECT_EQ(Vorn_boxBool(true), Vorn_boxBool(true));
  EXPECT_NE(Vorn_boxBool(true), Vorn_boxBool(false));
  EXPECT_EQ(boxIntegerLikeLocal(internRuntimeTypeName("Boolean"), 7), Vorn_boxBool(true));
  EXPECT_EQ(boxIntegerLikeLocal(internRuntimeTypeName("Boolean"), 0), Vorn_boxBool(false));
  EXPECT_TRUE(Vorn_getField_i1(Vorn_boxBool(true), "_value"));
  EXPECT_FALSE(Vorn_getField_i1(Vorn_boxBool(false), "_value"));
  vorn_heap_collect();
  EXPECT_TRUE(isObjectPointer(Vorn_boxBool(true)));
}

TEST_F(Values, BoxedValues_ReadAsEveryNumericType) {
  const Handle number = floating("Double", -2.75);
  EXPECT_EQ(Vorn_getField_i64(number, "_value"), -2);
  EXPECT_TRUE(Vorn_getField_i1(number, "_value"));
  EXPECT_EQ(Vorn_getField_double(integer("Int", -3), "_value"), -3.0);
  EXPECT_EQ(Vorn_getField_double(integer("ULong", -1), "_value"), 0x1p64);
  EXPECT_EQ(Vorn_getField_double(boolean(true), "_value"), 1.0);
  EXPECT_EQ(Vorn_getField_i64(boolean(true), "_value"), 1);
  EXPECT_FALSE(Vorn_getField_i1(floating("Float", 0.0), "_value"));
  for (const double outside : {std::nan(""), 1e19, -1e19, 0x1p63}) {
    EXPECT_EQ(Vorn_getField_i64(floating("Double", outside), "_value"), kMinimum) << outside;
  }
  EXPECT_EQ(Vorn_getField_ptr(integer("Int", 5), "_value"), nullptr);
}

TEST_F(Values, OtherFieldsOfABox_AreMissing) {
  const Handle box = integer("Int", 5);
  for (const char* field : {"", "_", "_valu", "_value2", "value", "_Value", "size"}) {
    EXPECT_EQ(Vorn_getField_i64(box, field), 0) << field;
    EXPECT_EQ(Vorn_getField_double(box, field), 0.0) << field;
    EXPECT_FALSE(Vorn_getField_i1(box, field)) << field;
  }
  EXPECT_EQ(Vorn_getField_i64(box, nullptr), 0);
}

TEST_F(Values, BoxedValues_NeverChange) {
  const Handle box = integer("Int", 5);
  Vorn_setField_i64(box, "_value", 6);
  EXPECT_EQ(Vorn_getField_i64(box, "_value"), 5);
  Vorn_setField_i64(Vorn_boxBool(false), "_value", 1);
  EXPECT_FALSE(Vorn_getField_i1(Vorn_boxBool(false), "_value"));
  const Handle number = floating("Double", 5);
  Vorn_setField_i64(number, "_value", 6);
  EXPECT_EQ(Vorn_getField_double(number, "_value"), 5.0);
}

TEST_F(Values, Boxing_LetsBadAllocPass) {
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(boxIntegerLikeLocal(internRuntimeTypeName("Int"), 1), std::bad_alloc);
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(boxFloatingLikeLocal(internRuntimeTypeName("Double"), 1), std::bad_alloc);
}

TEST_F(Values, Strings_KeepTheirText) {
  const std::string longText(100000, 'x');
  for (const std::string& value : {std::string(), std::string("a"), std::string("grüße 🌍"), longText}) {
    const Handle made = Vorn_allocString(value);
    EXPECT_EQ(stringValueFromPtr(made), value);
    EXPECT_STREQ(Vorn_objectToString(made), value.c_str());
    EXPECT_STREQ(vorn_string_text(made), value.c_str());
  }
}

TEST_F(Values, Strings_OwnTheirTextAlone) {
  std::string value = "before";
  const Handle made = Vorn_allocString(value);
  value = "after!";
  EXPECT_STREQ(vorn_string_text(made), "before");
  const Handle copy = Vorn_allocString(vorn_string_text(made));
  EXPECT_NE(vorn_string_text(copy), vorn_string_text(made));
  vorn_heap_collect();
  for (int i = 0; i < 100; ++i) string("churn");
  EXPECT_STREQ(vorn_string_text(copy), "before");
}

TEST_F(Values, StringsWithNulBytes_KeepThemAllButEndThereForC) {
  const std::string value("a\0b", 3);
  const Handle made = Vorn_allocString(value);
  EXPECT_EQ(stringValueFromPtr(made), value);
  EXPECT_STREQ(Vorn_objectToString(made), "a");
  EXPECT_EQ(Vorn_deepEquals(made, string(value)), 1);
  EXPECT_EQ(Vorn_deepEquals(made, string("a")), 0);
}

TEST_F(Values, BareTexts_AreTheirOwnText) {
  const Handle bare = text("bare");
  EXPECT_EQ(Vorn_objectToString(bare), bare.get());
  EXPECT_EQ(stringValueFromPtr(bare), "bare");
  EXPECT_EQ(stringValueFromPtr(nullptr), "");
  EXPECT_EQ(stringValueFromPtr(integer("Int", 1)), "");
}

TEST_F(Values, BareTexts_SurviveInAList) {
  const Handle kept = object("ArrayList");
  for (int i = 0; i < 50; ++i) {
    const Handle element = text("text " + std::to_string(i));
    vorn_collections_ArrayList_add(kept, element);
  }
  vorn_heap_collect();
  for (int i = 0; i < 50; ++i) {
    EXPECT_EQ(stringValueFromPtr(vorn_collections_ArrayList_operator_index(kept, i)), "text " + std::to_string(i));
  }
}

TEST_F(Values, StrEquals_ComparesBytesAndNulls) {
  const std::string copy = "same";
  EXPECT_NE(Vorn_strEquals("same", copy.c_str()), 0);
  EXPECT_EQ(Vorn_strEquals("same", "samf"), 0);
  EXPECT_EQ(Vorn_strEquals("same", "sam"), 0);
  EXPECT_EQ(Vorn_strEquals("", nullptr), 0);
  EXPECT_EQ(Vorn_strEquals(nullptr, ""), 0);
  EXPECT_NE(Vorn_strEquals(nullptr, nullptr), 0);
}

// The text of a value; "(null)" for none.
std::string textOf(void* handle) {
  const char* result = Vorn_objectToString(handle);
  return result != nullptr ? result : "(null)";
}

TEST_F(Values, TextOfValues_IsTheirDecimalText) {
  EXPECT_EQ(textOf(integer("Int", -5)), "-5");
  EXPECT_EQ(textOf(integer("Long", kMinimum)), "-9223372036854775808");
  EXPECT_EQ(textOf(integer("ULong", -1)), "18446744073709551615");
  EXPECT_EQ(textOf(boolean(true)), "true");
  EXPECT_EQ(textOf(boolean(false)), "false");
  EXPECT_EQ(textOf(floating("Double", 0.1)), "0.1");
  EXPECT_EQ(textOf(floating("Double", 3)), "3.0");
  EXPECT_EQ(textOf(floating("Double", -0.0)), "-0.0");
  EXPECT_EQ(textOf(floating("Double", 1e300)), "1e+300");
  EXPECT_EQ(textOf(floating("Double", std::nan(""))), "NaN");
  EXPECT_EQ(textOf(floating("Float", std::numeric_limits<double>::infinity())), "Infinity");
  EXPECT_EQ(textOf(floating("Float", -std::numeric_limits<double>::infinity())), "-Infinity");
}

TEST_F(Values, TextOfCharacters_IsTheCharacter) {
  EXPECT_EQ(textOf(integer("Char", 'a')), "a");
  EXPECT_EQ(textOf(integer("Char", 0xE9)), "é");
  EXPECT_EQ(textOf(integer("CodeUnit", 0x20AC)), "€");
  EXPECT_EQ(textOf(integer("Char", 0x1F30D)), "🌍");
  for (const std::int64_t noScalar : {std::int64_t{0xD800}, std::int64_t{0x110000}, std::int64_t{-1}}) {
    EXPECT_EQ(textOf(integer("Char", noScalar)), "\uFFFD");
  }
}

TEST_F(Values, TextOfObjects_IsClassNameAndFields) {
  EXPECT_EQ(textOf(nullptr), "(null)");
  EXPECT_EQ(textOf(object("Object")), "Object");
  const Handle node = plain(4);
  EXPECT_EQ(textOf(node), "Plain(id=4, next=null)");
  Vorn_setField_ptr(node, "next", string("text"));
  EXPECT_EQ(textOf(node), "Plain(id=4, next=text)");
  Vorn_setField_ptr(node, "next", floating("Double", 2));
  EXPECT_EQ(textOf(node), "Plain(id=4, next=2.0)");
  Vorn_setField_ptr(node, "next", node);
  EXPECT_EQ(textOf(node), "Plain(id=4, next=Plain)");
}

TEST_F(Values, TextOfTypes_IsTheirName) {
  const Handle type = object("Type");
  EXPECT_EQ(textOf(type), "Type");
  Vorn_setField_ptr(type, "_name", text("Int"));
  EXPECT_EQ(textOf(type), "Int");
  Vorn_setField_ptr(type, "_fullName", string("vorn.Int"));
  EXPECT_EQ(textOf(type), "vorn.Int");
}

TEST_F(Values, TextHook_DecidesTheText) {
  const Handle object = hooked(9);
  EXPECT_EQ(textOf(object), "#9");
  userHooks.toString = [](void*) { return vorn_text_new("bare text"); };
  EXPECT_EQ(textOf(object), "bare text");
}

TEST_F(Values, TextHook_WithoutATextOrWithAnError_GivesNone) {
  const Handle object = hooked(9);
  userHooks.toString = [](void*) -> void* { return nullptr; };
  EXPECT_EQ(textOf(object), "(null)");
  userHooks.toString = [](void* self) { return self; };
  EXPECT_EQ(textOf(object), "(null)");
  userHooks.toString = [](void*) {
    vorn_raise("ValueException", "no text");
    return vorn_text_new("ignored");
  };
  EXPECT_EQ(textOf(object), "(null)");
  EXPECT_RAISED("ValueException: no text");
}

TEST_F(Values, TextHook_IsNotSpoiltByAnOlderError) {
  vorn_raise("ValueException", "older");
  EXPECT_EQ(textOf(hooked(9)), "#9");
  EXPECT_RAISED("ValueException: older");
}

TEST_F(Values, MadeByManyThreads_AreAllWhole) {
  std::atomic<int> wrong = 0;
  runTogether(4, [&](int t) {
    for (int i = 0; i < 300; ++i) {
      const Handle box = integer("Long", t * 1000 + i);
      const Handle made = string("thread " + std::to_string(i));
      if (Vorn_getField_i64(box, "_value") != t * 1000 + i) ++wrong;
      if (stringValueFromPtr(made) != "thread " + std::to_string(i)) ++wrong;
      if (Vorn_boxBool(true) == Vorn_boxBool(false)) ++wrong;
    }
  });
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace vorn::tests
