// count, operator_in, remove, indexOf and lastIndexOf: matching and what a search does to the storage.
#include <limits>

#include "tests/arraylist/list_cases.h"

namespace vorn::tests {
namespace {

class Search : public RuntimeTest {};

long long count(void* target, void* value) { return vorn_collections_ArrayList_count(target, value); }
bool contains(void* target, void* value) { return vorn_collections_ArrayList_operator_in(target, value); }
bool removeFirst(void* target, void* value) { return vorn_collections_ArrayList_remove(target, value); }
long long indexOf(void* target, void* value, long long start = 0) {
  return vorn_collections_ArrayList_indexOf(target, value, start);
}
long long lastIndexOf(void* target, void* value, long long start = -1) {
  return vorn_collections_ArrayList_lastIndexOf(target, value, start);
}

// The three searches that materialise for a foreign value.
struct ForeignSearch {
  const char* name;
  long long (*run)(void* target, void* value);
};
const ForeignSearch kForeignSearches[] = {
    {"count", [](void* target, void* value) { return count(target, value); }},
    {"operator_in", [](void* target, void* value) -> long long { return contains(target, value); }},
    {"remove", [](void* target, void* value) -> long long { return removeFirst(target, value); }},
};

TEST_F(Search, ForeignValueNotFound_MaterialisesForGood) {
  const Handle values[] = {
      nullptr, string("1"), text("1"), item(1), integer("Long", 5), floating("Double", 1.5), integer("Char", 1)};
  for (const ForeignSearch& search : kForeignSearches) {
    for (const Handle& value : values) {
      for (const char* type : {"ArrayList", "ArrayListSync<Int>"}) {
        SCOPED_TRACE(std::string(search.name) + " of " + describe(value) + " in " + type);
        const Handle target = list(type, {integer("Int", 1), integer("Int", 2)});
        EXPECT_EQ(search.run(target, value), 0);
        EXPECT_EQ(storageOf(target), "objects");
        EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int 2"}));
        EXPECT_EQ(declaredTypeOf(target), std::string(type) == "ArrayList" ? "" : "Int");
        EXPECT_AT_REST(target);
        EXPECT_NOTHING_RAISED();
      }
    }
  }
}

TEST_F(Search, ForeignValueOnAnEmptyUnboxedList_MaterialisesToo) {
  for (const ForeignSearch& search : kForeignSearches) {
    const Handle target = list("ArrayList<Int>", {integer("Int", 1)});
    vorn_collections_ArrayList_removeAt(target, 0);
    ASSERT_EQ(storageOf(target), "Int");
    EXPECT_EQ(search.run(target, string("x")), 0) << search.name;
    EXPECT_EQ(storageOf(target), "objects") << search.name;
    EXPECT_AT_REST(target);
  }
}

TEST_F(Search, ForeignNumber_IsFoundByValueAfterMaterialisation) {
  const Handle target = list("ArrayList<Int>", {integer("Int", 1), integer("Int", 2), integer("Int", 1)});
  EXPECT_EQ(count(target, integer("Long", 1)), 2);
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_TRUE(contains(target, floating("Double", 2.0)));
  EXPECT_EQ(indexOf(target, integer("Byte", 2)), 1);
  EXPECT_EQ(lastIndexOf(target, integer("Byte", 1)), 2);
  EXPECT_FALSE(contains(target, floating("Double", 1.5)));
}

TEST_F(Search, OwnType_SearchesUnboxedAndLeavesTheListUnboxed) {
  for (const std::string& name : primitiveNames()) {
    SCOPED_TRACE(name);
    const Handle target = list("ArrayList<" + name + ">", {box(name, 1), box(name, 0), box(name, 1)});
    const Handle one = box(name, 1);
    EXPECT_EQ(count(target, one), 2);
    EXPECT_TRUE(contains(target, one));
    EXPECT_EQ(indexOf(target, one), 0);
    EXPECT_EQ(lastIndexOf(target, one), 2);
    EXPECT_TRUE(removeFirst(target, one));
    EXPECT_EQ(count(target, one), 1);
    EXPECT_EQ(storageOf(target), name);
    EXPECT_AT_REST(target);
  }
}

TEST_F(Search, IndexSearchOfAForeignValue_LeavesTheListUnboxed) {
  const Handle values[] = {nullptr, string("1"), text("1"), item(1), integer("Long", 1), floating("Double", 1.0)};
  const Handle target = list("ArrayListSync<Int>", {integer("Int", 1), integer("Int", 2)});
  const Snapshot before(target);
  for (const Handle& value : values) {
    EXPECT_EQ(indexOf(target, value), -1);
    EXPECT_EQ(lastIndexOf(target, value), -1);
    EXPECT_UNTOUCHED(target, before);
  }
}

TEST_F(Search, SameKindUnderAnotherName_IsForeign) {
  const Handle target = list("ArrayList<Char>", {integer("Char", 65)});
  EXPECT_EQ(indexOf(target, integer("UInt", 65)), -1);
  EXPECT_EQ(storageOf(target), "Char");
  EXPECT_EQ(count(target, integer("UInt", 65)), 0);
  EXPECT_EQ(storageOf(target), "objects");
  const Handle units = list("ArrayList<UShort>", {integer("UShort", 65)});
  EXPECT_EQ(lastIndexOf(units, integer("CodeUnit", 65)), -1);
  EXPECT_EQ(storageOf(units), "UShort");
}

TEST_F(Search, NaN_NeverMatchesInUnboxedStorage) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const char* name : {"Double", "Float"}) {
    const Handle value = floating(name, nan);
    const Handle target = list(std::string("ArrayList<") + name + ">", {value, floating(name, 1.0), value});
    EXPECT_EQ(count(target, value), 0);
    EXPECT_FALSE(contains(target, value));
    EXPECT_EQ(indexOf(target, value), -1);
    EXPECT_EQ(lastIndexOf(target, value), -1);
    EXPECT_FALSE(removeFirst(target, value));
    EXPECT_EQ(storageOf(target), name);
    EXPECT_EQ(vorn_collections_ArrayList_size(target), 3);
  }
}

TEST_F(Search, NaN_InBoxedStorage_MatchesOnlyTheSameHandle) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Handle value = floating("Double", nan);
  const Handle target = list("LinkedList", {value, floating("Double", nan)});
  EXPECT_EQ(count(target, value), 1);
  EXPECT_EQ(indexOf(target, value), 0);
  EXPECT_EQ(lastIndexOf(target, value), 0);
  EXPECT_EQ(count(target, floating("Double", nan)), 0);
  EXPECT_FALSE(contains(target, floating("Double", nan)));
}

TEST_F(Search, NegativeZero_MatchesZero) {
  for (const char* type : {"ArrayList<Double>", "LinkedList<Double>"}) {
    const Handle target = list(type, {floating("Double", -0.0), floating("Double", 0.0)});
    EXPECT_EQ(count(target, floating("Double", 0.0)), 2);
    EXPECT_EQ(indexOf(target, floating("Double", 0.0)), 0);
    EXPECT_EQ(lastIndexOf(target, floating("Double", -0.0)), 1);
    EXPECT_TRUE(removeFirst(target, floating("Double", 0.0)));
    EXPECT_EQ(elementsOf(target), (Elements{"Double 0"}));
  }
}

TEST_F(Search, FloatStorage_ComparesAsDoubles) {
  const Handle target = object("ArrayList<Float>");
  vorn_collections_ArrayList_addPrimitiveDouble(target, 0.1, "Float");
  EXPECT_EQ(count(target, floating("Float", static_cast<double>(0.1F))), 1);
  EXPECT_EQ(storageOf(target), "Float");
}

TEST_F(Search, BoxBeyondItsTypesRange_NeverMatches) {
  const Handle target = list("ArrayList<Byte>", {integer("Byte", 44), integer("Byte", 255)});
  const Snapshot before(target);
  for (const long long value : {300LL, -1LL, 44LL + 256}) {
    const Handle wanted = integer("Byte", value);
    EXPECT_EQ(count(target, wanted), 0);
    EXPECT_FALSE(contains(target, wanted));
    EXPECT_EQ(indexOf(target, wanted), -1);
    EXPECT_EQ(lastIndexOf(target, wanted), -1);
    EXPECT_FALSE(removeFirst(target, wanted));
    EXPECT_UNTOUCHED(target, before);
  }
  const Handle wide = object("ArrayList<UInt>");
  vorn_collections_ArrayList_addPrimitiveI64(wide, -1, "UInt");
  EXPECT_EQ(count(wide, integer("UInt", -1)), 0);
  EXPECT_EQ(count(wide, integer("UInt", 4294967295LL)), 1);
  EXPECT_EQ(storageOf(wide), "UInt");
}

TEST_F(Search, UnsignedLong_MatchesByItsBits) {
  const Handle target = list("ArrayList", {integer("ULong", LLONG_MIN), integer("ULong", -1)});
  EXPECT_EQ(indexOf(target, integer("ULong", -1)), 1);
  EXPECT_EQ(count(target, integer("ULong", LLONG_MIN)), 1);
  EXPECT_EQ(storageOf(target), "ULong");
}

TEST_F(Search, Boolean_AnyNonZeroBoxIsTrueOnlyAsABoolean) {
  const Handle target = list("ArrayList<Boolean>", {boolean(false), boolean(true)});
  EXPECT_EQ(indexOf(target, boolean(true)), 1);
  EXPECT_EQ(indexOf(target, integer("Int", 1)), -1);
  EXPECT_EQ(storageOf(target), "Boolean");
}

TEST_F(Search, TextsMatchWhetherObjectOrBare) {
  for (const char* type : {"ArrayList", "LinkedListSync", "ArrayList<String>"}) {
    const Handle target = list(type, {string("a"), text("b"), string("b"), nullptr, text("a")});
    EXPECT_EQ(count(target, string("a")), 2);
    EXPECT_EQ(count(target, text("a")), 2);
    EXPECT_EQ(indexOf(target, string("b")), 1);
    EXPECT_EQ(lastIndexOf(target, text("b")), 2);
    EXPECT_FALSE(contains(target, string("c")));
    EXPECT_FALSE(contains(target, text("")));
    EXPECT_EQ(indexOf(target, nullptr), 3);
    EXPECT_EQ(count(target, nullptr), 1);
    EXPECT_TRUE(removeFirst(target, text("a")));
    EXPECT_EQ(elementsOf(target), (Elements{"text b", "String b", "null", "text a"}));
    EXPECT_AT_REST(target);
  }
}

TEST_F(Search, UserObjectsMatchByTheirEquality) {
  for (const char* type : {"ArrayList<app.Item>", "LinkedList"}) {
    const Handle target = list(type, {item(1), item(2), nullptr, item(1)});
    EXPECT_EQ(count(target, item(1)), 2);
    EXPECT_TRUE(contains(target, item(2)));
    EXPECT_EQ(lastIndexOf(target, item(1)), 3);
    EXPECT_EQ(indexOf(target, item(3)), -1);
    EXPECT_TRUE(removeFirst(target, item(1)));
    EXPECT_EQ(elementsOf(target), (Elements{"Item 2", "null", "Item 1"}));
  }
}

TEST_F(Search, CollectionsMatchByContent) {
  const Handle target = list("ArrayList", {list("ArrayList<Int>", {integer("Int", 1)}), list("ArrayList<Int>")});
  EXPECT_EQ(indexOf(target, list("ArrayList<Int>", {integer("Int", 1)})), 0);
  EXPECT_EQ(count(target, list("ArrayList<Int>", {integer("Int", 2)})), 0);
}

TEST_F(Search, Starts) {
  for (const char* type : {"ArrayList<Int>", "LinkedList<Int>"}) {
    const Handle target = list(type, {integer("Int", 7), integer("Int", 8), integer("Int", 7)});
    const Handle seven = integer("Int", 7);
    EXPECT_EQ(indexOf(target, seven, -5), 0);
    EXPECT_EQ(indexOf(target, seven, 1), 2);
    EXPECT_EQ(indexOf(target, seven, 3), -1);
    EXPECT_EQ(lastIndexOf(target, seven, 100), 2);
    EXPECT_EQ(lastIndexOf(target, seven, 1), 0);
    EXPECT_EQ(lastIndexOf(target, seven, 0), 0);
    EXPECT_EQ(lastIndexOf(target, integer("Int", 8), 0), -1);
    EXPECT_EQ(lastIndexOf(target, seven, -1), 2);
  }
}

TEST_F(Search, LongUnboxedLists_FindEveryPosition) {
  // Long enough for searches that look at whole blocks of elements at a time. A second match then joins at the far
  // end.
  constexpr long long kSize = 300;
  for (const std::string& name : primitiveNames()) {
    SCOPED_TRACE(name);
    const Handle zero = box(name, 0);
    const Handle one = box(name, 1);
    const Handle target = object("ArrayList<" + name + ">");
    for (long long i = 0; i < kSize; ++i) vorn_collections_ArrayList_add(target, zero);
    EXPECT_EQ(count(target, zero), kSize);
    EXPECT_EQ(count(target, one), 0);
    EXPECT_FALSE(contains(target, one));
    EXPECT_EQ(indexOf(target, one), -1);
    EXPECT_EQ(lastIndexOf(target, one), -1);
    for (const long long position : {0, 1, 15, 16, 31, 63, 64, 127, 128, 129, 255, 256, 257, 298}) {
      SCOPED_TRACE(position);
      vorn_collections_ArrayList_operator_index_eq(target, position, one);
      EXPECT_EQ(count(target, one), 1);
      EXPECT_EQ(count(target, zero), kSize - 1);
      EXPECT_TRUE(contains(target, one));
      EXPECT_EQ(indexOf(target, one), position);
      EXPECT_EQ(indexOf(target, one, position), position);
      EXPECT_EQ(indexOf(target, one, position + 1), -1);
      EXPECT_EQ(lastIndexOf(target, one), position);
      EXPECT_EQ(lastIndexOf(target, one, position), position);
      EXPECT_EQ(position == 0 ? -1 : lastIndexOf(target, one, position - 1), -1);
      vorn_collections_ArrayList_operator_index_eq(target, kSize - 1, one);
      EXPECT_EQ(count(target, one), 2);
      EXPECT_EQ(indexOf(target, one), position);
      EXPECT_EQ(indexOf(target, one, position + 1), kSize - 1);
      EXPECT_EQ(lastIndexOf(target, one), kSize - 1);
      EXPECT_EQ(lastIndexOf(target, one, kSize - 2), position);
      EXPECT_TRUE(removeFirst(target, one));
      EXPECT_EQ(indexOf(target, one), kSize - 2);
      vorn_collections_ArrayList_removeAt(target, -1);
      EXPECT_EQ(count(target, zero), kSize - 2);
      vorn_collections_ArrayList_add(target, zero);
      vorn_collections_ArrayList_add(target, zero);
    }
    EXPECT_EQ(storageOf(target), name);
    EXPECT_AT_REST(target);
  }
}

TEST_F(Search, LongUnboxedLists_StaleElementsBehindTheEndAreNotFound) {
  const Handle target = object("ArrayList<Byte>");
  for (int i = 0; i < 300; ++i) vorn_collections_ArrayList_addInt(target, 7);
  const Handle seven = integer("Byte", 7);
  for (int size = 299; size >= 0; --size) {
    vorn_collections_ArrayList_removeAt(target, -1);
    EXPECT_EQ(count(target, seven), size);
    EXPECT_EQ(lastIndexOf(target, seven), size - 1);
    EXPECT_EQ(indexOf(target, seven, size), -1);
  }
  EXPECT_FALSE(contains(target, seven));
}

TEST_F(Search, EmptyLists) {
  for (const bool linked : {false, true}) {
    const Handle target = object(className(linked, true));
    const Handle values[] = {nullptr, integer("Int", 1), string("x")};
    for (const Handle& value : values) {
      EXPECT_EQ(count(target, value), 0);
      EXPECT_FALSE(contains(target, value));
      EXPECT_FALSE(removeFirst(target, value));
      EXPECT_EQ(indexOf(target, value), -1);
      EXPECT_EQ(lastIndexOf(target, value), -1);
    }
    EXPECT_AT_REST(target);
  }
}

TEST_F(Search, AFloatBox_IsFoundInTheListThatTookIt) {
  const Handle box = floating("Float", 0.1);
  for (const char* type : {"ArrayList<Float>", "ArrayList", "LinkedList<Float>"}) {
    const Handle target = list(type, {floating("Float", 7.5), box});
    EXPECT_EQ(vorn_collections_ArrayList_indexOf(target, box, 0), 1) << type;
    EXPECT_EQ(vorn_collections_ArrayList_getDouble(target, 1), double{0.1F}) << type;
    vorn_collections_ArrayList_add(target, nullptr);
    vorn_errors_clear();
    EXPECT_EQ(vorn_collections_ArrayList_count(target, box), 1) << type;
  }
}

TEST_F(Search, AFloatThatLeavesUnboxedStorage_KeepsItsValue) {
  const Handle target = list("ArrayList", {floating("Float", 0.1)});
  vorn_collections_ArrayList_addPrimitiveDouble(target, 0.3, "Double");  // another kind: boxes from here on
  EXPECT_EQ(vorn_collections_ArrayList_getDouble(target, 0), double{0.1F});
  EXPECT_EQ(vorn_collections_ArrayList_getDouble(target, 1), 0.3);
  vorn_collections_ArrayList_addPrimitiveDouble(target, 0.2, "Float");
  EXPECT_EQ(vorn_collections_ArrayList_getDouble(target, 2), double{0.2F});
}

}  // namespace
}  // namespace vorn::tests
