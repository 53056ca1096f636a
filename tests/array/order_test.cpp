// Sort and reverse, in place and as copies.
#include <algorithm>
#include <cmath>
#include <random>

#include "tests/array/array_cases.h"
#include "tests/support/sequences.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

class ArrayOrder : public RuntimeTest {};

Handle rankedArray(const std::string& type, const Integers& ids) {
  std::vector<Handle> elements;
  for (const long long id : ids) elements.push_back(ranked(id));
  return arrayOf(type, elements);
}

Integers idsOf(void* array) {
  Integers ids;
  for (const void* handle : ArrayState(array).handles) ids.push_back(idOf(const_cast<void*>(handle)));
  return ids;
}

// ---- Unboxed slots --------------------------------------------------------------------------------------------------

TEST_F(ArrayOrder, Sort_IntegerKindsByTheirOwnType) {
  const struct {
    const char* element;
    Integers expected;  // as getInt reads it
  } cases[] = {{"SByte", {-128, -1, 0, 1, 127}},
               {"Byte", {0, 1, 127, 128, 255}},
               {"Short", {-128, -1, 0, 1, 127}},
               {"UShort", {0, 1, 127, 65408, 65535}},
               {"CodeUnit", {0, 1, 127, 65408, 65535}},
               {"Int", {-128, -1, 0, 1, 127}},
               {"UInt", {0, 1, 127, 4294967168, 4294967295}},
               {"Char", {0, 1, 127, 4294967168, 4294967295}},
               {"Long", {-128, -1, 0, 1, 127}},
               {"ULong", {0, 1, 127, -128, -1}}};
  for (const auto& entry : cases) {
    for (const bool synchronised : {false, true}) {
      SCOPED_TRACE(entry.element);
      const Handle array = newArray(arrayType(entry.element, synchronised), 5);
      const long long values[] = {127, -128, 1, -1, 0};
      for (std::uint64_t i = 0; i < 5; ++i) arrayWrite(recordOf(array), i, values[i], 0.0);
      vorn_collections_Array_sort(array);
      EXPECT_EQ(integersOf(array), entry.expected);
      EXPECT_ARRAY_AT_REST(array);
    }
  }
}

TEST_F(ArrayOrder, Sort_BooleansFalseFirstAsBytes) {
  const Handle array = intArray("Array<Boolean>", {1, 0, 1, 0, 0});
  vorn_collections_Array_sort(array);
  EXPECT_EQ(integersOf(array), (Integers{0, 0, 0, 1, 1}));
  recordOf(array).primitive.data[0] = 0xFF;
  recordOf(array).primitive.data[1] = 2;
  vorn_collections_Array_sort(array);
  EXPECT_EQ(ArrayState(array).bytes, (std::vector<unsigned char>{0, 1, 1, 2, 0xFF}));
}

TEST_F(ArrayOrder, Sort_FloatingKindsWithNaNLast) {
  for (const char* element : {"Double", "Float"}) {
    const Handle array = doubleArray(arrayType(element), {3.0, std::nan(""), 1.0});
    vorn_collections_Array_sort(array);
    const Doubles sorted = doublesOf(array);
    EXPECT_EQ(sorted[0], 1.0);
    EXPECT_EQ(sorted[1], 3.0);
    EXPECT_TRUE(std::isnan(sorted[2]));
    const Handle many =
        doubleArray(arrayType(element), {std::nan(""), 0.0, HUGE_VAL, -std::nan(""), -0.0, -HUGE_VAL, -1.5, 1e-30});
    vorn_collections_Array_sort(many);
    const Doubles order = doublesOf(many);
    EXPECT_EQ(order[0], -HUGE_VAL);
    EXPECT_EQ(order[1], -1.5);
    EXPECT_EQ(order[2], 0.0);
    EXPECT_EQ(order[3], 0.0);
    EXPECT_NE(std::signbit(order[2]), std::signbit(order[3])) << "both zeros are still there";
    EXPECT_GT(order[4], 0.0);
    EXPECT_EQ(order[5], HUGE_VAL);
    EXPECT_TRUE(std::isnan(order[6]) && std::isnan(order[7]));
    EXPECT_ARRAY_AT_REST(many);
  }
}

TEST_F(ArrayOrder, Sort_ManySlotsOfEveryKind_AgreesWithASortOfTheReadings) {
  std::mt19937_64 random(7);
  for (const SlotCase& slots : kSlotCases) {
    if (slots.kind == SlotKind::Object) continue;
    for (const long long size : {2, 17, 100, 5000}) {
      SCOPED_TRACE(std::string(slots.element) + " " + std::to_string(size));
      const Handle array = newArray(arrayType(slots.element), size);
      ArrayData& data = recordOf(array);
      for (std::uint64_t i = 0; i < static_cast<std::uint64_t>(size); ++i) {
        const auto value = static_cast<long long>(random());
        arrayWrite(data, i, slots.kind == SlotKind::Bool ? value & 1 : value, static_cast<double>(value) / 7);
      }
      Doubles doubles = doublesOf(array);
      Integers integers = integersOf(array);
      std::sort(doubles.begin(), doubles.end());
      std::sort(integers.begin(), integers.end(), [&](long long left, long long right) {
        if (slots.kind != SlotKind::UInt64) return left < right;
        return static_cast<unsigned long long>(left) < static_cast<unsigned long long>(right);
      });
      vorn_collections_Array_sort(array);
      if (isFloatingName(slots.element)) {
        EXPECT_EQ(doublesOf(array), doubles);
      } else {
        EXPECT_EQ(integersOf(array), integers);
      }
      EXPECT_ARRAY_AT_REST(array);
    }
  }
}

// ---- Handles --------------------------------------------------------------------------------------------------------

TEST_F(ArrayOrder, Sort_MixedHandles_NullThenPlainTextsThenObjects) {
  for (const bool synchronised : {false, true}) {
    const Handle array = arrayOf(arrayType("", synchronised), {integer("Int", 2), text("b"), floating("Double", 1.5),
                                                               nullptr, text("a"), integer("Long", -7), text("B")});
    vorn_collections_Array_sort(array);
    EXPECT_EQ(itemsOf(array), (Elements{"null", "text B", "text a", "text b", "Long -7", "Double 1.5", "Int 2"}));
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayOrder, Sort_StringObjectsByTheirBytes) {
  const Handle array = arrayOf("Array<String>", {string("b"), string("a\xC3\xA4"), string("a"), string("")});
  vorn_collections_Array_sort(array);
  EXPECT_EQ(itemsOf(array), (Elements{"String ", "String a", "String a\xC3\xA4", "String b"}));
}

TEST_F(ArrayOrder, Sort_NumbersAcrossTypesWithNaNLast) {
  const Handle array = arrayOf("Array", {floating("Double", std::nan("")), integer("Int", 3), floating("Float", 0.5),
                                         integer("ULong", -1), integer("Byte", 1)});
  vorn_collections_Array_sort(array);
  EXPECT_EQ(itemsOf(array), (Elements{"Float 0.5", "Byte 1", "Int 3", "ULong -1", "Double nan"}));
}

TEST_F(ArrayOrder, Sort_UserOrdering) {
  for (const std::size_t size : {0U, 1U, 2U, 16U, 17U, 100U}) {
    Integers ids(size);
    for (std::size_t i = 0; i < size; ++i) ids[i] = static_cast<long long>((i * 37) % 101);
    const Handle array = rankedArray("ArraySync<app.Ranked>", ids);
    int calls = 0;
    const ScopedOrdering ordering([&](void* self, void* other) {
      ++calls;
      EXPECT_FALSE(isUnlockedArray(array)) << "the lock is held for the whole sort";
      return idOf(self) < idOf(other) ? -1 : idOf(self) > idOf(other) ? 1 : 0;
    });
    vorn_collections_Array_sort(array);
    EXPECT_EQ(calls != 0, size > 1);
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(idsOf(array), ids);
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayOrder, Sort_AnErrorDoesNotStopTheSort) {
  for (const bool synchronised : {false, true}) {
    Integers ids(40);
    for (std::size_t i = 0; i < ids.size(); ++i) ids[i] = static_cast<long long>((i * 17) % 41);
    const Handle array = rankedArray(arrayType("", synchronised), ids);
    int calls = 0;
    {
      const ScopedOrdering ordering([&](void* self, void* other) {
        if (++calls == 1) vorn_raise("Exception", "from ordering");
        return idOf(self) < idOf(other) ? -1 : idOf(self) > idOf(other) ? 1 : 0;
      });
      vorn_collections_Array_sort(array);
    }
    EXPECT_RAISED("Exception: from ordering");
    EXPECT_GT(calls, 40) << "the sort went on";
    Integers after = idsOf(array);
    std::sort(after.begin(), after.end());
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(after, ids) << "no element is lost";
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayOrder, Sort_ErrorPendingBefore_OrdersNumbersAllTheSame) {
  const Handle array = arrayOf("Array", {integer("Int", 3), integer("Int", 1), integer("Int", 2)});
  vorn_raise("Exception", "before");
  vorn_collections_Array_sort(array);
  EXPECT_RAISED("Exception: before");
  EXPECT_EQ(itemsOf(array), (Elements{"Int 1", "Int 2", "Int 3"}));
}

TEST_F(ArrayOrder, Sort_AnOrderingThatContradictsItself_LeavesAPermutation) {
  std::mt19937 random(3);
  for (int round = 0; round < 20; ++round) {
    Integers ids(60);
    for (std::size_t i = 0; i < ids.size(); ++i) ids[i] = static_cast<long long>(i);
    const Handle array = rankedArray("Array", ids);
    const ScopedOrdering ordering([&](void*, void*) { return static_cast<int>(random() % 3) - 1; });
    vorn_collections_Array_sort(array);
    Integers after = idsOf(array);
    std::sort(after.begin(), after.end());
    EXPECT_EQ(after, ids);
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayOrder, Sort_AnOrderingThatChangesTheArray_NeverLeavesItsBounds) {
  const Handle doubles = doubleArray("Array<Double>", Doubles(50, 1.5));
  for (const int change : {0, 1, 2, 3}) {
    SCOPED_TRACE(change);
    Integers ids(60);
    for (std::size_t i = 0; i < ids.size(); ++i) ids[i] = static_cast<long long>((i * 7) % 61);
    const Handle array = rankedArray("Array", ids);
    int calls = 0;
    const ScopedOrdering ordering([&](void* self, void* other) {
      if (++calls == 9) {
        if (change == 0) vorn_collections_Array_ctor(array, 3);
        if (change == 1) vorn_collections_Array_ctor(array, 500);
        if (change == 2) vorn_collections_Array_copyCtor(array, doubles);
        if (change == 3) vorn_collections_Array_reverse(array);
        vorn_heap_collect();
      }
      return idOf(self) < idOf(other) ? -1 : idOf(self) > idOf(other) ? 1 : 0;
    });
    vorn_collections_Array_sort(array);
    EXPECT_GT(calls, 9);
    EXPECT_ARRAY_AT_REST(array);
    itemsOf(array);  // every element is alive
    if (change == 2) {
      EXPECT_EQ(doublesOf(array), Doubles(50, 1.5)) << "no handle got into unboxed slots";
    }
  }
}

TEST_F(ArrayOrder, Sort_AnOrderingThatConstructsTheArrayAnew_PutsNoForeignElementsBack) {
  const Handle typed = rankedArray("Array<app.Ranked>", {10, 20, 30});
  for (const bool synchronised : {false, true}) {
    const Handle array = arrayOf(arrayType("", synchronised), {ranked(2), ranked(1), object("ArrayList")});
    bool constructed = false;
    const ScopedOrdering ordering([&](void* self, void* other) {
      if (!constructed) vorn_collections_Array_copyCtor(array, typed);
      constructed = true;
      return idOf(self) < idOf(other) ? -1 : idOf(self) > idOf(other) ? 1 : 0;
    });
    vorn_collections_Array_sort(array);
    EXPECT_TRUE(constructed);
    EXPECT_EQ(idsOf(array), (Integers{10, 20, 30}));
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayOrder, Sort_AnArrayThatHoldsItself) {
  const Handle array = object("ArraySync");
  vorn_collections_Array_ctor(array, 2);
  vorn_collections_Array_operator_index_eq(array, 0, array);
  vorn_collections_Array_operator_index_eq(array, 1, object("ArraySync"));
  vorn_collections_Array_sort(array);
  EXPECT_EQ(vorn_collections_Array_indexOf(array, object("ArrayList"), 0), -1);
  EXPECT_ARRAY_AT_REST(array);
}

// ---- Reverse --------------------------------------------------------------------------------------------------------

TEST_F(ArrayOrder, Reverse_EveryKind) {
  for (const long long size : {0, 1, 2, 5, 70}) {
    forEachArray(size, [](const Handle& array, const std::string&, bool) {
      Elements expected = itemsOf(array);
      std::reverse(expected.begin(), expected.end());
      vorn_collections_Array_reverse(array);
      EXPECT_EQ(itemsOf(array), expected);
      EXPECT_ARRAY_AT_REST(array);
    });
  }
}

// ---- Copies ---------------------------------------------------------------------------------------------------------

TEST_F(ArrayOrder, NewArrays_LeaveTheReceiverAloneAndHaveItsType) {
  for (const long long size : {0, 1, 6, 40}) {
    forEachArray(size, [](const Handle& array, const std::string&, bool synchronised) {
      vorn_collections_Array_reverse(array);
      const ArrayState before(array);
      const Handle sorted = vorn_collections_Array_sortNew(array);
      const Handle reversed = vorn_collections_Array_reverseNew(array);
      EXPECT_ARRAY_UNTOUCHED(array, before);
      Elements items = itemsOf(array);
      std::reverse(items.begin(), items.end());
      EXPECT_EQ(itemsOf(reversed), items);
      vorn_collections_Array_sort(array);
      EXPECT_EQ(itemsOf(sorted), itemsOf(array));
      for (const Handle& result : {sorted, reversed}) {
        EXPECT_STREQ(vorn_type_name(result), vorn_type_name(array));
        EXPECT_EQ(recordOf(result).elementType, recordOf(array).elementType);
        EXPECT_EQ(recordOf(result).slotKind, recordOf(array).slotKind);
        EXPECT_EQ(recordOf(result).synchronized, synchronised);
        EXPECT_NE(result.get(), array.get());
        if (synchronised) {
          EXPECT_NE(recordOf(result).mutex, recordOf(array).mutex) << "a lock of its own";
        }
        EXPECT_EQ(sizeField(result), 0);
        EXPECT_ARRAY_AT_REST(result);
      }
    });
  }
}

TEST_F(ArrayOrder, NewArrays_OfACopyTakeItsElementTypeNotTheClasss) {
  const Handle array = object("Array<Int>");
  vorn_collections_Array_copyCtor(array, doubleArray("Array<Double>", {2.5, 1.5}));
  const Handle sorted = vorn_collections_Array_sortNew(array);
  EXPECT_EQ(itemsOf(sorted), (Elements{"Double 1.5", "Double 2.5"}));
  EXPECT_STREQ(vorn_type_name(sorted), "vorn.collections.Array<Int>");
}

TEST_F(ArrayOrder, Null_IsNeutral) {
  vorn_collections_Array_sort(nullptr);
  vorn_collections_Array_reverse(nullptr);
  EXPECT_EQ(vorn_collections_Array_sortNew(nullptr), nullptr);
  EXPECT_EQ(vorn_collections_Array_reverseNew(nullptr), nullptr);
  EXPECT_NOTHING_RAISED();
}

}  // namespace
}  // namespace vorn::tests
