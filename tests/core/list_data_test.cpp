// The record's own operations: handles in object and linked storage, preparing primitive storage, clearing.
#include "collections/core/storage/list_data.h"

#include <cstddef>

#include "collections/core/elements/storage_transitions.h"
#include "collections/core/port/type_names.h"
#include "tests/core/core_test_support.h"

namespace vorn::tests {
namespace {

using Descriptions = std::vector<std::string>;

Descriptions intDescriptions(std::initializer_list<int> values) {
  Descriptions result;
  for (const int value : values) result.push_back("vorn.Int " + std::to_string(value));
  return result;
}

// What the four handle operations promise alike for array-backed and linked lists.
class ListHandles : public RuntimeTest, public ::testing::WithParamInterface<const char*> {
 protected:
  void pushIntegers(int count) {
    for (int i = 0; i < count; ++i) list_data().objectPushBack(integer("Int", i));
  }
  ListData& list_data() { return record(list_); }

  Handle list_ = object(GetParam());
};

INSTANTIATE_TEST_SUITE_P(Classes, ListHandles,
                         ::testing::Values("ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync"),
                         [](const auto& parameters) { return std::string(parameters.param); });

TEST_P(ListHandles, NewRecordIsEmptyObjectStorageWithTheFlagsOfItsClass) {
  const ListData& data = list_data();
  const std::string name = GetParam();
  EXPECT_EQ(data.linked, name.starts_with("Linked"));
  EXPECT_EQ(data.synchronized, name.ends_with("Sync"));
  EXPECT_EQ(data.synchronized, data.mutex != nullptr);
  EXPECT_EQ(data.primitiveKind, Kind::None);
  EXPECT_EQ(data.primitiveType.name, nullptr);
  EXPECT_EQ(data.elementType.name, nullptr);
  EXPECT_EQ(data.logicalSize(), 0u);
  EXPECT_EQ(data.objectCount(), 0u);
  EXPECT_EQ(data.primitive.size, 0u);
  EXPECT_EQ(data.i64Mirror.size, 0u);
  EXPECT_EQ(data.f64Mirror.size, 0u);
  EXPECT_VALID_LIST(list_);
}

TEST_P(ListHandles, PushBackAppendsInOrder) {
  const int count = onStressHeap() ? 20 : 300;
  pushIntegers(count);
  Descriptions expected;
  for (int i = 0; i < count; ++i) expected.push_back("vorn.Int " + std::to_string(i));
  EXPECT_EQ(describeObjects(list_data()), expected);
  EXPECT_EQ(list_data().objectCount(), static_cast<std::uint64_t>(count));
  EXPECT_EQ(list_data().logicalSize(), static_cast<std::uint64_t>(count));
  EXPECT_VALID_LIST(list_);
}

TEST_P(ListHandles, PushBackTakesNull) {
  list_data().objectPushBack(nullptr);
  list_data().objectPushBack(nullptr);
  EXPECT_EQ(describeObjects(list_data()), (Descriptions{"null", "null"}));
  EXPECT_VALID_LIST(list_);
}

TEST_P(ListHandles, FailedPushBackLeavesTheListUnchanged) {
  // As many as the vector, or the first block of nodes, has room for.
  pushIntegers(list_data().linked ? 3 : 4);
  Handle extra = integer("Int", 9);
  const RecordSnapshot before(list_data());
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(list_data().objectPushBack(extra), std::bad_alloc);
  EXPECT_NE(vorn_heap_failure_happened(), 0);
  EXPECT_EQ(RecordSnapshot(list_data()), before);
  EXPECT_VALID_LIST(list_);
}

TEST_P(ListHandles, EraseRemovesAnyIndex) {
  for (int at = 0; at < 5; ++at) {
    clearListStorage(list_data());
    pushIntegers(5);
    list_data().objectErase(static_cast<std::uint64_t>(at));
    Descriptions expected = intDescriptions({0, 1, 2, 3, 4});
    expected.erase(expected.begin() + at);
    EXPECT_EQ(describeObjects(list_data()), expected) << at;
    EXPECT_VALID_LIST(list_);
  }
}

TEST_P(ListHandles, EraseDownToEmptyLeavesAReusableList) {
  pushIntegers(3);
  for (int i = 0; i < 3; ++i) list_data().objectErase(0);
  EXPECT_EQ(list_data().objectCount(), 0u);
  EXPECT_VALID_LIST(list_);
  pushIntegers(2);
  EXPECT_EQ(describeObjects(list_data()), intDescriptions({0, 1}));
}

TEST_P(ListHandles, AssignReplacesAllContents) {
  for (const int before : {0, 2, 3, 6, 9}) {
    for (const int after : {0, 1, 3, 5, 12}) {
      clearListStorage(list_data());
      pushIntegers(before);
      collections::HandleVector values;
      Descriptions expected;
      for (int i = 0; i < after; ++i) {
        Handle value = integer("Long", 100 + i);
        values->push_back(value);
        expected.push_back("vorn.Long " + std::to_string(100 + i));
      }
      list_data().objectAssign(*values);
      EXPECT_EQ(describeObjects(list_data()), expected) << before << " to " << after;
      EXPECT_EQ(list_data().objectCount(), static_cast<std::uint64_t>(after));
      EXPECT_VALID_LIST(list_);
    }
  }
}

TEST_P(ListHandles, CopyObjectsAppendsToTheVector) {
  pushIntegers(3);
  Handle first = integer("Int", 77);
  collections::HandleVector values;
  values->push_back(first);
  list_data().copyObjectsTo(*values);
  ASSERT_EQ(values->size(), 4u);
  EXPECT_EQ((*values)[0], first.get());
  const std::vector<void*> handles = handlesOf(list_data());
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ((*values)[i + 1], handles[i]);
  EXPECT_EQ(describeObjects(list_data()), intDescriptions({0, 1, 2}));
}

TEST_P(ListHandles, CopyObjectsOfAnEmptyListAddsNothing) {
  collections::HandleVector values;
  list_data().copyObjectsTo(*values);
  EXPECT_TRUE(values->empty());
}

TEST_P(ListHandles, CopyObjectsGrowsTheVectorAsNeeded) {
  const int count = onStressHeap() ? 20 : 200;
  pushIntegers(count);
  collections::HandleVector values;
  for (int i = 0; i < 3; ++i) list_data().copyObjectsTo(*values);
  ASSERT_EQ(values->size(), static_cast<std::size_t>(3 * count));
  vorn_heap_collect();
  for (int i = 0; i < 3 * count; ++i) {
    EXPECT_EQ(describeValue((*values)[static_cast<std::size_t>(i)]), "vorn.Int " + std::to_string(i % count));
  }
}

TEST_P(ListHandles, ClearEmptiesAndKeepsDeclaredTypeAndFlags) {
  pushIntegers(6);
  ListData& data = list_data();
  data.elementType = internRuntimeTypeName("Animal");
  data.i64Mirror.size = 2;
  data.f64Mirror.size = 3;
  const bool linked = data.linked;
  const bool synchronised = data.synchronized;
  pthread_mutex_t* const mutex = data.mutex;
  const std::uint64_t capacity = data.objects.capacity;
  clearListStorage(data);
  EXPECT_EQ(data.logicalSize(), 0u);
  EXPECT_EQ(data.objects.size, 0u);
  EXPECT_EQ(data.objects.capacity, capacity);
  for (std::uint64_t i = 0; i < capacity; ++i) EXPECT_EQ(data.objects.data[i], nullptr) << i;
  EXPECT_EQ(data.linkedObjects.count, 0u);
  EXPECT_EQ(data.linkedObjects.sentinel.next, &data.linkedObjects.sentinel);
  EXPECT_EQ(data.linkedObjects.sentinel.previous, &data.linkedObjects.sentinel);
  EXPECT_EQ(data.elementType.get(), "Animal");
  EXPECT_EQ(data.i64Mirror.size, 0u);
  EXPECT_EQ(data.f64Mirror.size, 0u);
  EXPECT_EQ(data.linked, linked);
  EXPECT_EQ(data.synchronized, synchronised);
  EXPECT_EQ(data.mutex, mutex);
  EXPECT_VALID_LIST(list_);
  pushIntegers(2);
  EXPECT_EQ(describeObjects(data), intDescriptions({0, 1}));
}

class ListDataTest : public RuntimeTest {};

TEST_F(ListDataTest, HandleOperationsNeverLookAtThePrimitiveKind) {
  Handle target = primitiveList("Int", {1, 2});
  ListData& data = record(target);
  data.objectPushBack(integer("Int", 7));
  data.objectPushBack(integer("Int", 8));
  EXPECT_EQ(data.objectCount(), 2u);
  EXPECT_EQ(data.logicalSize(), 2u);
  collections::HandleVector values;
  data.copyObjectsTo(*values);
  EXPECT_EQ(values->size(), 2u);
  data.objectErase(0);
  EXPECT_EQ(describeObjects(data), intDescriptions({8}));
  data.objectAssign({});
  EXPECT_EQ(data.objectCount(), 0u);
  EXPECT_EQ(data.primitiveKind, Kind::Int);
  EXPECT_EQ(integersOf(data), (std::vector<long long>{1, 2}));
  EXPECT_VALID_LIST(target);
}

TEST_F(ListDataTest, EraseAtOrPastTheEndOfAnArrayBackedListIsIgnored) {
  Handle target = object("ArrayList");
  ListData& data = record(target);
  for (int i = 0; i < 3; ++i) data.objectPushBack(integer("Int", i));
  const RecordSnapshot before(data);
  for (const std::uint64_t index : {std::uint64_t{3}, std::uint64_t{100}, ~std::uint64_t{0}}) {
    data.objectErase(index);
    EXPECT_EQ(RecordSnapshot(data), before) << index;
  }
}

TEST_F(ListDataTest, EraseOfAnArrayBackedListNullsTheVacatedSlot) {
  Handle target = object("ArrayList");
  ListData& data = record(target);
  for (int i = 0; i < 3; ++i) data.objectPushBack(integer("Int", i));
  data.objectErase(0);
  EXPECT_EQ(data.objects.size, 2u);
  EXPECT_EQ(data.objects.data[2], nullptr);
}

TEST_F(ListDataTest, EraseOfALinkedListWalksFromTheNearerEnd) {
  Handle target = object("LinkedList");
  ListData& data = record(target);
  for (int i = 0; i < 5; ++i) data.objectPushBack(integer("Int", i));
  LinkedHandles::Links& sentinel = data.linkedObjects.sentinel;
  // With the forward entry bent to the last node, a forward walk to index 3 would remove another element.
  LinkedHandles::Links* const first = sentinel.next;
  sentinel.next = sentinel.previous;
  data.objectErase(3);
  sentinel.next = first;
  EXPECT_EQ(describeObjects(data), intDescriptions({0, 1, 2, 4}));
  // And the other way round for index 1 of 4.
  LinkedHandles::Links* const last = sentinel.previous;
  sentinel.previous = first;
  data.objectErase(1);
  sentinel.previous = last;
  EXPECT_EQ(describeObjects(data), intDescriptions({0, 2, 4}));
  EXPECT_VALID_LIST(target);
}

TEST_F(ListDataTest, AssignToALinkedListOverwritesItsNodesInPlace) {
  Handle target = object("LinkedList");
  ListData& data = record(target);
  for (int i = 0; i < 4; ++i) data.objectPushBack(integer("Int", i));
  LinkedHandles::Links* const first = data.linkedObjects.sentinel.next;
  LinkedHandles::Links* const second = first->next;
  collections::HandleVector values;
  for (int i = 0; i < 2; ++i) {
    Handle value = integer("Int", 10 + i);
    values->push_back(value);
  }
  data.objectAssign(*values);
  EXPECT_EQ(data.linkedObjects.sentinel.next, first);
  EXPECT_EQ(data.linkedObjects.sentinel.previous, second);
  EXPECT_EQ(describeObjects(data), intDescriptions({10, 11}));
  EXPECT_VALID_LIST(target);
}

TEST_F(ListDataTest, AssignToAnArrayBackedListKeepsAndGrowsTheCapacity) {
  Handle target = object("ArrayList");
  ListData& data = record(target);
  for (int i = 0; i < 9; ++i) data.objectPushBack(integer("Int", i));
  ASSERT_EQ(data.objects.capacity, 16u);
  collections::HandleVector values;
  Handle value = integer("Int", 5);
  values->push_back(value);
  data.objectAssign(*values);
  EXPECT_EQ(data.objects.capacity, 16u);
  for (std::uint64_t i = 1; i < 16; ++i) EXPECT_EQ(data.objects.data[i], nullptr) << i;
  for (int i = 0; i < 16; ++i) values->push_back(value);
  data.objectAssign(*values);
  EXPECT_EQ(data.objects.capacity, 32u);
  EXPECT_EQ(data.objects.size, 17u);
  EXPECT_VALID_LIST(target);
}

TEST_F(ListDataTest, FailedAssignLeavesAValidRecord) {
  for (const char* name : {"ArrayList", "LinkedList"}) {
    Handle target;
    collections::HandleVector values;
    Handle value = integer("Int", 5);
    for (int i = 0; i < 6; ++i) values->push_back(value);
    const int failures = sweepAllocationFailures(
        [&] {
          target = object(name);
          record(target).objectPushBack(value);
        },
        [&] { record(target).objectAssign(*values); }, [&] { EXPECT_VALID_LIST(target); });
    EXPECT_GE(failures, 1) << name;
    EXPECT_EQ(record(target).objectCount(), 6u);
  }
}

TEST_F(ListDataTest, ConfigureKeepsTheBytesWhenTheWidthIsTheSame) {
  Handle target = primitiveList("Byte", {1, 200, 3});
  ListData& data = record(target);
  unsigned char* const bytes = data.primitive.data;
  for (const Kind kind : {Kind::SByte, Kind::Boolean, Kind::Byte, Kind::None, kindNumbered(12), kindNumbered(255)}) {
    configurePrimitiveStorage(data, kind);
    EXPECT_EQ(data.primitive.size, 3u);
    EXPECT_EQ(data.primitive.elementSize, 1u);
    EXPECT_EQ(data.primitive.data, bytes);
    EXPECT_EQ(data.primitive.data[1], 200);
  }
  EXPECT_EQ(data.primitiveKind, Kind::Byte) << "the kind is the caller's to set";
}

TEST_F(ListDataTest, ConfigureForEveryKindFromEveryKind) {
  for (const NamedKind& from : kNamedKinds) {
    for (const NamedKind& to : kNamedKinds) {
      Handle target = primitiveList(from.name, {1, 1, 0});
      ListData& data = record(target);
      if (from.width != 8) data.primitive.reserve(from.inlineCapacity + 1);
      const std::uint64_t capacity = data.primitive.capacity;
      unsigned char* const bytes = data.primitive.data;
      configurePrimitiveStorage(data, to.kind());
      EXPECT_EQ(data.primitive.elementSize, to.width);
      if (from.width == to.width) {
        EXPECT_EQ(data.primitive.size, 3u) << from.name << " to " << to.name;
        EXPECT_EQ(data.primitive.capacity, capacity);
        EXPECT_EQ(data.primitive.data, bytes);
      } else {
        EXPECT_EQ(data.primitive.size, 0u) << from.name << " to " << to.name;
        EXPECT_EQ(data.primitive.capacity, to.inlineCapacity);
        EXPECT_EQ(data.primitive.data, data.primitive.inlineBytes);
      }
      EXPECT_EQ(data.primitiveKind, from.kind());
      clearListStorage(data);
    }
  }
}

TEST_F(ListDataTest, ConfigureForUnknownKindsGivesWidthOne) {
  for (const int kind : {0, 12, 99, 255}) {
    Handle target = primitiveList("Long", {5});
    ListData& data = record(target);
    configurePrimitiveStorage(data, kindNumbered(kind));
    EXPECT_EQ(data.primitive.elementSize, 1u) << kind;
    EXPECT_EQ(data.primitive.capacity, 128u) << kind;
    EXPECT_EQ(data.primitive.size, 0u) << kind;
    clearListStorage(data);
  }
}

TEST_F(ListDataTest, ClearOfPrimitiveStorageResetsKindAndTypeAndKeepsTheCapacity) {
  Handle target = primitiveList("Int");
  ListData& data = record(target);
  data.elementType = internRuntimeTypeName("Int");
  for (int i = 0; i < 33; ++i) primitiveListAppend(data, i, i);
  EXPECT_EQ(data.primitive.capacity, 64u);
  EXPECT_NE(data.primitive.data, data.primitive.inlineBytes);
  data.i64Mirror.size = 4;
  data.f64Mirror.size = 4;
  clearListStorage(data);
  EXPECT_EQ(data.primitiveKind, Kind::None);
  EXPECT_EQ(data.primitiveType.name, nullptr);
  EXPECT_EQ(data.primitive.size, 0u);
  EXPECT_EQ(data.primitive.capacity, 64u);
  EXPECT_EQ(data.primitive.elementSize, 4u);
  EXPECT_EQ(data.i64Mirror.size, 0u);
  EXPECT_EQ(data.f64Mirror.size, 0u);
  EXPECT_EQ(data.elementType.get(), "Int");
  EXPECT_VALID_LIST(target);
}

TEST_F(ListDataTest, LogicalSizeCountsTheLiveStorage) {
  Handle primitive = primitiveList("Double", {1, 2, 3});
  EXPECT_EQ(record(primitive).logicalSize(), 3u);
  EXPECT_EQ(record(primitive).objectCount(), 0u);
  Handle linked = object("LinkedList");
  record(linked).objectPushBack(nullptr);
  EXPECT_EQ(record(linked).logicalSize(), 1u);
  EXPECT_EQ(record(linked).objectCount(), 1u);
}

TEST_F(ListDataTest, InlineStorageHoldsExactlyTheInlineCapacityOfEachKind) {
  for (const NamedKind& row : kNamedKinds) {
    Handle target = primitiveList(row.name);
    ListData& data = record(target);
    for (std::uint64_t i = 0; i < row.inlineCapacity; ++i) primitiveListAppend(data, 1, 1.0);
    EXPECT_EQ(data.primitive.data, data.primitive.inlineBytes) << row.name;
    primitiveListAppend(data, 1, 1.0);
    EXPECT_NE(data.primitive.data, data.primitive.inlineBytes) << row.name;
    EXPECT_EQ(data.primitive.capacity, row.inlineCapacity * 2) << row.name;
    EXPECT_VALID_LIST(target);
  }
}

}  // namespace
}  // namespace vorn::tests
