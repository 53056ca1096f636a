// The C embedding API, function by function: what it answers, what it refuses, and that it never throws.
#include <cmath>
#include <cstring>
#include <limits>

#include "collections/core/port/object_layout.h"
#include "tests/support/held_mutex.h"
#include "tests/support/runtime_test.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

using Embedding = RuntimeTest;

TEST_F(Embedding, BoxInteger_TakesEveryIntegerLikeTypeByEitherName) {
  for (const std::string type :
       {"SByte", "Byte", "Short", "UShort", "Int", "UInt", "Long", "ULong", "Char", "CodeUnit"}) {
    for (const std::string& name : {type, "vorn." + type}) {
      const Handle box = vorn_box_integer(name.c_str(), std::numeric_limits<std::int64_t>::min());
      EXPECT_EQ(vorn_type_name(box), "vorn." + type);
      std::int64_t value = 0;
      EXPECT_EQ(vorn_unbox_integer(box, &value), 1);
      EXPECT_EQ(value, std::numeric_limits<std::int64_t>::min());
    }
  }
  EXPECT_EQ(vorn_box_integer("Boolean", 5), vorn_box_boolean(true));
  EXPECT_EQ(vorn_box_integer("vorn.Boolean", 0), vorn_box_boolean(false));
}

TEST_F(Embedding, BoxInteger_RefusesOtherNames) {
  for (const char* name : {"", "int", "Double", "Float", "String", "app.Int", "vorn.vorn.Int", "vorn."}) {
    EXPECT_EQ(vorn_box_integer(name, 1), nullptr) << name;
  }
  EXPECT_EQ(vorn_box_integer(nullptr, 1), nullptr);
}

TEST_F(Embedding, BoxFloating_TakesFloatAndDoubleOnly) {
  for (const char* name : {"Float", "Double", "vorn.Float", "vorn.Double"}) {
    double value = 0;
    EXPECT_EQ(vorn_unbox_floating(Handle(vorn_box_floating(name, 0.1)), &value), 1) << name;
    EXPECT_EQ(value, std::string_view(name).ends_with("Float") ? double{0.1F} : 0.1);
  }
  for (const char* name : {"", "Int", "Boolean", "double"}) EXPECT_EQ(vorn_box_floating(name, 1), nullptr) << name;
  EXPECT_EQ(vorn_box_floating(nullptr, 1), nullptr);
}

TEST_F(Embedding, Unboxing_RefusesOtherTypesAndLeavesTheValueAlone) {
  std::int64_t integerValue = 77;
  double floatingValue = 7.5;
  bool booleanValue = true;
  for (const Handle& handle : {Handle(nullptr), string("1"), text("1"), plain(1), object("ArrayList")}) {
    EXPECT_EQ(vorn_unbox_integer(handle, &integerValue), 0);
    EXPECT_EQ(vorn_unbox_floating(handle, &floatingValue), 0);
    EXPECT_EQ(vorn_unbox_boolean(handle, &booleanValue), 0);
  }
  EXPECT_EQ(vorn_unbox_integer(floating("Double", 1), &integerValue), 0);
  EXPECT_EQ(vorn_unbox_floating(integer("Int", 1), &floatingValue), 0);
  EXPECT_EQ(vorn_unbox_boolean(integer("Int", 0), &booleanValue), 0);
  EXPECT_EQ(integerValue, 77);
  EXPECT_EQ(floatingValue, 7.5);
  EXPECT_TRUE(booleanValue);
  EXPECT_EQ(vorn_unbox_integer(integer("Int", 1), nullptr), 0);
  EXPECT_EQ(vorn_unbox_floating(floating("Double", 1), nullptr), 0);
  EXPECT_EQ(vorn_unbox_boolean(boolean(true), nullptr), 0);
}

TEST_F(Embedding, UnboxBoolean_ReadsBooleans) {
  for (const bool expected : {true, false}) {
    bool value = !expected;
    std::int64_t number = -1;
    EXPECT_EQ(vorn_unbox_boolean(boolean(expected), &value), 1);
    EXPECT_EQ(value, expected);
    EXPECT_EQ(vorn_unbox_integer(boolean(expected), &number), 1);
    EXPECT_EQ(number, expected ? 1 : 0);
  }
}

TEST_F(Embedding, Strings_TakeALengthOrEndAtTheNul) {
  EXPECT_STREQ(vorn_string_text(Handle(vorn_string_new("hello world", 5))), "hello");
  EXPECT_STREQ(vorn_string_text(Handle(vorn_string_new("hello", SIZE_MAX))), "hello");
  EXPECT_STREQ(vorn_string_text(Handle(vorn_string_new("", 0))), "");
  EXPECT_EQ(vorn_string_new(nullptr, 0), nullptr);
  EXPECT_TRUE(vorn_is_object(string("x")));
}

TEST_F(Embedding, Texts_AreTheirOwnHandles) {
  const Handle bare = vorn_text_new("bare");
  EXPECT_STREQ(static_cast<const char*>(bare.get()), "bare");
  EXPECT_EQ(vorn_string_text(bare), bare.get());
  EXPECT_FALSE(vorn_is_object(bare));
  EXPECT_EQ(vorn_text_new(nullptr), nullptr);
  EXPECT_STREQ(vorn_string_text(Handle(vorn_text_new(""))), "");
}

TEST_F(Embedding, StringText_OfAnythingElseIsNull) {
  for (const Handle& handle : {Handle(nullptr), integer("Int", 1), object("ArrayList"), plain(1)}) {
    EXPECT_EQ(vorn_string_text(handle), nullptr);
  }
}

TEST_F(Embedding, ExhaustedMemory_IsANullResult) {
  const auto failing = [](auto&& make) {
    vorn_heap_fail_allocation(0);
    void* const result = make();
    EXPECT_EQ(vorn_heap_failure_happened(), 1);
    return result;
  };
  EXPECT_EQ(failing([] { return vorn_box_integer("Int", 1); }), nullptr);
  EXPECT_EQ(failing([] { return vorn_box_floating("Double", 1); }), nullptr);
  EXPECT_EQ(failing([] { return vorn_string_new("x", 1); }), nullptr);
  EXPECT_EQ(failing([] { return vorn_text_new("x"); }), nullptr);
  EXPECT_EQ(failing([] { return vorn_object_new("ArrayListSync<Int>"); }), nullptr);
  vorn_heap_fail_allocation(1);  // the text is made, the object is not
  EXPECT_EQ(vorn_string_new("x", 1), nullptr);
  const Handle left = list("LinkedList", {string("a")});
  const Handle right = list("LinkedList", {string("a")});
  vorn_heap_fail_allocation(0);
  EXPECT_EQ(vorn_equals(left, right), 0);
  EXPECT_EQ(vorn_heap_failure_happened(), 1);
  EXPECT_EQ(vorn_equals(left, right), 1);
}

TEST_F(Embedding, ObjectNew_MakesCollectionsAndInstances) {
  for (const char* name : {"ArrayList", "ArrayList<Int>", "LinkedListSync<Foo>", "vorn.collections.ImmutableList"}) {
    const Handle made = vorn_object_new(name);
    EXPECT_TRUE(vorn_is_object(made)) << name;
    EXPECT_TRUE(vorn_is_instance(made, name)) << name;
  }
  EXPECT_EQ(vorn_object_new("NoSuchClass"), nullptr);
  EXPECT_EQ(vorn_object_new(nullptr), nullptr);
}

TEST_F(Embedding, TypesOfHandles) {
  EXPECT_STREQ(vorn_type_name(integer("Int", 1)), "vorn.Int");
  EXPECT_STREQ(vorn_type_name(text("x")), "vorn.String");
  EXPECT_EQ(vorn_type_name(nullptr), nullptr);
  EXPECT_EQ(vorn_is_instance(integer("Int", 1), "vorn.Int"), 1);
  EXPECT_EQ(vorn_is_instance(integer("Int", 1), "Long"), 0);
  EXPECT_EQ(vorn_is_instance(integer("Int", 1), nullptr), 0);
  EXPECT_EQ(vorn_is_instance(nullptr, "Object"), 0);
  EXPECT_EQ(vorn_is_object(nullptr), 0);
}

TEST_F(Embedding, Fields_AreReadAndWrittenByTypeOnly) {
  const vorn_field_definition fields[] = {
      {"i", VORN_FIELD_INTEGER}, {"f", VORN_FIELD_FLOATING}, {"h", VORN_FIELD_HANDLE}};
  vorn_class_definition definition = {};
  definition.name = "embedding.Fields";
  definition.fields = fields;
  definition.field_count = 3;
  defineClass(definition);
  const Handle made = object("embedding.Fields");
  const Handle kept = string("kept");

  std::int64_t i = -1;
  double f = -1;
  void* h = kept;
  EXPECT_EQ(vorn_field_get_integer(made, "i", &i), 1);
  EXPECT_EQ(vorn_field_get_floating(made, "f", &f), 1);
  EXPECT_EQ(vorn_field_get_handle(made, "h", &h), 1);
  EXPECT_EQ(i, 0);
  EXPECT_EQ(f, 0.0);
  EXPECT_EQ(h, nullptr);

  EXPECT_EQ(vorn_field_set_integer(made, "i", 5), 1);
  EXPECT_EQ(vorn_field_set_floating(made, "f", 2.5), 1);
  EXPECT_EQ(vorn_field_set_handle(made, "h", kept), 1);
  vorn_field_get_integer(made, "i", &i);
  vorn_field_get_floating(made, "f", &f);
  vorn_field_get_handle(made, "h", &h);
  EXPECT_EQ(i, 5);
  EXPECT_EQ(f, 2.5);
  EXPECT_EQ(h, kept.get());

  for (const char* field : {"f", "h", "absent", ""}) {
    EXPECT_EQ(vorn_field_get_integer(made, field, &i), 0) << field;
    EXPECT_EQ(vorn_field_set_integer(made, field, 9), 0) << field;
  }
  for (const char* field : {"i", "h", "absent"}) {
    EXPECT_EQ(vorn_field_get_floating(made, field, &f), 0) << field;
    EXPECT_EQ(vorn_field_set_floating(made, field, 9), 0) << field;
  }
  for (const char* field : {"i", "f", "absent"}) {
    EXPECT_EQ(vorn_field_get_handle(made, field, &h), 0) << field;
    EXPECT_EQ(vorn_field_set_handle(made, field, nullptr), 0) << field;
  }
  for (void* other : {static_cast<void*>(nullptr), kept.get(), text("bare").get()}) {
    EXPECT_EQ(vorn_field_get_integer(other, "i", &i), 0);
    EXPECT_EQ(vorn_field_set_integer(other, "i", 9), 0);
  }
  EXPECT_EQ(vorn_field_get_integer(made, nullptr, &i), 0);
  EXPECT_EQ(vorn_field_get_integer(made, "i", nullptr), 0);
  EXPECT_EQ(i, 5);
  EXPECT_EQ(f, 2.5);
  EXPECT_EQ(h, kept.get());
}

TEST_F(Embedding, ValueFieldOfABox_IsReadOnly) {
  std::int64_t i = 0;
  double f = 0;
  EXPECT_EQ(vorn_field_get_integer(integer("Long", 9), "_value", &i), 1);
  EXPECT_EQ(i, 9);
  EXPECT_EQ(vorn_field_get_integer(boolean(true), "_value", &i), 1);
  EXPECT_EQ(i, 1);
  EXPECT_EQ(vorn_field_get_floating(floating("Double", 0.5), "_value", &f), 1);
  EXPECT_EQ(f, 0.5);
  EXPECT_EQ(vorn_field_set_integer(integer("Long", 9), "_value", 1), 0);
  EXPECT_EQ(vorn_field_set_integer(boolean(true), "_value", 0), 0);
  EXPECT_EQ(vorn_field_set_floating(floating("Double", 0.5), "_value", 1), 0);
  EXPECT_EQ(boolean(true).get(), vorn_box_boolean(true));
}

TEST_F(Embedding, Equals_IsStructural) {
  EXPECT_EQ(vorn_equals(nullptr, nullptr), 1);
  EXPECT_EQ(vorn_equals(integer("Int", 1), floating("Double", 1)), 1);
  EXPECT_EQ(vorn_equals(list("ArrayList", {string("a")}), list("LinkedList", {text("a")})), 1);
  EXPECT_EQ(vorn_equals(plain(1), plain(1)), 0);
}

TEST_F(Embedding, ListStorage_OfEveryForm) {
  vorn_list_storage_info info;
  const Handle unboxed = list("ArrayList<Int>", {integer("Int", 1), integer("Int", 2)});
  ASSERT_EQ(vorn_list_get_storage(unboxed, &info), 1);
  EXPECT_EQ(info.storage, VORN_LIST_PRIMITIVE);
  EXPECT_STREQ(info.element_type, "Int");
  EXPECT_STREQ(info.primitive_type, "Int");
  EXPECT_EQ(info.size, 2U);
  EXPECT_EQ(info.capacity, 32U);
  EXPECT_EQ(info.bytes_per_element, 4U);

  const Handle boxed = list("ArrayListSync", {string("a")});
  ASSERT_EQ(vorn_list_get_storage(boxed, &info), 1);
  EXPECT_EQ(info.storage, VORN_LIST_OBJECTS);
  EXPECT_STREQ(info.element_type, "");
  EXPECT_STREQ(info.primitive_type, "");
  EXPECT_EQ(info.size, 1U);
  EXPECT_EQ(info.capacity, 4U);
  EXPECT_EQ(info.bytes_per_element, sizeof(void*));

  const Handle linked = list("LinkedListSync<String>", {string("a"), string("b")});
  ASSERT_EQ(vorn_list_get_storage(linked, &info), 1);
  EXPECT_EQ(info.storage, VORN_LIST_LINKED);
  EXPECT_STREQ(info.element_type, "String");
  EXPECT_EQ(info.size, 2U);
  EXPECT_EQ(info.capacity, 2U);
  EXPECT_EQ(info.bytes_per_element, 24U);
}

TEST_F(Embedding, ListStorage_ReadsUnderTheListsLock) {
  const Handle list = object("ArrayListSync");
  vorn_list_storage_info info;
  ASSERT_EQ(vorn_list_get_storage(list, &info), 1);
  // The lock was given back.
  EXPECT_FALSE(isRecordLocked(*getListData(list)));
}

TEST_F(Embedding, ListStorage_OfAnythingElse_IsRefused) {
  vorn_list_storage_info info;
  for (const Handle& handle : {Handle(nullptr), integer("Int", 1), string("s"), text("s"), plain(1)}) {
    EXPECT_EQ(vorn_list_get_storage(handle, &info), 0);
  }
  EXPECT_EQ(vorn_list_get_storage(object("ArrayList"), nullptr), 0);
}

}  // namespace
}  // namespace vorn::tests
