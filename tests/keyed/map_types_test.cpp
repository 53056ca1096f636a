// The recorded types of keys and values, and the type of items that is made of them.
#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"
#include "tests/keyed/keyed_cases.h"

namespace vorn::tests {
namespace {

class MapTypes : public MapTest {
 protected:
  // The type names of all items, which are one.
  static std::string itemType(void* map) {
    std::string name;
    for (const Handle& item : listed(vorn_collections_Map_items(map))) {
      const std::string own(shortTypeName(vorn_type_name(item)));
      EXPECT_TRUE(name.empty() || own == name) << own << " beside " << name;
      name = own;
    }
    return name;
  }
};
INSTANTIATE_MAP_TESTS(MapTypes);

TEST_P(MapTypes, FirstPut_RecordsTheShortNames) {
  const Handle map = object(type());
  vorn_collections_Map_put(map, text("k"), integer("Byte", 1));
  EXPECT_EQ(keyTypeOf(map), "String");
  EXPECT_EQ(valueTypeOf(map), "Byte");
}

TEST_P(MapTypes, KeysOfAnotherType_RecordObjectForGood) {
  const Handle map = object(type());
  vorn_collections_Map_put(map, number(1), nullptr);
  EXPECT_EQ(keyTypeOf(map), "Int");
  vorn_collections_Map_put(map, number(2), nullptr);
  EXPECT_EQ(keyTypeOf(map), "Int");
  vorn_collections_Map_put(map, string("k"), nullptr);
  EXPECT_EQ(keyTypeOf(map), "Object");
  vorn_collections_Map_put(map, number(3), nullptr);
  EXPECT_EQ(keyTypeOf(map), "Object");
}

TEST_P(MapTypes, SameKeyUnderAnotherType_RecordsObject) {
  const Handle map = object(type());
  vorn_collections_Map_put(map, integer("Int", 1), number(1));
  vorn_collections_Map_put(map, integer("Long", 1), number(1));
  EXPECT_EQ(vorn_collections_Map_size(map), 1);
  EXPECT_EQ(keyTypeOf(map), "Object");
  EXPECT_EQ(valueTypeOf(map), "Int");
}

TEST_P(MapTypes, ValuesOfAnotherType_RecordObjectForGood) {
  const Handle map = object(type());
  vorn_collections_Map_put(map, number(1), string("v"));
  EXPECT_EQ(valueTypeOf(map), "String");
  vorn_collections_Map_put(map, number(1), number(2));
  EXPECT_EQ(valueTypeOf(map), "Object");
  vorn_collections_Map_put(map, number(1), string("v"));
  EXPECT_EQ(valueTypeOf(map), "Object");
  vorn_collections_Map_remove(map, number(1));
  EXPECT_EQ(valueTypeOf(map), "Object");
  vorn_collections_Map_clear(map);
  vorn_collections_Map_put(map, number(1), string("v"));
  EXPECT_EQ(valueTypeOf(map), "String");
  EXPECT_EQ(keyTypeOf(map), "Int") << "the class of the key before clear is no longer recorded";
}

TEST_P(MapTypes, ClassesThatTakeTurns_AreNotTakenForTheOneSeenLast) {
  const Handle map = object(type());
  vorn_collections_Map_put(map, text("k"), number(1));
  vorn_collections_Map_put(map, string("k"), number(2));
  EXPECT_EQ(keyTypeOf(map), "String") << "a bare text and a String have one type name";
  EXPECT_EQ(valueTypeOf(map), "Int");
  vorn_collections_Map_put(map, string("l"), integer("Long", 3));
  EXPECT_EQ(valueTypeOf(map), "Object");
  vorn_collections_Map_clear(map);
  vorn_collections_Map_put(map, string("l"), integer("Long", 3));
  vorn_collections_Map_put(map, number(4), integer("Long", 3));
  EXPECT_EQ(keyTypeOf(map), "Object");
  EXPECT_EQ(valueTypeOf(map), "Long");
}

// What lets a put leave the names alone.
TEST_P(MapTypes, Put_RemembersTheClassesOfWhatWasPutLast) {
  const Handle map = object(type());
  const MapData& data = *getMapData(map);
  const auto expectClassesAfter = [&](const Handle& key, const Handle& value) {
    vorn_collections_Map_put(map, key, value);
    EXPECT_EQ(data.lastKeyClass, classOfObject(key));
    EXPECT_EQ(data.lastValueClass, classOfObject(value));
  };
  expectClassesAfter(string("k"), number(1));
  EXPECT_NE(data.lastKeyClass, nullptr);
  EXPECT_NE(data.lastValueClass, nullptr);
  expectClassesAfter(string("l"), number(1));
  expectClassesAfter(number(1), string("k"));
  expectClassesAfter(text("m"), string("k"));
  EXPECT_EQ(data.lastKeyClass, nullptr) << "of a bare text";
  expectClassesAfter(string("k"), Handle(nullptr));
  EXPECT_EQ(data.lastValueClass, nullptr) << "of null";
  expectClassesAfter(string("k"), number(2));
  vorn_collections_Map_clear(map);
  EXPECT_EQ(data.lastKeyClass, nullptr);
  EXPECT_EQ(data.lastValueClass, nullptr);
}

TEST_P(MapTypes, NullValue_RecordsObject) {
  const Handle map = object(type());
  vorn_collections_Map_put(map, number(1), nullptr);
  EXPECT_EQ(valueTypeOf(map), "Object");
}

TEST_P(MapTypes, Items_NameTheRecordedTypes) {
  const Handle map = object(type());
  vorn_collections_Map_put(map, string("k"), number(1));
  vorn_collections_Map_put(map, string("l"), number(2));
  EXPECT_EQ(itemType(map), "Tuple<String,Int>");
}

TEST_P(MapTypes, Items_OfAnEmptyMapAreNone) {
  const Handle map = object(type());
  const Handle items = vorn_collections_Map_items(map);
  ASSERT_NE(items.get(), nullptr);
  EXPECT_EQ(vorn_collections_ArrayList_size(items), 0);
}

TEST_P(MapTypes, Items_MixedKeysAndValues_NameObject) {
  const Handle map = object(type());
  vorn_collections_Map_put(map, string("k"), number(1));
  vorn_collections_Map_put(map, number(1), string("v"));
  EXPECT_EQ(itemType(map), "Tuple<Object,Object>");
}

TEST_P(MapTypes, Items_ValuesThatAgreeAgain_NameTheirType) {
  const Handle map = object(type());
  vorn_collections_Map_put(map, number(1), string("v"));
  vorn_collections_Map_put(map, number(2), integer("Long", 1));
  EXPECT_EQ(itemType(map), "Tuple<Int,Object>");
  vorn_collections_Map_put(map, number(1), integer("Long", 2));
  EXPECT_EQ(valueTypeOf(map), "Object");
  EXPECT_EQ(itemType(map), "Tuple<Int,Long>");
}

TEST_P(MapTypes, Items_NullAmongValues_KeepsTheRecordedName) {
  const Handle map = object(type());
  vorn_collections_Map_put(map, number(1), nullptr);
  EXPECT_EQ(itemType(map), "Tuple<Int,Object>");
  vorn_collections_Map_put(map, number(2), number(2));
  EXPECT_EQ(itemType(map), "Tuple<Int,Object>");
}

// Neither has a class, yet they are of two types.
TEST_P(MapTypes, Items_ABareTextAndNull_NameObject) {
  const Handle map = object(type());
  vorn_collections_Map_put(map, number(1), text("v"));
  EXPECT_EQ(itemType(map), "Tuple<Int,String>");
  vorn_collections_Map_put(map, number(2), nullptr);
  EXPECT_EQ(itemType(map), "Tuple<Int,Object>");
}

// Class names that are short for "Object" but whose field "_value" says what they box.
TEST_P(MapTypes, Items_ObjectsWithAValueField_NameItsKind) {
  struct Boxed {
    const char* className;
    vorn_field_type field;
    const char* expected;
  };
  for (const Boxed& boxed : {Boxed{"intbox.Object", VORN_FIELD_INTEGER, "Tuple<Int,Int>"},
                             Boxed{"floatbox.Object", VORN_FIELD_FLOATING, "Tuple<Int,Double>"},
                             Boxed{"handlebox.Object", VORN_FIELD_HANDLE, "Tuple<Int,Object>"}}) {
    const vorn_field_definition fields[] = {{"_value", boxed.field}};
    vorn_class_definition definition = {};
    definition.name = boxed.className;
    definition.fields = fields;
    definition.field_count = 1;
    defineClass(definition);
    const Handle value = object(boxed.className);
    ASSERT_NE(value.get(), nullptr) << boxed.className;
    ASSERT_EQ(shortTypeNameLocal(vorn_type_name(value)), "Object");
    const Handle map = object(type());
    vorn_collections_Map_put(map, number(1), value);
    EXPECT_EQ(valueTypeOf(map), "Object");
    EXPECT_EQ(itemType(map), boxed.expected);
    vorn_collections_Map_put(map, number(2), nullptr);
    EXPECT_EQ(itemType(map), "Tuple<Int,Object>");
  }
}

TEST_P(MapTypes, Items_FillTheirTuples) {
  const Handle map = object(type());
  const Handle key = string("k");
  const Handle value = userKey(1);
  vorn_collections_Map_put(map, key, value);
  const std::vector<Handle> items = listed(vorn_collections_Map_items(map));
  ASSERT_EQ(items.size(), 1U);
  EXPECT_EQ(Vorn_getField_ptr(items[0], "_0"), key.get());
  EXPECT_EQ(Vorn_getField_ptr(items[0], "_1"), value.get());
  EXPECT_EQ(sizeField(items[0]), 2);
  EXPECT_EQ(shortTypeName(vorn_type_name(items[0])), "Tuple<String,Key>");
}

TEST_P(MapTypes, FailedPut_RecordsNothing) {
  const Handle map = object(type());
  const Handle first = userKey(1);
  vorn_collections_Map_put(map, first, number(1));
  const MapState before(map);
  userHooks.equals = [](void*, void*) { return vorn_raise("Hook", "equals"), false; };
  userHooks.compare = [](void*, void*, bool*) { return vorn_raise("Hook", "compare"), 0; };
  vorn_collections_Map_put(map, userKey(2), string("another type"));
  EXPECT_FALSE(takeErrors().empty());
  EXPECT_EQ(MapState(map), before);
}

}  // namespace
}  // namespace vorn::tests
