// User classes: definition, inheritance of fields and hooks, names.
#include <array>
#include <string>
#include <vector>

#include "collections/core/port/comparison.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/text.h"
#include "collections/core/port/type_names.h"
#include "tests/support/runtime_test.h"

namespace vorn::tests {
namespace {

using Classes = RuntimeTest;

vorn_class_definition named(const char* name, const char* base = nullptr) {
  vorn_class_definition definition = {};
  definition.struct_size = sizeof(definition);
  definition.name = name;
  definition.base_name = base;
  return definition;
}

template <std::size_t kFields>
vorn_class_definition withFields(const char* name, const std::array<vorn_field_definition, kFields>& fields,
                                 const char* base = nullptr) {
  vorn_class_definition definition = named(name, base);
  definition.fields = fields.data();
  definition.field_count = kFields;
  return definition;
}

bool define(const vorn_class_definition& definition) { return vorn_class_define(&definition) != 0; }

TEST_F(Classes, Definition_MakesAClassKnownByBothNames) {
  ASSERT_TRUE(define(named("shapes.Circle")));
  for (const char* name : {"shapes.Circle", "Circle"}) {
    const Handle circle = object(name);
    EXPECT_STREQ(vorn_type_name(circle), "shapes.Circle");
    EXPECT_EQ(getObject(circle)->kind(), ObjectKind::Instance);
  }
}

TEST_F(Classes, Definition_CopiesItsTexts) {
  std::string name = "copied.Name";
  std::string field = "field";
  ASSERT_TRUE(define(withFields(name.c_str(), std::array{vorn_field_definition{field.c_str(), VORN_FIELD_INTEGER}})));
  name.assign("xxxxxxxxxxx");
  field.assign("yyyyy");
  const Handle made = object("copied.Name");
  EXPECT_STREQ(vorn_type_name(made), "copied.Name");
  EXPECT_EQ(vorn_field_set_integer(made, "field", 1), 1);
}

TEST_F(Classes, MalformedDefinitions_AreRefused) {
  EXPECT_EQ(vorn_class_define(nullptr), 0);
  for (const char* name : {"", ".", "a.", ".a", "a..b", "a b", "a<b>", "1a", "a.1", "a-b", "a\"", "a.b "}) {
    EXPECT_FALSE(define(named(name))) << name;
  }
  EXPECT_FALSE(define(named(nullptr)));
  vorn_class_definition small = named("refused.Small");
  small.struct_size = sizeof(small) - 1;
  EXPECT_FALSE(define(small));
  vorn_class_definition noFields = named("refused.NoFields");
  noFields.field_count = 1;
  EXPECT_FALSE(define(noFields));
  vorn_class_definition manyFields =
      withFields("refused.Many", std::array{vorn_field_definition{"a", VORN_FIELD_HANDLE}});
  manyFields.field_count = SIZE_MAX / 2;
  EXPECT_FALSE(define(manyFields));
  const auto unknown = static_cast<vorn_field_type>(3);
  EXPECT_FALSE(define(withFields("refused.Kind", std::array{vorn_field_definition{"a", unknown}})));
  for (const char* field : {"", "a b", "1", "a.b"}) {
    EXPECT_FALSE(define(withFields("refused.Field", std::array{vorn_field_definition{field, VORN_FIELD_INTEGER}})));
  }
  EXPECT_FALSE(define(withFields("refused.Field", std::array{vorn_field_definition{nullptr, VORN_FIELD_INTEGER}})));
  EXPECT_EQ(object("refused.Small").get(), nullptr);
  EXPECT_EQ(object("Field").get(), nullptr);
}

TEST_F(Classes, UnusualNames_AreTaken) {
  for (const char* name : {"ünusual.Größe", "a$b.C$1", "_", "$", "alone"}) EXPECT_TRUE(define(named(name))) << name;
}

TEST_F(Classes, TakenNames_AreRefused) {
  ASSERT_TRUE(define(named("taken.Once")));
  EXPECT_FALSE(define(named("taken.Once")));
  EXPECT_FALSE(define(named("Once")));  // stands for taken.Once
  for (const char* name : {"Int", "vorn.Int", "String", "Object", "ArrayList", "vorn.collections.ArrayList", "Tuple",
                           "IList", "vorn.collections.HashSetSync"}) {
    EXPECT_FALSE(define(named(name))) << name;
  }
}

TEST_F(Classes, RefusedFields_DuplicatesInTheClassOrItsBase) {
  const std::array twice{vorn_field_definition{"a", VORN_FIELD_INTEGER}, vorn_field_definition{"a", VORN_FIELD_HANDLE}};
  EXPECT_FALSE(define(withFields("dup.Twice", twice)));
  const std::array once{vorn_field_definition{"a", VORN_FIELD_INTEGER}};
  ASSERT_TRUE(define(withFields("dup.Base", once)));
  EXPECT_FALSE(define(withFields("dup.Derived", once, "dup.Base")));
}

TEST_F(Classes, Base_IsAUserClassByEitherName) {
  ASSERT_TRUE(define(named("bases.First")));
  EXPECT_TRUE(define(named("bases.Second", "bases.First")));
  EXPECT_TRUE(define(named("bases.Third", "Second")));
  for (const char* base : {"", "bases.Unknown", "Int", "vorn.String", "ArrayList", "ArrayList<Int>", "Object"}) {
    EXPECT_FALSE(define(named("bases.Refused", base))) << base;
  }
  const Handle third = object("bases.Third");
  for (const char* name : {"bases.Third", "Third", "bases.Second", "Second", "bases.First", "First", "Object"}) {
    EXPECT_TRUE(vorn_is_instance(third, name)) << name;
  }
  EXPECT_FALSE(vorn_is_instance(object("bases.First"), "bases.Second"));
}

TEST_F(Classes, Fields_OfTheBaseComeFirstAndAllKeepTheirValues) {
  ASSERT_TRUE(define(withFields("layout.Base", std::array{vorn_field_definition{"integer", VORN_FIELD_INTEGER},
                                                          vorn_field_definition{"handle", VORN_FIELD_HANDLE}})));
  ASSERT_TRUE(define(withFields("layout.Derived",
                                std::array{vorn_field_definition{"floating", VORN_FIELD_FLOATING},
                                           vorn_field_definition{"other", VORN_FIELD_INTEGER}},
                                "layout.Base")));
  const Handle made = object("layout.Derived");
  const Handle kept = string("kept");
  EXPECT_EQ(vorn_field_set_integer(made, "integer", 1), 1);
  EXPECT_EQ(vorn_field_set_handle(made, "handle", kept), 1);
  EXPECT_EQ(vorn_field_set_floating(made, "floating", 2.5), 1);
  EXPECT_EQ(vorn_field_set_integer(made, "other", 4), 1);
  EXPECT_STREQ(Vorn_objectToString(made), "Derived(integer=1, handle=kept, floating=2.5, other=4)");
  EXPECT_EQ(Vorn_getField_i64(made, "floating"), 2);
  EXPECT_EQ(Vorn_getField_double(made, "other"), 4.0);
  Vorn_setField_i64(made, "floating", 7);
  EXPECT_EQ(Vorn_getField_double(made, "floating"), 7.0);
  EXPECT_EQ(object("layout.Base").get() != nullptr, true);
}

TEST_F(Classes, ManyFields_AllHaveAPlaceOfTheirOwn) {
  std::vector<std::string> names;
  std::vector<vorn_field_definition> fields;
  names.reserve(300);
  for (int i = 0; i < 300; ++i) {
    names.push_back("f" + std::to_string(i));
    fields.push_back({names.back().c_str(), VORN_FIELD_INTEGER});
  }
  vorn_class_definition definition = named("wide.Class");
  definition.fields = fields.data();
  definition.field_count = fields.size();
  ASSERT_TRUE(define(definition));
  const Handle made = object("wide.Class");
  for (int i = 0; i < 300; ++i) Vorn_setField_i64(made, names[i].c_str(), i);
  for (int i = 0; i < 300; ++i) EXPECT_EQ(Vorn_getField_i64(made, names[i].c_str()), i);
}

// Hooks that tell whose context they were given.
void* contextAsText(void*, void* context) { return vorn_text_new(static_cast<const char*>(context)); }
bool alwaysEqual(void*, void*, void*) { return true; }

TEST_F(Classes, Hooks_AreInheritedWithTheContextOfTheirClass) {
  static char baseContext[] = "of the base";
  static char derivedContext[] = "of the derived class";
  vorn_class_definition base = named("hooks.Base");
  base.context = baseContext;
  base.to_string = contextAsText;
  ASSERT_TRUE(define(base));
  vorn_class_definition derived = named("hooks.Derived", "hooks.Base");
  derived.context = derivedContext;
  derived.equals = alwaysEqual;
  ASSERT_TRUE(define(derived));
  vorn_class_definition overriding = named("hooks.Overriding", "hooks.Derived");
  overriding.context = derivedContext;
  overriding.to_string = contextAsText;
  ASSERT_TRUE(define(overriding));

  EXPECT_STREQ(Vorn_objectToString(object("hooks.Derived")), "of the base");
  EXPECT_STREQ(Vorn_objectToString(object("hooks.Overriding")), "of the derived class");
  EXPECT_EQ(vorn_equals(object("hooks.Overriding"), object("hooks.Overriding")), 1);
  EXPECT_EQ(vorn_equals(object("hooks.Base"), object("hooks.Base")), 0);
}

TEST_F(Classes, SharedShortNames_StandForTheClassDefinedFirst) {
  ASSERT_TRUE(define(named("one.Shared")));
  ASSERT_TRUE(define(named("two.Shared")));
  EXPECT_STREQ(vorn_type_name(object("Shared")), "one.Shared");
  EXPECT_STREQ(vorn_type_name(object("two.Shared")), "two.Shared");
  // An instance test by short name means every class so called, as a list declared with it does.
  EXPECT_TRUE(vorn_is_instance(object("two.Shared"), "Shared"));
  EXPECT_FALSE(vorn_is_instance(object("two.Shared"), "one.Shared"));
  const Handle list = object("ArrayList<two.Shared>");
  vorn_collections_ArrayList_add(list, object("two.Shared"));
  EXPECT_EQ(vorn_collections_ArrayList_size(list), 1);
}

TEST_F(Classes, BuiltInShortNames_StayWithTheBuiltInClasses) {
  ASSERT_TRUE(define(named("mine.Int")));
  ASSERT_TRUE(define(named("mine.ArrayList")));
  EXPECT_STREQ(vorn_type_name(object("Int")), "vorn.Int");
  EXPECT_STREQ(vorn_type_name(object("ArrayList")), "vorn.collections.ArrayList");
  const Handle mine = object("mine.Int");
  EXPECT_TRUE(vorn_is_instance(mine, "mine.Int"));
  EXPECT_FALSE(vorn_is_instance(mine, "Int"));
  EXPECT_FALSE(isArrayListLike(vorn_type_name(object("mine.ArrayList"))));
  NativeNumericValue number{};
  EXPECT_FALSE(tryReadNativeNumericValue(mine, number));
}

TEST_F(Classes, NamesDefinedLate_AreFoundThen) {
  EXPECT_EQ(object("late.Comer").get(), nullptr);
  const Handle list = object("ArrayList<late.Comer>");
  ASSERT_NE(list.get(), nullptr);
  ASSERT_TRUE(define(named("late.Comer")));
  vorn_collections_ArrayList_add(list, object("late.Comer"));
  EXPECT_EQ(vorn_collections_ArrayList_size(list), 1);
}

TEST_F(Classes, Arrays_HaveInstances) {
  for (const char* name : {"Array", "Array<Int>", "ArraySync"}) {
    const Handle made = object(name);
    ASSERT_NE(made.get(), nullptr) << name;
    EXPECT_EQ(getObject(made)->kind(), ObjectKind::Array);
  }
}

}  // namespace
}  // namespace vorn::tests
