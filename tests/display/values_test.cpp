// The display text of every kind of value, rule by rule.
#include <cmath>
#include <limits>

#include "collections/core/port/keys.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/text.h"
#include "tests/display/display_cases.h"
#include "tests/support/runtime_test.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

using Values = RuntimeTest;

Handle typeNamed(const Handle& fullName, const Handle& name) {
  Handle type = object("Type");
  EXPECT_EQ(vorn_field_set_handle(type, "_fullName", fullName), 1);
  EXPECT_EQ(vorn_field_set_handle(type, "_name", name), 1);
  return type;
}

// An object of a class without hooks and fields, which is defined when it is first asked for.
Handle instanceOf(const std::string& name) {
  vorn_class_definition definition = {};
  definition.name = name.c_str();
  defineClass(definition);
  Handle made = object(name);
  EXPECT_NE(made.get(), nullptr) << name;
  return made;
}

TEST_F(Values, Null_ShowsAsNull) { EXPECT_EQ(valueToDisplayString(nullptr), "null"); }

TEST_F(Values, BareText_IsQuotedAndEscaped) {
  EXPECT_EQ(valueToDisplayString(text("")), R"("")");
  EXPECT_EQ(valueToDisplayString(text("plain")), R"("plain")");
  EXPECT_EQ(valueToDisplayString(text("say \"hi\"\n\\\x01 é")), R"("say \"hi\"\n\\\u0001 é")");
}

TEST_F(Values, StringObject_IsQuotedAndEscaped) {
  EXPECT_EQ(valueToDisplayString(string("")), R"("")");
  EXPECT_EQ(valueToDisplayString(string("say \"hi\"\n\\\x01 é")), R"("say \"hi\"\n\\\u0001 é")");
}

TEST_F(Values, StringWithANul_ShowsAllOfIt) {
  EXPECT_EQ(valueToDisplayString(string(std::string("a\0b", 3))), R"("a\u0000b")");
}

TEST_F(Values, Boolean_ShowsAsAWord) {
  EXPECT_EQ(valueToDisplayString(boolean(true)), "true");
  EXPECT_EQ(valueToDisplayString(boolean(false)), "false");
}

TEST_F(Values, Integers_ShowInDecimalUnderTheirType) {
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  for (const char* type : {"Int", "UInt", "Long", "ULong", "Short", "UShort", "Byte", "SByte"}) {
    SCOPED_TRACE(type);
    const bool isUnsigned64 = std::string(type) == "ULong";
    EXPECT_EQ(valueToDisplayString(integer(type, 0)), "0");
    EXPECT_EQ(valueToDisplayString(integer(type, 42)), "42");
    EXPECT_EQ(valueToDisplayString(integer(type, -1)), isUnsigned64 ? "18446744073709551615" : "-1");
    EXPECT_EQ(valueToDisplayString(integer(type, kLeast)),
              isUnsigned64 ? "9223372036854775808" : "-9223372036854775808");
  }
}

TEST_F(Values, FloatingNumbers_ShowAsTheRuntimeFormatsThem) {
  for (const char* type : {"Float", "Double"}) {
    for (const double value :
         {0.0, -0.0, 1.0, 0.1, -2.5, 1e300, 5e-324, double{0.1F}, double{INFINITY}, -double{INFINITY}, std::nan("")}) {
      const Handle box = floating(type, value);
      EXPECT_EQ(valueToDisplayString(box), formatVornFloat(Vorn_getField_double(box, "_value")));
    }
  }
}

TEST_F(Values, Type_ShowsItsFullNameElseItsNameElseType) {
  EXPECT_EQ(valueToDisplayString(typeNamed(string("app.Point"), string("Point"))), "app.Point");
  EXPECT_EQ(valueToDisplayString(typeNamed(text("app.Point"), string("Point"))), "app.Point");
  EXPECT_EQ(valueToDisplayString(typeNamed(string(""), string("Point"))), "") << "an empty full name is one";
  EXPECT_EQ(valueToDisplayString(typeNamed(Handle(), string("Point"))), "Point");
  EXPECT_EQ(valueToDisplayString(typeNamed(Handle(), text("Point"))), "Point");
  EXPECT_EQ(valueToDisplayString(object("Type")), "Type");
}

TEST_F(Values, Characters_ShowThemselvesUnquoted) {
  EXPECT_EQ(valueToDisplayString(integer("Char", 'a')), "a");
  EXPECT_EQ(valueToDisplayString(integer("Char", '"')), "\"");
  EXPECT_EQ(valueToDisplayString(integer("Char", 0x1F600)), "\xF0\x9F\x98\x80");
  EXPECT_EQ(valueToDisplayString(integer("CodeUnit", 0xE9)), "é");
  EXPECT_EQ(valueToDisplayString(integer("CodeUnit", 0xD800)), "\xEF\xBF\xBD") << "half a pair is no character";
}

TEST_F(Values, Object_ShowsItsShortClassNameAndFields) {
  EXPECT_EQ(valueToDisplayString(plain(3)), "Plain(id=3, next=null)");
  EXPECT_EQ(valueToDisplayString(instanceOf("values.Bare")), "Bare");
  EXPECT_EQ(valueToDisplayString(object("Object")), "Object");
}

TEST_F(Values, ClassNameWithADollar_ShowsItsInnermostName) {
  EXPECT_EQ(valueToDisplayString(instanceOf("values.Outer$Inner")), "Inner");
  EXPECT_EQ(valueToDisplayString(instanceOf("values.Outer$Middle$Innermost")), "Innermost");
  EXPECT_EQ(valueToDisplayString(instanceOf("values.$Generated")), "Generated");
  EXPECT_EQ(valueToDisplayString(instanceOf("values.Some$Mod.Thing")), "Thing");
}

TEST_F(Values, ClassNameEndingInADollar_IsUnchanged) {
  EXPECT_EQ(valueToDisplayString(instanceOf("values.Trailing$")), "Trailing$");
  EXPECT_EQ(valueToDisplayString(instanceOf("values.A$B$")), "A$B$");
  EXPECT_EQ(valueToDisplayString(instanceOf("values.$")), "$");
  EXPECT_EQ(valueToDisplayString(instanceOf("values.Double$$")), "Double$$");
}

TEST_F(Values, ToStringHook_DecidesTheText) {
  EXPECT_EQ(valueToDisplayString(hooked(5)), "#5");
  userHooks.toString = [](void*) { return vorn_text_new("\"bare\""); };
  EXPECT_EQ(valueToDisplayString(hooked(5)), "\"bare\"") << "a hook's text is not escaped";
}

TEST_F(Values, ToStringHookWithoutAText_LeavesTheDefault) {
  userHooks.toString = [](void*) -> void* { return nullptr; };
  EXPECT_EQ(valueToDisplayString(hooked(5)), "Hooked(id=5, next=null)");
  userHooks.toString = [](void*) { return vorn_box_integer("Int", 1); };
  EXPECT_EQ(valueToDisplayString(hooked(5)), "Hooked(id=5, next=null)");
}

TEST_F(Values, ToStringHookThatRaises_LeavesTheDefaultAndTheError) {
  userHooks.toString = [](void*) -> void* {
    vorn_raise("app.Broken", "no text");
    return vorn_text_new("ignored");
  };
  EXPECT_EQ(valueToDisplayString(hooked(5)), "Hooked(id=5, next=null)");
  EXPECT_RAISED("app.Broken: no text");
}

TEST_F(Values, ErrorPendingBefore_ChangesNothing) {
  vorn_raise("app.Earlier", "pending");
  EXPECT_EQ(valueToDisplayString(hooked(5)), "#5");
  EXPECT_EQ(valueToDisplayString(list("ArrayList", {hooked(5), string("a")})), R"([#5, "a"])");
  EXPECT_RAISED("app.Earlier: pending");
}

TEST_F(Values, UserClassNamedLikeABuiltIn_ShowsAsAnObject) {
  for (const char* name :
       {"Boolean",        "String",        "Int",           "UInt",      "Long",          "ULong",
        "Short",          "UShort",        "Byte",          "SByte",     "Double",        "Float",
        "Type",           "Char",          "CodeUnit",      "ArrayList", "ArrayListSync", "LinkedList",
        "LinkedListSync", "ImmutableList", "Array",         "ArraySync", "Tuple",         "Map",
        "HashMapSync",    "SortedMap",     "SortedMapSync", "HashSet",   "HashSetSync"}) {
    SCOPED_TRACE(name);
    const Handle made = instanceOf(std::string("namesake.") + name);
    EXPECT_EQ(valueToDisplayString(made), name);
    // The null in front keeps array lists from unboxing the object's value.
    for (const Kind& kind : kKinds)
      EXPECT_EQ(display(kind, filled(kind, {Handle(), made})), shown(kind, {"null", name}));
    const Handle map = object("Map");
    vorn_collections_Map_put(map, made, made);
    EXPECT_EQ(textOf(vorn_collections_Map_toString(map)), "{" + std::string(name) + ": " + name + "}");
  }
}

TEST_F(Values, FloatingMapKeys_ShowAsNumbers) {
  for (const char* type : {"Float", "Double"}) {
    for (const double value : {1.0, 0.1, -2.5e-7, 1e300, double{INFINITY}, std::nan("")}) {
      const Handle map = object("Map");
      const Handle key = floating(type, value);
      vorn_collections_Map_put(map, key, integer("Int", 1));
      EXPECT_EQ(textOf(vorn_collections_Map_toString(map)), "{" + mapKeyString(key) + ": 1}");
      EXPECT_EQ(mapKeyString(key), formatVornFloat(Vorn_getField_double(key, "_value")));
    }
  }
}

TEST_F(Values, ElementsOfSets_ShowTheirLanguageText) {
  const Handle set = object("HashSet");
  for (const Handle& element : {string("a \"text\""), text("b \"bare\""), Handle(hooked(1)), Handle(plain(2)),
                                typeNamed(string("app.T"), Handle()), instanceOf("values.Outer$Inner"),
                                list("ArrayList", {string("quoted")})}) {
    vorn_collections_HashSet_add(set, element);
  }
  EXPECT_EQ(textOf(vorn_collections_HashSet_toString(set)),
            R"({a "text", "b \"bare\"", #1, Plain(id=2, next=null), app.T, Outer$Inner, ["quoted"]})");
}

TEST_F(Values, ElementOfASetWithoutAText_ShowsAsNull) {
  userHooks.toString = [](void*) -> void* { return nullptr; };
  const Handle set = object("HashSet");
  vorn_collections_HashSet_add(set, hooked(1));
  EXPECT_EQ(textOf(vorn_collections_HashSet_toString(set)), "{null}");
  userHooks.toString = [](void*) -> void* {
    vorn_raise("app.Broken", "no text");
    return vorn_text_new("ignored");
  };
  EXPECT_EQ(textOf(vorn_collections_HashSet_toString(set)), "{null}");
  EXPECT_RAISED("app.Broken: no text");
}

}  // namespace
}  // namespace vorn::tests
