// The layout and the growth of each storage.
#include <cstring>

#include "collections/core/elements/element_types.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/list_cases.h"

namespace vorn::tests {
namespace {

class StorageGrowth : public RuntimeTest {};

vorn_list_storage_info infoOf(void* target) {
  vorn_list_storage_info info;
  EXPECT_NE(vorn_list_get_storage(target, &info), 0);
  return info;
}

TEST_F(StorageGrowth, ThirtyThreeInts_LeaveInlineStorageForCapacitySixtyFour) {
  const Handle target = object("ArrayList<Int>");
  for (int i = 0; i < 32; ++i) vorn_collections_ArrayList_addInt(target, i);
  EXPECT_EQ(infoOf(target).capacity, 32U);
  EXPECT_EQ(getListData(target)->primitive.data, getListData(target)->primitive.inlineBytes);
  vorn_collections_ArrayList_addInt(target, 32);
  EXPECT_EQ(infoOf(target).capacity, 64U);
  EXPECT_EQ(infoOf(target).size, 33U);
  EXPECT_NE(getListData(target)->primitive.data, getListData(target)->primitive.inlineBytes);
  for (int i = 0; i < 33; ++i) EXPECT_EQ(vorn_collections_ArrayList_getInt(target, i), i);
  EXPECT_AT_REST(target);
}

TEST_F(StorageGrowth, EveryKind_HasOneHundredAndTwentyEightInlineBytesAndDoubles) {
  for (const std::string& name : primitiveNames()) {
    SCOPED_TRACE(name);
    const Handle target = object("ArrayList<" + name + ">");
    const Handle one = box(name, 1);
    const auto width = collections::primitiveWidth(primitiveKindForType(name));
    const auto inlineCapacity = 128 / width;
    for (std::uint64_t size = 1; size <= 2 * inlineCapacity + 1; ++size) {
      vorn_collections_ArrayList_add(target, one);
      const auto expected = size <= inlineCapacity       ? inlineCapacity
                            : size <= 2 * inlineCapacity ? 2 * inlineCapacity
                                                         : 4 * inlineCapacity;
      ASSERT_EQ(infoOf(target).capacity, expected) << "at " << size;
    }
    EXPECT_EQ(infoOf(target).bytes_per_element, width);
    EXPECT_EQ(getListData(target)->primitive.elementSize, width);
    EXPECT_AT_REST(target);
  }
}

TEST_F(StorageGrowth, InsertionGrowsTheSameWay) {
  const Handle target = object("ArrayList<Long>");
  for (int i = 0; i < 17; ++i) vorn_collections_ArrayList_addAt(target, 0, integer("Long", i));
  EXPECT_EQ(infoOf(target).capacity, 32U);
  for (int i = 0; i < 17; ++i) EXPECT_EQ(vorn_collections_ArrayList_getInt(target, i), 16 - i);
}

TEST_F(StorageGrowth, ObjectStorage_HasFourInlineSlotsAndDoubles) {
  const Handle target = object("ArrayList<String>");
  const Handle value = string("x");
  for (std::uint64_t size = 1; size <= 17; ++size) {
    vorn_collections_ArrayList_add(target, value);
    const ListData& data = *getListData(target);
    std::uint64_t expected = 4;
    while (expected < size) expected *= 2;
    EXPECT_EQ(infoOf(target).capacity, expected);
    EXPECT_EQ(data.objects.data == data.objects.inlineSlots, size <= 4);
    for (std::uint64_t i = size; i < expected; ++i) EXPECT_EQ(data.objects.data[i], nullptr);
  }
  EXPECT_EQ(infoOf(target).bytes_per_element, sizeof(void*));
  EXPECT_AT_REST(target);
}

TEST_F(StorageGrowth, Materialisation_ReservesByDoublingAndLeavesThePrimitiveBuffer) {
  const Handle target = object("ArrayList<Int>");
  for (int i = 0; i < 33; ++i) vorn_collections_ArrayList_addInt(target, i);
  EXPECT_EQ(vorn_collections_ArrayList_count(target, nullptr), 0);
  const ListData& data = *getListData(target);
  EXPECT_EQ(data.objects.size, 33U);
  EXPECT_EQ(data.objects.capacity, 64U);
  EXPECT_EQ(data.primitive.size, 0U);
  EXPECT_EQ(data.primitive.capacity, 64U);
  EXPECT_EQ(data.primitive.elementSize, 4U);
  EXPECT_EQ(data.primitiveType.name, nullptr);
  EXPECT_EQ(declaredTypeOf(target), "Int");
  for (int i = 0; i < 33; ++i) EXPECT_EQ(vorn_collections_ArrayList_getInt(target, i), i);
  EXPECT_AT_REST(target);
}

TEST_F(StorageGrowth, MaterialisedElements_BearTheNameTheyWereKeptUnder) {
  for (const std::string& name : primitiveNames()) {
    const Handle target = list("ArrayList", {box(name, 1), box(name, 0)});
    vorn_collections_ArrayList_add(target, nullptr);
    EXPECT_EQ(elementsOf(target), (Elements{describe(box(name, 1)), describe(box(name, 0)), "null"}));
    const Handle first = vorn_collections_ArrayList_operator_index(target, 0);
    EXPECT_EQ(vorn_type_name(first), "vorn." + name);
  }
}

TEST_F(StorageGrowth, Elements_ArePackedInNativeByteOrder) {
  const Handle shorts = object("ArrayList<Short>");
  for (const int value : {1, -2, 300}) vorn_collections_ArrayList_addInt(shorts, value);
  const std::int16_t expected[] = {1, -2, 300};
  EXPECT_EQ(std::memcmp(getListData(shorts)->primitive.data, expected, sizeof(expected)), 0);
  const Handle flags = object("ArrayList");
  vorn_collections_ArrayList_addPrimitiveI64(flags, 256, "Boolean");
  vorn_collections_ArrayList_addPrimitiveBool(flags, false);
  EXPECT_EQ(getListData(flags)->primitive.data[0], 1);
  EXPECT_EQ(getListData(flags)->primitive.data[1], 0);
}

TEST_F(StorageGrowth, ChangingWidths_AfterClear_StartsInline) {
  const Handle target = object("ArrayList");
  for (int i = 0; i < 40; ++i) vorn_collections_ArrayList_addInt(target, i);
  EXPECT_EQ(infoOf(target).capacity, 64U);
  vorn_collections_ArrayList_clear(target);
  vorn_collections_ArrayList_addPrimitiveI64(target, 1, "UInt");  // the same width keeps the block
  EXPECT_EQ(infoOf(target).capacity, 64U);
  vorn_collections_ArrayList_clear(target);
  vorn_collections_ArrayList_addPrimitiveI64(target, 1, "Long");
  EXPECT_EQ(infoOf(target).capacity, 16U);
  vorn_collections_ArrayList_clear(target);
  vorn_collections_ArrayList_addPrimitiveBool(target, true);
  EXPECT_EQ(infoOf(target).capacity, 128U);
  EXPECT_EQ(elementsOf(target), (Elements{"Boolean 1"}));
  EXPECT_AT_REST(target);
}

TEST_F(StorageGrowth, RemovalsNeverShrink) {
  const Handle target = object("ArrayList<Int>");
  for (int i = 0; i < 33; ++i) vorn_collections_ArrayList_addInt(target, i);
  for (int i = 0; i < 33; ++i) vorn_collections_ArrayList_removeAt(target, -1);
  EXPECT_EQ(infoOf(target).capacity, 64U);
  EXPECT_EQ(infoOf(target).size, 0U);
}

TEST_F(StorageGrowth, LinkedLists_ReportTheirSizeAsCapacity) {
  const Handle target = list("LinkedList<Int>", {integer("Int", 1), integer("Int", 2)});
  EXPECT_EQ(infoOf(target).storage, VORN_LIST_LINKED);
  EXPECT_EQ(infoOf(target).capacity, 2U);
  EXPECT_EQ(infoOf(target).bytes_per_element, sizeof(LinkedHandles::Node));
  EXPECT_STREQ(infoOf(target).element_type, "Int");
  EXPECT_STREQ(infoOf(target).primitive_type, "");
}

}  // namespace
}  // namespace vorn::tests
