// The validator sees each broken invariant. Every test breaks one thing in a sound record and mends it again.
#include "collections/core/storage/list_validation.h"

#include "collections/core/port/type_names.h"
#include "tests/core/core_test_support.h"

namespace vorn::tests {
namespace {

using collections::validateListData;

class ListValidation : public RuntimeTest {};

// Sets a field for a scope and expects the validator to object meanwhile, and neither before nor after.
template <class Field>
void expectBroken(const ListData& list, Field& field, Field broken, const char* what) {
  ASSERT_EQ(validateListData(list), "") << what;
  const Field sound = field;
  field = broken;
  EXPECT_NE(validateListData(list), "") << what;
  field = sound;
  EXPECT_EQ(validateListData(list), "") << what;
}

Handle objectList(const char* name, int count) {
  Handle result = object(name);
  for (int i = 0; i < count; ++i) record(result).objectPushBack(integer("Int", i));
  return result;
}

TEST_F(ListValidation, SoundRecordsPass) {
  for (const char* name : {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync"}) {
    for (const int count : {0, 1, 4, 5, 20}) EXPECT_EQ(validateListData(record(objectList(name, count))), "") << name;
  }
  for (const NamedKind& row : kNamedKinds) {
    EXPECT_EQ(validateListData(record(primitiveList(row.name))), "");
    EXPECT_EQ(validateListData(record(primitiveList(row.name, {1, 0, 1}))), "");
  }
}

TEST_F(ListValidation, UnknownKind) {
  Handle list = primitiveList("Byte", {1});
  expectBroken(record(list), record(list).primitiveKind, kindNumbered(12), "kind 12");
  expectBroken(record(list), record(list).primitiveKind, kindNumbered(255), "kind 255");
}

TEST_F(ListValidation, LinkedListWithPrimitiveKind) {
  Handle list = object("LinkedList");
  record(list).primitive.resetToInline(4);
  expectBroken(record(list), record(list).primitiveKind, Kind::Int, "linked and primitive");
}

TEST_F(ListValidation, ElementSizeOtherThanTheKindsWidth) {
  Handle list = primitiveList("Int", {1, 2});
  for (const std::uint64_t size : {0, 1, 2, 8, 3}) {
    expectBroken(record(list), record(list).primitive.elementSize, size, "element size");
  }
}

TEST_F(ListValidation, HandleLeftInTheInlineSlots) {
  Handle list = objectList("ArrayList", 5);
  expectBroken<void*>(record(list), record(list).objects.inlineSlots[2], list.get(), "an inline slot after growth");
}

TEST_F(ListValidation, PrimitiveTypeWithoutPrimitiveKind) {
  Handle list = object("ArrayList");
  expectBroken(record(list), record(list).primitiveType, internRuntimeTypeName("Int"), "type without kind");
}

TEST_F(ListValidation, PrimitiveElementsWithoutPrimitiveKind) {
  Handle list = object("ArrayList");
  expectBroken(record(list), record(list).primitive.size, std::uint64_t{1}, "dead primitive storage is not empty");
}

TEST_F(ListValidation, PrimitiveSizeAboveTheCapacity) {
  Handle list = primitiveList("Int", {1});
  expectBroken(record(list), record(list).primitive.size, std::uint64_t{33}, "size above capacity");
}

TEST_F(ListValidation, InlinePrimitiveStorageWithTooLargeACapacity) {
  Handle list = primitiveList("Int", {1});
  expectBroken(record(list), record(list).primitive.capacity, std::uint64_t{64}, "inline capacity");
}

TEST_F(ListValidation, PrimitiveStorageNowhere) {
  Handle list = primitiveList("Int", {1});
  expectBroken<unsigned char*>(record(list), record(list).primitive.data, nullptr, "no data");
}

TEST_F(ListValidation, ObjectSizeAboveTheCapacity) {
  Handle list = objectList("ArrayList", 2);
  expectBroken(record(list), record(list).objects.size, std::uint64_t{5}, "size above capacity");
}

TEST_F(ListValidation, InlineObjectStorageWithTooLargeACapacity) {
  Handle list = objectList("ArrayList", 4);
  expectBroken(record(list), record(list).objects.capacity, std::uint64_t{8}, "inline capacity");
}

TEST_F(ListValidation, ObjectStorageNowhere) {
  Handle list = objectList("ArrayList", 1);
  expectBroken<void**>(record(list), record(list).objects.data, nullptr, "no data");
}

TEST_F(ListValidation, StaleHandleInTheSlack) {
  for (const int count : {0, 3, 6}) {
    Handle list = objectList("ArrayList", count);
    SmallObjectVector& objects = record(list).objects;
    expectBroken<void*>(record(list), objects.data[count], vorn_box_boolean(true), "first slack slot");
    expectBroken<void*>(record(list), objects.data[objects.capacity - 1], vorn_box_boolean(true), "last slack slot");
  }
}

TEST_F(ListValidation, HandlesBesidePrimitiveStorage) {
  Handle list = primitiveList("Int", {1});
  expectBroken(record(list), record(list).objects.size, std::uint64_t{1}, "two live storages");
}

TEST_F(ListValidation, HandlesBesideLinkedStorage) {
  Handle list = objectList("LinkedList", 1);
  expectBroken(record(list), record(list).objects.size, std::uint64_t{1}, "two live storages");
}

TEST_F(ListValidation, NodesBesideObjectOrPrimitiveStorage) {
  for (Handle list : {objectList("ArrayList", 1), primitiveList("Int", {1})}) {
    record(list).linkedObjects.pushBack(nullptr);
    EXPECT_NE(validateListData(record(list)), "");
    record(list).linkedObjects.reset();
    EXPECT_EQ(validateListData(record(list)), "");
  }
}

TEST_F(ListValidation, LinkedCountOtherThanTheNodes) {
  for (const int count : {0, 3}) {
    Handle list = objectList("LinkedList", count);
    expectBroken(record(list), record(list).linkedObjects.count, static_cast<std::uint64_t>(count + 1), "too many");
    if (count != 0) {
      expectBroken(record(list), record(list).linkedObjects.count, static_cast<std::uint64_t>(count - 1), "too few");
      expectBroken(record(list), record(list).linkedObjects.count, std::uint64_t{0}, "none");
    }
  }
}

TEST_F(ListValidation, LinksThatDisagree) {
  Handle list = objectList("LinkedList", 4);
  LinkedHandles::Links& sentinel = record(list).linkedObjects.sentinel;
  LinkedHandles::Links* const second = sentinel.next->next;
  expectBroken(record(list), second->previous, &sentinel, "backward link past a node");
  expectBroken(record(list), second->next, sentinel.previous, "forward link past a node");
  expectBroken(record(list), sentinel.previous, second, "the last node is another one");
  expectBroken(record(list), second->next, &sentinel, "chain ends early");
  expectBroken(record(list), second->next, second, "a node that follows itself");
}

TEST_F(ListValidation, NullLinks) {
  Handle list = objectList("LinkedList", 3);
  LinkedHandles::Links& sentinel = record(list).linkedObjects.sentinel;
  expectBroken<LinkedHandles::Links*>(record(list), sentinel.next->next, nullptr, "null next");
  expectBroken<LinkedHandles::Links*>(record(list), sentinel.next->previous, nullptr, "null previous");
}

TEST_F(ListValidation, BlocksOfNodes) {
  Handle list = objectList("LinkedList", 12);
  const ListData& data = record(list);
  LinkedHandles::Block& newest = *data.linkedObjects.newest;
  LinkedHandles::Block& older = *newest.older;
  ASSERT_NE(older.older, nullptr);
  expectBroken(data, newest.used, newest.capacity + 1, "more nodes than there are");
  expectBroken(data, newest.used, newest.used - 1, "a node of the list that was never given out");
  expectBroken(data, newest.used, newest.used + 1, "a node that is nowhere");
  expectBroken(data, older.used, older.used - 1, "an older block with nodes left");
  expectBroken(data, older.free, older.nodes(), "an older block with free nodes");
  expectBroken<LinkedHandles::Block*>(data, newest.older, nullptr, "a block lost");
  expectBroken(data, newest.free, newest.nodes(), "a free node that is in the list");
}

TEST_F(ListValidation, FreeNodeThatKeepsAHandle) {
  Handle list = objectList("LinkedList", 3);
  LinkedHandles& nodes = const_cast<LinkedHandles&>(record(list).linkedObjects);
  nodes.unhook(nodes.sentinel.next);
  expectBroken<void*>(record(list), nodes.newest->free->handle, list, "a handle");
  expectBroken(record(list), nodes.newest->free->previous, &nodes.sentinel, "a link");
  expectBroken<LinkedHandles::Links*>(record(list), nodes.newest->free->next, nodes.newest->free, "itself again");
  expectBroken<LinkedHandles::Node*>(record(list), nodes.newest->free, nullptr, "not in the chain");
}

TEST_F(ListValidation, BlocksOfAnArrayBackedList) {
  Handle linked = objectList("LinkedList", 3);
  Handle list = objectList("ArrayList", 3);
  expectBroken(record(list), record(list).linkedObjects.newest, record(linked).linkedObjects.newest, "nodes");
}

TEST_F(ListValidation, MirrorSizesAboveTheirCapacity) {
  Handle list = primitiveList("Int", {1});
  expectBroken(record(list), record(list).i64Mirror.size, std::uint64_t{17}, "integer mirror");
  expectBroken(record(list), record(list).f64Mirror.size, std::uint64_t{9}, "floating mirror");
}

TEST_F(ListValidation, MirrorOfABoxedList) {
  Handle list = objectList("ArrayList", 3);
  record(list).i64Mirror.capacity = 1;
  expectBroken(record(list), record(list).i64Mirror.size, std::uint64_t{1}, "outlives");
  record(list).i64Mirror.capacity = 0;
}

TEST_F(ListValidation, SynchronisedListWithoutMutex) {
  Handle list = object("ArrayListSync");
  expectBroken<pthread_mutex_t*>(record(list), record(list).mutex, nullptr, "no mutex");
}

}  // namespace
}  // namespace vorn::tests
