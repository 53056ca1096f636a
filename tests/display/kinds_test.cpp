// The tags, separators, null texts and cycle markers of every kind of collection, alone and within each other.
#include "collections/core/port/text.h"
#include "collections/display/list_display.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "tests/display/display_cases.h"

namespace vorn::tests {
namespace {

using Displays = KindTest;
INSTANTIATE_KIND_TESTS(Displays);

TEST_P(Displays, Null_ShowsTheNullText) {
  EXPECT_EQ(display(kind(), nullptr), kind().nullText);
  EXPECT_TRUE(gCollectionDisplayStack.empty());
}

TEST_P(Displays, Empty_ShowsOpeningAndClosing) {
  const Handle collection = collectionFor(kind(), 0);
  EXPECT_EQ(display(kind(), collection), std::string(kind().emptyOpening) + kind().closing);
  EXPECT_EQ(faultOf(kind(), collection), "");
}

TEST_P(Displays, OneElement_HasNoSeparator) {
  const Handle collection = filled(kind(), {integer("Int", 7)});
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"7"}));
  EXPECT_EQ(faultOf(kind(), collection), "");
}

TEST_P(Displays, TwoElements_AreSeparated) {
  const Handle collection = filled(kind(), {integer("Int", 7), integer("Int", -8)});
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"7", "-8"}));
}

TEST_P(Displays, ManyElements_AreAllShownInOrder) {
  std::vector<Handle> elements;
  std::vector<std::string> texts;
  for (int i = 0; i < 300; ++i) {
    elements.push_back(integer("Int", i));
    texts.push_back(std::to_string(i));
  }
  EXPECT_EQ(display(kind(), filled(kind(), elements)), shown(kind(), texts));
}

TEST_P(Displays, NullElement_ShowsAsNull) {
  const Handle collection = filled(kind(), {Handle(), integer("Int", 1)});
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"null", "1"}));
}

TEST_P(Displays, AsAValue_ShowsTheSame) {
  const Handle collection = filled(kind(), {integer("Int", 7)});
  EXPECT_EQ(valueToDisplayString(collection), shown(kind(), {"7"}));
  EXPECT_EQ(valueToDisplayString(collectionFor(kind(), 0)), shown(kind(), {}));
}

TEST_P(Displays, LanguageText_IsTheDisplay) {
  const Handle collection = filled(kind(), {integer("Int", 7)});
  EXPECT_EQ(std::string(Vorn_objectToString(collection)), shown(kind(), {"7"}));
}

// The arrays of the other tests are generic, so this one looks at an array without an argument.
TEST_P(Displays, OtherSpellingsOfTheClass_HaveTheSameTag) {
  const std::string arguments = kind().family == Family::Map ? "<Int, Object>" : "<Object>";
  const Handle made = object(kind().name + (kind().family == Family::Array ? "" : arguments));
  EXPECT_EQ(display(kind(), made), shown(kind(), {}));
  if (kind().family == Family::Tuple) return;
  if (kind().family == Family::Array) vorn_collections_Array_ctor(made, 1);
  put(kind(), made, 0, integer("Int", 3));
  EXPECT_EQ(display(kind(), made), shown(kind(), {"3"}));
}

TEST_P(Displays, InEveryOtherKind_ShowsWithItsTag) {
  for (const Kind& outer : kKinds) {
    SCOPED_TRACE(outer.name);
    const Handle full = filled(kind(), {integer("Int", 7), integer("Int", 8)});
    EXPECT_EQ(display(outer, filled(outer, {full})), shown(outer, {shown(kind(), {"7", "8"})}));
    const Handle empty = collectionFor(kind(), 0);
    EXPECT_EQ(display(outer, filled(outer, {empty, full})),
              shown(outer, {shown(kind(), {}), shown(kind(), {"7", "8"})}));
  }
}

TEST_P(Displays, InItself_ShowsTheCycleMarker) {
  const Handle collection = collectionFor(kind(), 1);
  put(kind(), collection, 0, collection);
  const std::string expected = shown(kind(), {kind().cycle});
  EXPECT_EQ(display(kind(), collection), expected);
  EXPECT_EQ(display(kind(), collection), expected) << "a later display shows it in full again";
  EXPECT_EQ(valueToDisplayString(collection), expected);
  EXPECT_EQ(std::string(Vorn_objectToString(collection)), expected);
  EXPECT_EQ(faultOf(kind(), collection), "");
}

TEST_P(Displays, InItselfThroughEveryOtherKind_ShowsTheCycleMarker) {
  for (const Kind& other : kKinds) {
    SCOPED_TRACE(other.name);
    const Handle outer = collectionFor(kind(), 1);
    const Handle inner = collectionFor(other, 1);
    put(kind(), outer, 0, inner);
    put(other, inner, 0, outer);
    EXPECT_EQ(display(kind(), outer), shown(kind(), {shown(other, {kind().cycle})}));
    EXPECT_EQ(display(other, inner), shown(other, {shown(kind(), {other.cycle})}));
    EXPECT_EQ(faultOf(kind(), outer), "");
    EXPECT_EQ(faultOf(other, inner), "");
  }
}

TEST_P(Displays, ElementsAfterACycle_AreShown) {
  const Handle collection = collectionFor(kind(), 3);
  put(kind(), collection, 0, integer("Int", 1));
  put(kind(), collection, 1, collection);
  put(kind(), collection, 2, integer("Int", 2));
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"1", kind().cycle, "2"}));
}

TEST_P(Displays, TwiceInOneList_ShowsInFullTwice) {
  const Handle collection = filled(kind(), {integer("Int", 7)});
  const std::string text = shown(kind(), {"7"});
  EXPECT_EQ(display(kKinds[0], list("ArrayList", {collection, collection})), "[" + text + ", " + text + "]");
}

TEST_P(Displays, TextElements_AreQuotedExceptStringObjectsInSets) {
  const Handle collection = filled(kind(), {string("a\"b"), text("c\nd")});
  const std::string object = kind().family == Family::Set ? "a\"b" : R"("a\"b")";
  EXPECT_EQ(display(kind(), collection), shown(kind(), {object, R"("c\nd")"}));
}

TEST_P(Displays, CharacterElements_ShowThemselves) {
  const Handle collection = filled(kind(), {integer("Char", 0xE9), integer("CodeUnit", 'x')});
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"é", "x"}));
}

TEST_P(Displays, ElementsOfAllValueTypes_Show) {
  const Handle collection = filled(kind(), {integer("ULong", -1), floating("Float", 0.5), boolean(true)});
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"18446744073709551615", "0.5", "true"}));
}

using OneKind = RuntimeTest;

TEST_F(OneKind, OpeningOfANullList_IsABracket) {
  EXPECT_EQ(listDisplayPrefix(nullptr, 0), "[");
  EXPECT_EQ(listDisplayPrefix(nullptr, 3), "[");
}

TEST_F(OneKind, Opening_FollowsClassAndCount) {
  const Handle plain = object("ArrayList");
  const Handle sync = object("ArrayListSync<Int>");
  const Handle linked = object("LinkedList");
  const Handle linkedSync = object("LinkedListSync");
  const Handle immutable = object("ImmutableList");
  for (const std::uint64_t count : {std::uint64_t{0}, std::uint64_t{1}, ~std::uint64_t{0}}) {
    EXPECT_EQ(listDisplayPrefix(plain, count), "[");
    EXPECT_EQ(listDisplayPrefix(sync, count), count == 0 ? "[" : "s:[");
    EXPECT_EQ(listDisplayPrefix(linked, count), "l:[");
    EXPECT_EQ(listDisplayPrefix(linkedSync, count), "ls:[");
    EXPECT_EQ(listDisplayPrefix(immutable, count), "[");
  }
}

TEST_F(OneKind, UnboxedSynchronisedList_ShowsItsTagOnlyWhenNotEmpty) {
  const Handle made = object("ArrayListSync<Int>");
  vorn_collections_ArrayList_addInt(made, 5);
  EXPECT_EQ(display(kKinds[1], made), "s:[5]");
  vorn_collections_ArrayList_removeAt(made, 0);
  ASSERT_EQ(vorn_collections_ArrayList_size(made), 0);
  EXPECT_EQ(display(kKinds[1], made), "[]");
}

TEST_F(OneKind, UnboxedImmutableList_ShowsItsTag) {
  EXPECT_EQ(textOf(vorn_collections_ImmutableList_toString(unboxedImmutable("Int", {1, 2}))), "i:[1, 2]");
  // An immutable list declares the type of the unboxed elements that it took over.
  EXPECT_EQ(textOf(vorn_collections_ImmutableList_toString(unboxedImmutable("Char", {'a'}))), "i:[a]");
}

TEST_F(OneKind, TupleOfMoreThanTen_ShowsAllItems) {
  std::vector<Handle> items;
  std::string expected = "(";
  for (int i = 0; i < 120; ++i) {
    items.push_back(integer("Int", i));
    expected += (i == 0 ? "" : ", ") + std::to_string(i);
  }
  EXPECT_EQ(display(kKinds[5], tupleOf(items)), expected + ")");
}

TEST_F(OneKind, TupleWhoseSizeExceedsItsItems_ShowsNulls) {
  const Handle tuple = tupleOf({integer("Int", 1)});
  ASSERT_EQ(vorn_field_set_integer(tuple, "size", 3), 1);
  EXPECT_EQ(display(kKinds[5], tuple), "(1, null, null)");
  ASSERT_EQ(vorn_field_set_integer(tuple, "size", -1), 1);
  EXPECT_EQ(display(kKinds[5], tuple), "()");
}

TEST_F(OneKind, SortedMap_ShowsKeysAscending) {
  for (const char* type : {"SortedMap", "SortedMapSync"}) {
    const Handle map = object(type);
    for (const int key : {5, -1, 3}) vorn_collections_Map_put(map, integer("Int", key), Handle());
    EXPECT_EQ(textOf(vorn_collections_Map_toString(map)).substr(*type == 'S' && type[9] != '\0' ? 4 : 3),
              "-1: null, 3: null, 5: null}");
  }
}

TEST_F(OneKind, MapKeys_ShowAsValuesDo) {
  const Handle map = object("Map");
  const Handle one = integer("Int", 1);
  for (const Handle& key :
       {string("a\"b"), text("c\\d"), boolean(true), integer("Char", 'x'), integer("ULong", -1),
        floating("Double", 0.5), floating("Float", 2.25), list("ArrayList", {one}), tupleOf({one})}) {
    vorn_collections_Map_put(map, key, one);
  }
  EXPECT_EQ(textOf(vorn_collections_Map_toString(map)),
            R"({"a\"b": 1, "c\\d": 1, true: 1, x: 1, 18446744073709551615: 1, 0.5: 1, 2.25: 1, [1]: 1, )"
            "(1,): 1}");
}

// Maps refuse null as a key, so one is written into the record.
TEST_F(OneKind, NullMapKey_ShowsAsNull) {
  for (const char* type : {"Map", "SortedMap"}) {
    const Handle map = object(type);
    vorn_collections_Map_put(map, integer("Int", 1), integer("Int", 2));
    getMapData(map)->forEach(
        [](const auto&, const NativeMapEntry& entry) { const_cast<NativeMapEntry&>(entry).key = nullptr; });
    const std::string text = textOf(vorn_collections_Map_toString(map));
    EXPECT_EQ(text.substr(text.find('{')), "{null: 2}");
  }
}

TEST_F(OneKind, MapAsItsOwnKey_ShowsTheCycleMarker) {
  for (const char* type : {"Map", "HashMapSync", "SortedMap", "SortedMapSync"}) {
    const Handle map = object(type);
    vorn_collections_Map_put(map, map, map);
    const std::string text = textOf(vorn_collections_Map_toString(map));
    const std::string tag = text.substr(0, text.find('{') + 1);
    EXPECT_EQ(text, tag + tag + "...}: " + tag + "...}}");
  }
}

TEST_F(OneKind, HashMapsAndSets_ShowInIterationOrder) {
  const Handle map = object("Map");
  const Handle set = object("HashSet");
  for (const int key : {30, 10, 20}) {
    vorn_collections_Map_put(map, integer("Int", key), integer("Int", key + 1));
    vorn_collections_HashSet_add(set, integer("Int", key));
  }
  std::string entries;
  getMapData(map)->forEach([&](const auto&, const NativeMapEntry& entry) {
    entries +=
        (entries.empty() ? "" : ", ") + valueToDisplayString(entry.key) + ": " + valueToDisplayString(entry.value);
  });
  EXPECT_EQ(textOf(vorn_collections_Map_toString(map)), "{" + entries + "}");
  std::string elements;
  getSetData(set)->forEach(
      [&](const auto&, void* element) { elements += (elements.empty() ? "" : ", ") + valueToDisplayString(element); });
  EXPECT_EQ(textOf(vorn_collections_HashSet_toString(set)), "{" + elements + "}");
}

}  // namespace
}  // namespace vorn::tests
