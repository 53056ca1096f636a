// Tuple objects: their fields, their room, and what the embedding API makes of them.
#include <new>

#include "collections/core/port/objects.h"
#include "collections/core/port/text.h"
#include "collections/core/port/values.h"
#include "runtime/objects/tuple_object.h"
#include "tests/support/sequences.h"

namespace vorn::tests {
namespace {

using Tuples = RuntimeTest;

TEST_F(Tuples, New_IsEmptyWhateverItsName) {
  for (const char* name : {"Tuple", "vorn.collections.Tuple", "Tuple<String,Int>", "vorn.collections.Tuple<vorn.Int>",
                           "Tuple<A,B,C,D,E,F,G>"}) {
    const Handle tuple = object(name);
    ASSERT_NE(tuple.get(), nullptr) << name;
    EXPECT_EQ(Vorn_getField_i64(tuple, "size"), 0) << name;
    EXPECT_EQ(Vorn_getField_ptr(tuple, "_0"), nullptr) << name;
    EXPECT_EQ(static_cast<ObjectRecord*>(tuple.get())->kind(), ObjectKind::Tuple) << name;
  }
  EXPECT_STREQ(vorn_type_name(object("Tuple<vorn.String, Int>")), "vorn.collections.Tuple<String,Int>");
}

TEST_F(Tuples, RoomIsThatOfTheTypeArguments) {
  const auto roomOf = [](const char* name) { return runtime::tupleOf(object(name))->capacity; };
  EXPECT_EQ(roomOf("Tuple<Int>"), 1U);
  EXPECT_EQ(roomOf("Tuple<Int,Map<String,Int>,Int>"), 3U);
}

TEST_F(Tuples, Items_AreFieldsByNumber) {
  const Handle tuple = object("Tuple<String,Int>");
  const Handle one = integer("Int", 1);
  const Handle two = integer("Int", 2);
  Vorn_setField_ptr(tuple, "_0", one);
  Vorn_setField_ptr(tuple, "_1", two);
  Vorn_setField_i64(tuple, "size", 2);
  EXPECT_EQ(Vorn_getField_ptr(tuple, "_0"), one.get());
  EXPECT_EQ(Vorn_getField_ptr(tuple, "_1"), two.get());
  EXPECT_EQ(Vorn_getField_i64(tuple, "size"), 2);
  EXPECT_EQ(Vorn_getField_i64(tuple, "_0"), 0);
  EXPECT_EQ(findObjectField(getObject(tuple), "_0"), nullptr);
  ASSERT_NE(findObjectField(getObject(tuple), "size"), nullptr);
  EXPECT_EQ(findObjectField(getObject(tuple), "size")->kind, ObjectField::Kind::Integer);
}

TEST_F(Tuples, Items_OtherNamesAreNone) {
  const Handle tuple = tupleOf({integer("Int", 1), integer("Int", 2)});
  const Handle other = integer("Int", 3);
  for (const char* name :
       {"_00", "_01", "_", "0", "_-1", "_+1", "_1 ", "_1x", "__1", "_18446744073709551616", "", "size", "_value"}) {
    EXPECT_EQ(Vorn_getField_ptr(tuple, name), nullptr) << name;
    Vorn_setField_ptr(tuple, name, other);
    EXPECT_EQ(Vorn_getField_i64(tuple, "size"), 2) << name;
    EXPECT_NE(Vorn_getField_ptr(tuple, "_0"), other.get()) << name;
    EXPECT_NE(Vorn_getField_ptr(tuple, "_1"), other.get()) << name;
  }
  EXPECT_EQ(Vorn_getField_ptr(tuple, nullptr), nullptr);
  Vorn_setField_ptr(tuple, nullptr, other);
}

TEST_F(Tuples, Items_OutsideTheRoomAreNull) {
  const Handle tuple = tupleOf({integer("Int", 1)});
  for (const char* name : {"_4", "_9", "_1000000", "_18446744073709551615"}) {
    EXPECT_EQ(Vorn_getField_ptr(tuple, name), nullptr) << name;
  }
}

TEST_F(Tuples, Items_RoomGrowsAndKeepsWhatIsThere) {
  const Handle tuple = object("Tuple<Int>");
  const int count = onStressHeap() ? 40 : 1000;
  for (int i = 0; i < count; ++i) {
    Vorn_setField_ptr(tuple, ("_" + std::to_string(i)).c_str(), integer("Int", i));
  }
  Vorn_setField_i64(tuple, "size", count);
  vorn_heap_collect();
  for (int i = 0; i < count; ++i) {
    std::int64_t value = -1;
    ASSERT_EQ(vorn_unbox_integer(Vorn_getField_ptr(tuple, ("_" + std::to_string(i)).c_str()), &value), 1);
    EXPECT_EQ(value, i);
  }
}

TEST_F(Tuples, Items_WithoutMemoryForThemLeaveTheTupleAsItWas) {
  const Handle item = integer("Int", 7);
  const Handle tuple = tupleOf({item}, "Tuple<Int>");
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(Vorn_setField_ptr(tuple, "_1", item), std::bad_alloc);
  EXPECT_THROW(Vorn_setField_ptr(tuple, "_18446744073709551615", item), std::bad_alloc);
  EXPECT_THROW(Vorn_setField_ptr(tuple, "_2305843009213693951", item), std::bad_alloc);
  vorn_heap_fail_allocation(-1);
  EXPECT_EQ(Vorn_getField_ptr(tuple, "_0"), item.get());
  EXPECT_EQ(Vorn_getField_ptr(tuple, "_1"), nullptr);
  EXPECT_EQ(vorn_field_set_handle(tuple, "_18446744073709551615", item), 0);
}

TEST_F(Tuples, Embedding_MakesAndReadsThem) {
  const Handle a = string("a");
  const Handle one = integer("Int", 1);
  void* items[] = {a, one};
  const Handle tuple = vorn_tuple_new("Tuple<String,Int>", items, 2);
  EXPECT_STREQ(vorn_type_name(tuple), "vorn.collections.Tuple<String,Int>");
  void* item = nullptr;
  EXPECT_EQ(vorn_field_get_handle(tuple, "_1", &item), 1);
  EXPECT_EQ(item, one.get());
  EXPECT_EQ(vorn_field_get_handle(tuple, "_2", &item), 0);
  EXPECT_EQ(vorn_field_get_handle(tuple, "size", &item), 0);
  std::int64_t size = 0;
  EXPECT_EQ(vorn_field_get_integer(tuple, "size", &size), 1);
  EXPECT_EQ(size, 2);
  EXPECT_EQ(vorn_field_set_handle(tuple, "_0", nullptr), 1);
  EXPECT_EQ(vorn_field_get_handle(tuple, "_0", &item), 1);
  EXPECT_EQ(item, nullptr);
}

TEST_F(Tuples, Embedding_RefusesOtherNamesAndMissingItems) {
  EXPECT_EQ(vorn_tuple_new("ArrayList", nullptr, 0), nullptr);
  EXPECT_EQ(vorn_tuple_new("Nothing", nullptr, 0), nullptr);
  EXPECT_EQ(vorn_tuple_new(nullptr, nullptr, 1), nullptr);
  EXPECT_EQ(vorn_collections_Tuple_size(Handle(vorn_tuple_new(nullptr, nullptr, 0))), 0);
}

TEST_F(Tuples, Embedding_RootsTheItemsAndSurvivesMissingMemory) {
  void* items[6];
  for (void*& item : items) item = Vorn_boxBool(true);
  Handle kept = string("kept");
  items[5] = kept;
  for (int failing = 0; failing < 2; ++failing) {
    vorn_heap_fail_allocation(failing);
    EXPECT_EQ(vorn_tuple_new(nullptr, items, 6), nullptr) << failing;
  }
  vorn_heap_fail_allocation(-1);
  kept = nullptr;  // from here on the call itself has to keep it
  const Handle tuple = vorn_tuple_new(nullptr, items, 6);
  EXPECT_STREQ(vorn_string_text(vorn_collections_Tuple_operator_index(tuple, -1)), "kept");
}

TEST_F(Tuples, Text_IsTheDisplay) { EXPECT_STREQ(Vorn_objectToString(tupleOf({integer("Int", 1)})), "(1,)"); }

}  // namespace
}  // namespace vorn::tests
