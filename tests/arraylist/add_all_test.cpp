// addAll and addAllAt: sources, indexes, the check of all values before the first insertion, and the storage
// afterwards.
#include "tests/arraylist/bulk_cases.h"

namespace vorn::tests {
namespace {

class AddAll : public RuntimeTest {};

TEST_F(AddAll, EveryListClassIntoEveryListClass_AppendsInOrder) {
  for (const bool targetLinked : {false, true}) {
    for (const bool targetSynchronised : {false, true}) {
      forEachList([&](void* source) {
        const Handle target = list(className(targetLinked, targetSynchronised), {string("first")});
        const Snapshot sourceBefore(source);
        Elements expected = {"String first"};
        for (const std::string& element : elementsOf(source)) expected.push_back(element);
        vorn_collections_ArrayList_addAll(target, source);
        EXPECT_NOTHING_RAISED();
        EXPECT_EQ(elementsOf(target), expected);
        EXPECT_AT_REST(target);
        EXPECT_UNTOUCHED(source, sourceBefore);
      });
    }
  }
}

TEST_F(AddAll, ItselfAsSource_DoublesTheList) {
  forEachList([](void* target) {
    const std::string storage = storageOf(target);
    Elements expected = elementsOf(target);
    const Elements once = expected;
    expected.insert(expected.end(), once.begin(), once.end());
    vorn_collections_ArrayList_addAll(target, target);
    EXPECT_NOTHING_RAISED();
    EXPECT_EQ(elementsOf(target), expected);
    EXPECT_EQ(storageOf(target), storage);
    EXPECT_AT_REST(target);
  });
}

TEST_F(AddAll, ItselfIntoItsMiddle_SeesTheListAsItWas) {
  forEachList([](void* target) {
    const std::string storage = storageOf(target);
    const Elements once = elementsOf(target);
    Elements expected = once;
    expected.insert(expected.begin() + 1, once.begin(), once.end());
    vorn_collections_ArrayList_addAllAt(target, 1, target);
    EXPECT_NOTHING_RAISED();
    EXPECT_EQ(elementsOf(target), expected);
    EXPECT_EQ(storageOf(target), storage);
    EXPECT_AT_REST(target);
  });
}

TEST_F(AddAll, AtEveryIndex_KeepsTheOrderOfTheBatch) {
  for (const char* type : {"ArrayList<Int>", "ArrayListSync<Int>", "LinkedList<Int>", "LinkedListSync"}) {
    SCOPED_TRACE(type);
    const Handle source = intList("ArrayList", {10, 20, 30});
    for (long long index = 0; index <= 4; ++index) {
      const Handle target = intList(type, {1, 2, 3, 4});
      const std::string storage = storageOf(target);
      Elements expected = {"Int 1", "Int 2", "Int 3", "Int 4"};
      const Elements batch = {"Int 10", "Int 20", "Int 30"};
      expected.insert(expected.begin() + index, batch.begin(), batch.end());
      vorn_collections_ArrayList_addAllAt(target, index, source);
      EXPECT_EQ(elementsOf(target), expected);
      EXPECT_EQ(storageOf(target), storage);
      EXPECT_AT_REST(target);
    }
  }
}

TEST_F(AddAll, AtEveryIndexOfBoxedStorage_KeepsTheVeryHandles) {
  for (const bool linked : {false, true}) {
    const Handle a = string("a");
    const Handle b = item(1);
    const Handle x = string("x");
    const Handle y = text("y");
    const Handle source = list("ArrayList", {x, nullptr, y});
    for (std::ptrdiff_t index = 0; index <= 2; ++index) {
      const Handle target = list(className(linked, false), {a, b});
      std::vector<const void*> expected = {a.get(), b.get()};
      const std::vector<const void*> batch = {x.get(), nullptr, y.get()};
      expected.insert(expected.begin() + index, batch.begin(), batch.end());
      vorn_collections_ArrayList_addAllAt(target, index, source);
      EXPECT_EQ(handlesOf(target), expected);
      EXPECT_AT_REST(target);
    }
  }
}

TEST_F(AddAll, GrowsPastInlineStorage_InOrder) {
  const int count = onStressHeap() ? 40 : 3000;
  for (const bool linked : {false, true}) {
    for (const char* element : {"Int", ""}) {
      const Handle source = object("ArrayList");
      const Handle target = object(className(linked, false, element));
      Elements expected = {"Int -1"};
      vorn_collections_ArrayList_add(target, integer("Int", -1));
      for (int i = 0; i < count; ++i) {
        vorn_collections_ArrayList_addInt(source, i);
        expected.push_back("Int " + std::to_string(i));
      }
      expected.push_back("Int -2");
      vorn_collections_ArrayList_add(target, integer("Int", -2));
      vorn_collections_ArrayList_addAllAt(target, 1, source);
      EXPECT_EQ(elementsOf(target), expected);
      EXPECT_AT_REST(target);
    }
  }
}

TEST_F(AddAll, EmptySource_NeverChecksTheIndex) {
  for (const char* type : {"ArrayList<Int>", "ArrayListSync", "LinkedList"}) {
    const Handle target = intList(type, {1});
    const Handle empty = object("ArrayList");
    const Snapshot before(target);
    for (const long long index : {99LL, -1LL, 2LL, LLONG_MAX, LLONG_MIN}) {
      vorn_collections_ArrayList_addAllAt(target, index, empty);
      EXPECT_NOTHING_RAISED();
      EXPECT_UNTOUCHED(target, before);
    }
    vorn_collections_ArrayList_addAll(target, empty);
    EXPECT_UNTOUCHED(target, before);
  }
}

TEST_F(AddAll, EmptySource_LeavesAnUntypedEmptyListWithoutAKind) {
  const Handle target = object("ArrayList");
  const Handle empty = vorn_collections_ArrayList_primitiveLiteral0("Int");
  vorn_collections_ArrayList_addAll(target, empty);
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_AT_REST(target);
}

TEST_F(AddAll, IndexOutsideTheList_RaisesAndChangesNothing) {
  forEachList([](void* target) {
    const Snapshot before(target);
    const long long size = vorn_collections_ArrayList_size(target);
    const Handle source = list("ArrayList", {vorn_collections_ArrayList_operator_index(target, 0)});
    for (const long long index : {-1LL, -size, size + 1, LLONG_MAX, LLONG_MIN}) {
      vorn_collections_ArrayList_addAllAt(target, index, source);
      EXPECT_RAISED(kIndexError);
      EXPECT_UNTOUCHED(target, before);
    }
  });
}

TEST_F(AddAll, BadIndexAndBadValue_RaiseForTheIndexOnly) {
  const Handle target = intList("ArrayList<Int>", {1});
  const Handle source = list("ArrayList", {string("x")});
  vorn_collections_ArrayList_addAllAt(target, 5, source);
  EXPECT_RAISED(kIndexError);
}

TEST_F(AddAll, AnyRefusedValue_RaisesOnceAndInsertsNothing) {
  const Handle one = integer("Int", 1);
  for (const char* type : {"ArrayList<Int>", "ArrayListSync<Int>", "LinkedList<Int>", "LinkedListSync<Int>"}) {
    SCOPED_TRACE(type);
    const Handle target = intList(type, {7, 8});
    const Snapshot before(target);
    const auto expectRefused = [&](const Handle& source, const std::string& valueType) {
      vorn_collections_ArrayList_addAll(target, source);
      EXPECT_RAISED(listTypeError("Int", valueType));
      EXPECT_UNTOUCHED(target, before);
      vorn_collections_ArrayList_addAllAt(target, 1, source);
      EXPECT_RAISED(listTypeError("Int", valueType));
      EXPECT_UNTOUCHED(target, before);
    };
    expectRefused(list("ArrayList", {one, one, string("x")}), "vorn.String");
    expectRefused(list("ArrayList", {one, text("x"), one}), "vorn.String");
    expectRefused(list("ArrayList", {one, nullptr}), "null");
    expectRefused(list("ArrayList", {nullptr, string("x")}), "null");
    expectRefused(list("ArrayList", {one, floating("Double", 1.0), string("x")}), "vorn.Double");
    expectRefused(list("LinkedList", {integer("Long", 1LL << 31)}), "vorn.Long");
    expectRefused(rawDoubles("ArrayList", "Double", {1.0, 2.0}), "vorn.Double");
    expectRefused(list("ArrayList", {one, item(1)}), "app.Item");
  }
}

TEST_F(AddAll, ClassTypedList_TakesInstancesAndNullOnly) {
  for (const bool linked : {false, true}) {
    const Handle first = item(1);
    const Handle target = list(className(linked, false, "app.Item"), {first});
    const Snapshot before(target);
    const Handle bad = list("ArrayList", {item(2), integer("Int", 1)});
    vorn_collections_ArrayList_addAll(target, bad);
    EXPECT_RAISED(listTypeError(declaredTypeOf(target), "vorn.Int"));
    EXPECT_UNTOUCHED(target, before);
    const Handle good = list("ArrayList", {item(2), nullptr});
    vorn_collections_ArrayList_addAll(target, good);
    EXPECT_EQ(elementsOf(target), (Elements{"Item 1", "Item 2", "null"}));
  }
}

TEST_F(AddAll, DeclaredPrimitiveType_ConvertsAndStaysUnboxed) {
  const Handle ints = intList("ArrayList", {1, 2});
  const Handle mixed = list("ArrayList", {integer("Long", 3), integer("Byte", 4), integer("Int", 5)});
  const Handle longs = rawList("ArrayList<Long>", "Long", {1LL << 40});
  vorn_collections_ArrayList_addAll(longs, ints);
  vorn_collections_ArrayList_addAllAt(longs, 1, mixed);
  EXPECT_EQ(storageOf(longs), "Long");
  EXPECT_EQ(elementsOf(longs), (Elements{"Long 1099511627776", "Long 3", "Long 4", "Long 5", "Long 1", "Long 2"}));
  const Handle doubles = object("ArrayList<Double>");
  const Handle numbers = list("ArrayList", {integer("Int", 1), floating("Double", 2.5), floating("Float", 0.5)});
  vorn_collections_ArrayList_addAll(doubles, numbers);
  EXPECT_EQ(storageOf(doubles), "Double");
  EXPECT_EQ(elementsOf(doubles), (Elements{"Double 1", "Double 2.5", "Double 0.5"}));
  EXPECT_VALID_LIST(longs);
  EXPECT_VALID_LIST(doubles);
}

TEST_F(AddAll, EveryDeclaredKind_StaysUnboxed) {
  for (const std::string& name : primitiveNames()) {
    for (const bool empty : {false, true}) {
      SCOPED_TRACE(name + (empty ? " empty" : ""));
      const Handle source = paletteList(false, false, name);
      const Handle target = empty ? object(className(false, false, name)) : paletteList(false, true, name);
      Elements expected = elementsOf(target);
      for (const std::string& element : elementsOf(source)) expected.push_back(element);
      vorn_collections_ArrayList_addAll(target, source);
      EXPECT_EQ(storageOf(target), name);
      EXPECT_EQ(elementsOf(target), expected);
      EXPECT_AT_REST(target);
    }
  }
}

TEST_F(AddAll, UntypedEmptyList_AdoptsTheKindOfAUniformBatch) {
  for (const std::string& name : primitiveNames()) {
    for (const bool boxedSource : {false, true}) {
      SCOPED_TRACE(name);
      const Handle source = paletteList(boxedSource, false, name);
      const Handle target = object("ArrayList");
      vorn_collections_ArrayList_addAllAt(target, 0, source);
      EXPECT_EQ(storageOf(target), name);
      EXPECT_EQ(elementsOf(target), elementsOf(source));
      EXPECT_VALID_LIST(target);
    }
  }
}

TEST_F(AddAll, UntypedUnboxedList_TakesItsOwnTypeUnboxedAndTurnsBoxedForAnother) {
  const Handle target = rawList("ArrayList", "Int", {1, 2});
  vorn_collections_ArrayList_addAllAt(target, 1, intList("ArrayList", {9, 8}));
  EXPECT_EQ(storageOf(target), "Int");
  vorn_collections_ArrayList_addAllAt(target, 1, rawList("ArrayList", "Long", {5}));
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Long 5", "Int 9", "Int 8", "Int 2"}));
  EXPECT_VALID_LIST(target);
}

TEST_F(AddAll, SameKindUnderAnotherName_TurnsBoxed) {
  const Handle target = rawList("ArrayList", "UShort", {1});
  vorn_collections_ArrayList_addAll(target, rawList("ArrayList", "CodeUnit", {2}));
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(elementsOf(target), (Elements{"UShort 1", "CodeUnit 2"}));
}

TEST_F(AddAll, MixedBatch_GoesBoxedAsAWhole) {
  const Handle mixed = list("ArrayList", {integer("Int", 1), integer("Long", 2)});
  const Handle empty = object("ArrayList");
  vorn_collections_ArrayList_addAll(empty, mixed);
  EXPECT_EQ(storageOf(empty), "objects");
  EXPECT_EQ(handlesOf(empty), handlesOf(mixed));
  const Handle ints = rawList("ArrayList", "Int", {7, 8});
  vorn_collections_ArrayList_addAllAt(ints, 1, mixed);
  EXPECT_EQ(storageOf(ints), "objects");
  EXPECT_EQ(elementsOf(ints), (Elements{"Int 7", "Int 1", "Long 2", "Int 8"}));
  const Handle withNull = list("ArrayList", {integer("Int", 1), nullptr});
  const Handle other = rawList("ArrayList", "Int", {7});
  vorn_collections_ArrayList_addAll(other, withNull);
  EXPECT_EQ(elementsOf(other), (Elements{"Int 7", "Int 1", "null"}));
  EXPECT_VALID_LIST(empty);
  EXPECT_VALID_LIST(ints);
  EXPECT_VALID_LIST(other);
}

TEST_F(AddAll, BoxedList_StaysBoxed) {
  const Handle target = list("ArrayList", {string("x")});
  vorn_collections_ArrayList_addAll(target, intList("ArrayList", {1, 2}));
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(elementsOf(target), (Elements{"String x", "Int 1", "Int 2"}));
}

TEST_F(AddAll, AnythingElseAsSource_RaisesTheFixedMessage) {
  const std::vector<Handle> sources = {
      nullptr, integer("Int", 1), floating("Double", 1.5), boolean(true), string("abc"), text("abc"), item(1)};
  for (const Handle& source : sources) {
    SCOPED_TRACE(describe(source));
    forEachList([&](void* target) {
      const Snapshot before(target);
      vorn_collections_ArrayList_addAll(target, source);
      EXPECT_RAISED(kAddAllError);
      vorn_collections_ArrayList_addAllAt(target, 99, source);
      EXPECT_RAISED(kAddAllError);
      EXPECT_UNTOUCHED(target, before);
    });
    vorn_collections_ArrayList_addAll(nullptr, source);
    EXPECT_RAISED(kAddAllError);
    vorn_collections_ArrayList_addAllAt(nullptr, 0, source);
    EXPECT_RAISED(kAddAllError);
  }
}

TEST_F(AddAll, NullList_DoesNothing) {
  const Handle source = intList("ArrayList", {1});
  vorn_collections_ArrayList_addAll(nullptr, source);
  vorn_collections_ArrayList_addAllAt(nullptr, 99, source);
  EXPECT_NOTHING_RAISED();
}

}  // namespace
}  // namespace vorn::tests
