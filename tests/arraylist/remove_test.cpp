// removeAt, remove and clear: what they leave behind in the record.
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/list_cases.h"

namespace vorn::tests {
namespace {

class Remove : public RuntimeTest {};

TEST_F(Remove, RemoveAt_ObjectStorage_NullsTheVacatedSlot) {
  const Handle target = list("ArrayList", {string("a"), string("b"), string("c")});
  vorn_collections_ArrayList_removeAt(target, 0);
  const SmallObjectVector& objects = getListData(target)->objects;
  EXPECT_EQ(objects.size, 2U);
  EXPECT_EQ(objects.data[2], nullptr);
  EXPECT_EQ(elementsOf(target), (Elements{"String b", "String c"}));
  EXPECT_AT_REST(target);
}

TEST_F(Remove, RemoveAt_LinkedList_EveryPosition) {
  for (long long index = -5; index < 5; ++index) {
    const Handle target = list("LinkedListSync", {item(0), item(1), item(2), item(3), item(4)});
    vorn_collections_ArrayList_removeAt(target, index);
    Elements expected{"Item 0", "Item 1", "Item 2", "Item 3", "Item 4"};
    expected.erase(expected.begin() + (index < 0 ? index + 5 : index));
    EXPECT_EQ(elementsOf(target), expected);
    EXPECT_AT_REST(target);
  }
}

TEST_F(Remove, RemoveAt_UnboxedStorage_StaysUnboxedEvenWhenEmpty) {
  const Handle target = list("ArrayList<Short>", {integer("Short", 1), integer("Short", 2)});
  vorn_collections_ArrayList_removeAt(target, -1);
  vorn_collections_ArrayList_removeAt(target, 0);
  EXPECT_EQ(storageOf(target), "Short");
  EXPECT_EQ(vorn_collections_ArrayList_size(target), 0);
  vorn_collections_ArrayList_removeAt(target, 0);
  EXPECT_RAISED(kIndexError);
  EXPECT_AT_REST(target);
}

TEST_F(Remove, Remove_UnboxedStorage_TakesTheFirstMatchAndStaysUnboxed) {
  const Handle target = list("ArrayListSync<Int>", {integer("Int", 1), integer("Int", 2), integer("Int", 1)});
  EXPECT_TRUE(vorn_collections_ArrayList_remove(target, integer("Int", 1)));
  EXPECT_EQ(storageOf(target), "Int");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 2", "Int 1"}));
  EXPECT_FALSE(vorn_collections_ArrayList_remove(target, integer("Int", 3)));
  EXPECT_EQ(storageOf(target), "Int");
  EXPECT_AT_REST(target);
}

TEST_F(Remove, Remove_ForeignValue_MaterialisesAndComparesAcrossKinds) {
  const Handle target = list("ArrayList<Int>", {integer("Int", 1), integer("Int", 2)});
  EXPECT_TRUE(vorn_collections_ArrayList_remove(target, integer("Long", 2)));
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1"}));
  EXPECT_FALSE(vorn_collections_ArrayList_remove(target, nullptr));
  EXPECT_AT_REST(target);
}

TEST_F(Remove, Remove_NullElement) {
  for (const char* type : {"ArrayList", "LinkedListSync"}) {
    const Handle target = list(type, {string("a"), nullptr, string("b"), nullptr});
    EXPECT_TRUE(vorn_collections_ArrayList_remove(target, nullptr));
    EXPECT_EQ(elementsOf(target), (Elements{"String a", "String b", "null"}));
    EXPECT_AT_REST(target);
  }
}

TEST_F(Remove, Clear_ObjectStorage_NullsEveryUsedSlotAndKeepsTheBlock) {
  const Handle target = object("ArrayList<String>");
  for (int i = 0; i < 9; ++i) vorn_collections_ArrayList_add(target, string("x"));
  const ListData& data = *getListData(target);
  void** const block = data.objects.data;
  ASSERT_EQ(data.objects.capacity, 16U);
  vorn_collections_ArrayList_clear(target);
  EXPECT_EQ(data.objects.size, 0U);
  EXPECT_EQ(data.objects.capacity, 16U);
  EXPECT_EQ(data.objects.data, block);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(block[i], nullptr);
  EXPECT_EQ(declaredTypeOf(target), "String");
  EXPECT_AT_REST(target);
}

TEST_F(Remove, Clear_UnboxedStorage_ForgetsTheKindAndKeepsTheCapacity) {
  const Handle target = object("ArrayListSync<Int>");
  for (int i = 0; i < 33; ++i) vorn_collections_ArrayList_addInt(target, i);
  ListData& data = *getListData(target);
  ASSERT_EQ(data.primitive.capacity, 64U);
  vorn_collections_ArrayList_clear(target);
  EXPECT_EQ(data.primitiveKind, ListData::PrimitiveKind::None);
  EXPECT_EQ(data.primitiveType.name, nullptr);
  EXPECT_EQ(data.primitive.size, 0U);
  EXPECT_EQ(data.primitive.capacity, 64U);
  EXPECT_EQ(declaredTypeOf(target), "Int");
  EXPECT_EQ(vorn_collections_ArrayList_size(target), 0);
  EXPECT_AT_REST(target);
}

TEST_F(Remove, Clear_LinkedList_LeavesAnEmptyReusableList) {
  const Handle target = list("LinkedListSync", {item(1), item(2), item(3)});
  vorn_collections_ArrayList_clear(target);
  const LinkedHandles& nodes = getListData(target)->linkedObjects;
  EXPECT_EQ(nodes.count, 0U);
  EXPECT_EQ(nodes.sentinel.next, &nodes.sentinel);
  EXPECT_EQ(nodes.sentinel.previous, &nodes.sentinel);
  vorn_collections_ArrayList_add(target, item(4));
  vorn_collections_ArrayList_addAt(target, 0, item(5));
  EXPECT_EQ(elementsOf(target), (Elements{"Item 5", "Item 4"}));
  EXPECT_AT_REST(target);
}

TEST_F(Remove, ClearAndMaterialisation_EmptyTheMirrors) {
  const auto fillMirrors = [](void* target) {
    ListData& data = *getListData(target);
    data.i64Mirror.data[0] = 1;
    data.i64Mirror.size = 1;
    data.f64Mirror.data[0] = 1.0;
    data.f64Mirror.size = 1;
  };
  const Handle cleared = list("ArrayList<Int>", {integer("Int", 1)});
  fillMirrors(cleared);
  vorn_collections_ArrayList_clear(cleared);
  const Handle boxed = list("ArrayList<Int>", {integer("Int", 1)});
  fillMirrors(boxed);
  EXPECT_FALSE(vorn_collections_ArrayList_operator_in(boxed, nullptr));
  for (const Handle& target : {cleared, boxed}) {
    EXPECT_EQ(getListData(target)->i64Mirror.size, 0U);
    EXPECT_EQ(getListData(target)->f64Mirror.size, 0U);
    EXPECT_AT_REST(target);
  }
}

TEST_F(Remove, ClearedLists_ReleaseTheirElements) {
  // What a cleared list held is garbage: the stress heap would otherwise keep growing.
  if (!onStressHeap()) GTEST_SKIP() << "only the stress heap frees at once";
  for (const char* type : {"ArrayList", "LinkedList"}) {
    const Handle target = object(type);
    for (int i = 0; i < 20; ++i) vorn_collections_ArrayList_add(target, string("element"));
    vorn_heap_statistics full;
    vorn_heap_collect();
    vorn_heap_get_statistics(&full);
    vorn_collections_ArrayList_clear(target);
    vorn_heap_statistics empty;
    vorn_heap_collect();
    vorn_heap_get_statistics(&empty);
    EXPECT_LT(empty.bytes_live + 20 * 32, full.bytes_live) << type;
  }
}

}  // namespace
}  // namespace vorn::tests
