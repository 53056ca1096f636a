// Slices, slice assignment, concatenation.
#include <algorithm>
#include <cmath>

#include "tests/array/array_cases.h"
#include "tests/support/sequences.h"

namespace vorn::tests {
namespace {

class ArrayRanges : public RuntimeTest {};

void expectLike(void* result, void* array) {
  EXPECT_STREQ(vorn_type_name(result), vorn_type_name(array));
  EXPECT_EQ(recordOf(result).elementType, recordOf(array).elementType);
  EXPECT_EQ(recordOf(result).slotKind, recordOf(array).slotKind);
  EXPECT_EQ(recordOf(result).synchronized, recordOf(array).synchronized);
  if (recordOf(array).synchronized) {
    EXPECT_NE(recordOf(result).mutex, recordOf(array).mutex);
  }
  EXPECT_EQ(sizeField(result), 0);
  EXPECT_ARRAY_AT_REST(result);
}

Handle counting(const std::string& type, long long size) {
  const Handle array = newArray(type, size);
  for (long long i = 0; i < size; ++i) vorn_collections_Array_setInt(array, i, i);
  return array;
}

// ---- Slices ---------------------------------------------------------------------------------------------------------

TEST_F(ArrayRanges, Slice_EveryBoundAndStep_AgreesWithTheReference) {
  std::vector<Bound> bounds = {kOmitted};
  const long long reach = onStressHeap() ? 4 : 9;
  for (long long bound = -reach; bound <= reach; ++bound) bounds.emplace_back(bound);
  for (long long size = 0; size <= (onStressHeap() ? 3 : 7); ++size) {
    const Handle array = counting("Array<Int>", size);
    for (const Bound start : bounds) {
      for (const Bound stop : bounds) {
        for (const long long step : {-4LL, -3LL, -2LL, -1LL, 1LL, 2LL, 3LL, 4LL}) {
          const Handle part = arraySlice(array, start, stop, step);
          Integers expected;
          for (const std::size_t at : slicePositions(size, start, stop, step)) {
            expected.push_back(static_cast<long long>(at));
          }
          ASSERT_EQ(integersOf(part), expected)
              << size << " elements from " << start.value_or(-99) << " to " << stop.value_or(-99) << " by " << step;
          ASSERT_EQ(faultOfArray(part), "");
        }
      }
    }
  }
}

TEST_F(ArrayRanges, Slice_Examples) {
  const Handle array = counting("Array<Int>", 5);
  EXPECT_EQ(integersOf(arraySlice(array, kOmitted, kOmitted)), (Integers{0, 1, 2, 3, 4}));
  EXPECT_EQ(integersOf(arraySlice(array, 1, 4)), (Integers{1, 2, 3}));
  EXPECT_EQ(integersOf(arraySlice(array, -2, kOmitted)), (Integers{3, 4}));
  EXPECT_EQ(integersOf(arraySlice(array, kOmitted, kOmitted, 2)), (Integers{0, 2, 4}));
  EXPECT_EQ(integersOf(arraySlice(array, kOmitted, kOmitted, -1)), (Integers{4, 3, 2, 1, 0}));
  EXPECT_EQ(integersOf(arraySlice(array, 3, 0, -1)), (Integers{3, 2, 1}));
  EXPECT_EQ(integersOf(arraySlice(array, -1, -6, -2)), (Integers{4, 2, 0}));
  EXPECT_EQ(integersOf(arraySlice(array, 10, kOmitted)), Integers{});
  EXPECT_EQ(integersOf(arraySlice(array, 3, 1)), Integers{});
  EXPECT_EQ(integersOf(arraySlice(array, -10, 2)), (Integers{0, 1}));
  EXPECT_EQ(integersOf(arraySlice(array, 10, kOmitted, -1)), (Integers{4, 3, 2, 1, 0}));
}

TEST_F(ArrayRanges, Slice_Extremes) {
  const Handle array = counting("Array<Int>", 5);
  EXPECT_EQ(integersOf(arraySlice(array, kLowest, kHighest)), (Integers{0, 1, 2, 3, 4}));
  EXPECT_EQ(integersOf(arraySlice(array, kLowest, kHighest, kHighest)), Integers{0});
  EXPECT_EQ(integersOf(arraySlice(array, 1, kOmitted, kHighest)), Integers{1});
  EXPECT_EQ(integersOf(arraySlice(array, kHighest, kLowest, -1)), (Integers{4, 3, 2, 1, 0}));
  EXPECT_EQ(integersOf(arraySlice(array, kOmitted, kOmitted, kLowest)), Integers{4});
  EXPECT_EQ(integersOf(arraySlice(array, kHighest, kLowest, kLowest)), Integers{4});
  EXPECT_EQ(integersOf(arraySlice(array, kHighest, kHighest)), Integers{});
  EXPECT_EQ(integersOf(arraySlice(array, kLowest, kLowest)), Integers{});
  EXPECT_EQ(integersOf(arraySlice(array, 0, kHighest, -1)), Integers{});
}

TEST_F(ArrayRanges, Slice_EveryKindIsExactAndOfTheReceiversType) {
  for (const long long size : {0, 5, 40}) {
    forEachArray(size, [&](const Handle& array, const std::string&, bool) {
      const ArrayState before(array);
      const Elements items = itemsOf(array);
      const Handle all = arraySlice(array, kOmitted, kOmitted);
      EXPECT_EQ(ArrayState(all).bytes, before.bytes);
      EXPECT_EQ(ArrayState(all).handles, before.handles);
      expectLike(all, array);
      const Handle odd = arraySlice(array, 1, kOmitted, 2);
      Elements expected;
      for (std::size_t i = 1; i < items.size(); i += 2) expected.push_back(items[i]);
      EXPECT_EQ(itemsOf(odd), expected);
      expectLike(odd, array);
      const Handle none = arraySlice(array, 100, kOmitted);
      EXPECT_EQ(vorn_collections_Array_size(none), 0);
      expectLike(none, array);
      EXPECT_ARRAY_UNTOUCHED(array, before);
    });
  }
}

TEST_F(ArrayRanges, Slice_ValuesThatOtherReadingsWouldRound) {
  const Handle longs = intArray("Array<Long>", {kHighest, kLowest, (1LL << 53) + 1});
  EXPECT_EQ(integersOf(arraySlice(longs, kOmitted, kOmitted)), (Integers{kHighest, kLowest, (1LL << 53) + 1}));
  const Handle unsignedLongs = intArray("Array<ULong>", {-1, kLowest});
  EXPECT_EQ(integersOf(arraySlice(unsignedLongs, kOmitted, kOmitted)), (Integers{-1, kLowest}));
  const Handle doubles = doubleArray("Array<Double>", {-0.0, std::nan(""), 5e-324});
  EXPECT_EQ(ArrayState(arraySlice(doubles, kOmitted, kOmitted)).bytes, ArrayState(doubles).bytes);
  const Handle floats = doubleArray("Array<Float>", {-0.0, 0.1, 1e-45});
  EXPECT_EQ(ArrayState(arraySlice(floats, kOmitted, kOmitted)).bytes, ArrayState(floats).bytes);
}

// A copied slot is written as a value, so that whatever byte stood for true becomes 1.
TEST_F(ArrayRanges, SliceAndConcat_BooleanBytesBecomeOne) {
  const Handle array = newArray("Array<Boolean>", 40);
  for (int i = 0; i < 40; ++i) recordOf(array).primitive.data[i] = static_cast<unsigned char>(i * 5);
  const Handle part = arraySlice(array, kOmitted, kOmitted, -1);
  std::vector<unsigned char> expected(40, 1);
  expected[39] = 0;
  EXPECT_EQ(ArrayState(part).bytes, expected);
  const Handle both = vorn_collections_Array_concat(array, newArray("Array<Boolean>", 0));
  std::reverse(expected.begin(), expected.end());
  EXPECT_EQ(ArrayState(both).bytes, expected);
}

TEST_F(ArrayRanges, Slice_OfACopyTakesItsElementTypeNotTheClasss) {
  const Handle array = object("Array<Int>");
  vorn_collections_Array_copyCtor(array, doubleArray("Array<Double>", {2.5, 1.5}));
  EXPECT_EQ(itemsOf(arraySlice(array, 0, 1)), Elements{"Double 2.5"});
  EXPECT_EQ(itemsOf(Handle(vorn_collections_Array_concat(array, tupleOf({integer("Int", 1)})))),
            (Elements{"Double 2.5", "Double 1.5", "Double 1"}));
}

TEST_F(ArrayRanges, Slice_StepZeroRaisesEvenOfAnEmptyArrayAndMakesNothing) {
  forEachArray(0, [](const Handle& array, const std::string&, bool) {
    vorn_heap_fail_allocation(0);
    EXPECT_EQ(vorn_collections_Array_slice(array, 0, 1, 0, nullptr, nullptr), nullptr);
    EXPECT_EQ(vorn_heap_failure_happened(), 0) << "raised before anything else is done";
    vorn_heap_fail_allocation(-1);
    EXPECT_RAISED(kStepError);
    EXPECT_ARRAY_AT_REST(array);
  });
}

TEST_F(ArrayRanges, Null_IsNeutral) {
  EXPECT_EQ(vorn_collections_Array_slice(nullptr, 0, 1, 1, nullptr, nullptr), nullptr);
  EXPECT_EQ(vorn_collections_Array_slice(nullptr, 0, 1, 0, nullptr, nullptr), nullptr) << "the null test comes first";
  vorn_collections_Array_sliceAssign(nullptr, 0, 1, 1, nullptr, nullptr, nullptr);
  vorn_collections_Array_sliceAssign(nullptr, 0, 1, 0, nullptr, nullptr, nullptr);
  const Handle array = newArray("Array<Int>", 1);
  EXPECT_EQ(vorn_collections_Array_concat(nullptr, array), nullptr);
  EXPECT_EQ(vorn_collections_Array_concat(array, nullptr), nullptr);
  EXPECT_EQ(vorn_collections_Array_concat(nullptr, nullptr), nullptr);
  EXPECT_EQ(vorn_collections_Array_concat(nullptr, Handle(string("x"))), nullptr);
  EXPECT_NOTHING_RAISED();
}

// ---- Slice assignment -----------------------------------------------------------------------------------------------

std::vector<Handle> sourcesOf(const std::vector<Handle>& values) {
  std::vector<Handle> sources = {arrayOf("Array", values), arrayOf("ArraySync", values), boxedImmutable(values),
                                 tupleOf(values)};
  for (const char* type : {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync"}) {
    const Handle source = object(type);
    for (const Handle& value : values) vorn_collections_ArrayList_add(source, value);
    sources.push_back(source);
  }
  return sources;
}

TEST_F(ArrayRanges, SliceAssign_EverySourceInOrder) {
  for (const Handle& source : sourcesOf({integer("Int", 10), integer("Int", 11), integer("Int", 12)})) {
    SCOPED_TRACE(vorn_type_name(source));
    for (const bool synchronised : {false, true}) {
      const Handle array = counting(arrayType("Int", synchronised), 6);
      arraySliceAssign(array, kOmitted, kOmitted, 2, source);
      EXPECT_EQ(integersOf(array), (Integers{10, 1, 11, 3, 12, 5}));
      arraySliceAssign(array, -1, 2, -1, source);
      EXPECT_EQ(integersOf(array), (Integers{10, 1, 11, 12, 11, 10}));
      arraySliceAssign(array, 0, 3, 1, source);
      EXPECT_EQ(integersOf(array), (Integers{10, 11, 12, 12, 11, 10}));
      EXPECT_NOTHING_RAISED();
      EXPECT_ARRAY_AT_REST(array);
    }
  }
}

TEST_F(ArrayRanges, SliceAssign_EveryKindFromAnArrayOfItsOwn) {
  forEachArray(5, [](const Handle& array, const std::string& element, bool) {
    const Handle source = sampleArray(element, true, 5);
    vorn_collections_Array_reverse(source);
    const Elements expected = itemsOf(source);
    arraySliceAssign(array, kOmitted, kOmitted, 1, source);
    EXPECT_NOTHING_RAISED();
    EXPECT_EQ(itemsOf(array), expected);
    EXPECT_ARRAY_AT_REST(array);
  });
}

TEST_F(ArrayRanges, SliceAssign_OfItself_SeesTheArrayAsItWas) {
  for (const bool synchronised : {false, true}) {
    const Handle array = counting(arrayType("Int", synchronised), 5);
    arraySliceAssign(array, kOmitted, kOmitted, -1, array);
    EXPECT_EQ(integersOf(array), (Integers{4, 3, 2, 1, 0}));
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayRanges, SliceAssign_OtherCountRaisesAndTouchesNothing) {
  for (const bool synchronised : {false, true}) {
    const Handle array = counting(arrayType("Int", synchronised), 5);
    const ArrayState before(array);
    for (const Handle& source : sourcesOf({integer("Int", 10), integer("Int", 11)})) {
      arraySliceAssign(array, 0, 3, 1, source);
      EXPECT_RAISED(kArraySliceCountError);
      arraySliceAssign(array, 0, 1, 1, source);
      EXPECT_RAISED(kArraySliceCountError);
      arraySliceAssign(array, 3, 1, 1, source);
      EXPECT_RAISED(kArraySliceCountError);
      EXPECT_ARRAY_UNTOUCHED(array, before);
    }
    // The count is tested before any value is.
    arraySliceAssign(array, 0, 3, 1, list("ArrayList", {string("a"), string("b")}));
    EXPECT_RAISED(kArraySliceCountError);
    EXPECT_ARRAY_UNTOUCHED(array, before);
  }
}

TEST_F(ArrayRanges, SliceAssign_NothingOntoNothing) {
  const Handle array = counting("Array<Int>", 3);
  const ArrayState before(array);
  arraySliceAssign(array, 2, 1, 1, tupleOf({}));
  arraySliceAssign(array, 99, kOmitted, 1, newArray("Array<Double>", 0));
  arraySliceAssign(array, 0, kHighest, kLowest, object("ArrayList"));
  EXPECT_NOTHING_RAISED();
  EXPECT_ARRAY_UNTOUCHED(array, before);
}

TEST_F(ArrayRanges, SliceAssign_TheFirstRefusalEndsIt) {
  for (const bool synchronised : {false, true}) {
    const Handle array = counting(arrayType("Int", synchronised), 4);
    const Handle source = tupleOf({integer("Int", 10), string("x"), integer("Int", 12), string("y")});
    arraySliceAssign(array, kOmitted, kOmitted, 1, source);
    EXPECT_RAISED(kArrayElementError);
    EXPECT_EQ(integersOf(array), (Integers{10, 1, 2, 3})) << "what was assigned stays";
    arraySliceAssign(array, kOmitted, kOmitted, -1, source);
    EXPECT_RAISED(kArrayElementError);
    EXPECT_EQ(integersOf(array), (Integers{10, 1, 2, 10}));
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayRanges, SliceAssign_StepZeroAndForeignSources) {
  for (const bool synchronised : {false, true}) {
    const Handle array = counting(arrayType("Int", synchronised), 2);
    const ArrayState before(array);
    arraySliceAssign(array, 0, 1, 0, tupleOf({integer("Int", 1)}));
    EXPECT_RAISED(kStepError);
    arraySliceAssign(array, 0, 1, 0, nullptr);
    EXPECT_RAISED(kStepError);
    for (const Handle& source : {Handle(nullptr), object("HashSet"), object("Map"), string("text"), text("plain"),
                                 integer("Int", 1), item(1)}) {
      arraySliceAssign(array, 0, 1, 1, source);
      EXPECT_RAISED(kSourceError);
    }
    EXPECT_ARRAY_UNTOUCHED(array, before);
  }
}

TEST_F(ArrayRanges, SliceAssign_Extremes) {
  const Handle array = counting("Array<Int>", 3);
  const Handle one = tupleOf({integer("Int", 9)});
  arraySliceAssign(array, kOmitted, kOmitted, kLowest, one);
  arraySliceAssign(array, kLowest, kHighest, kHighest, one);
  EXPECT_NOTHING_RAISED();
  EXPECT_EQ(integersOf(array), (Integers{9, 1, 9}));
}

// ---- Concatenation --------------------------------------------------------------------------------------------------

TEST_F(ArrayRanges, Concat_EverySourceBehindTheReceiver) {
  for (const Handle& source : sourcesOf({integer("Int", 10), integer("Int", 11)})) {
    SCOPED_TRACE(vorn_type_name(source));
    for (const char* element : {"Int", "Byte", "Long"}) {
      for (const bool synchronised : {false, true}) {
        const Handle array = counting(arrayType(element, synchronised), 3);
        const ArrayState before(array);
        const Handle result = vorn_collections_Array_concat(array, source);
        EXPECT_EQ(integersOf(result), (Integers{0, 1, 2, 10, 11}));
        expectLike(result, array);
        EXPECT_ARRAY_UNTOUCHED(array, before);
      }
    }
  }
}

TEST_F(ArrayRanges, Concat_EveryKindWithItself) {
  for (const long long size : {0, 3, 60}) {
    forEachArray(size, [](const Handle& array, const std::string&, bool) {
      const ArrayState before(array);
      const Elements items = itemsOf(array);
      const Handle result = vorn_collections_Array_concat(array, array);
      Elements twice = items;
      twice.insert(twice.end(), items.begin(), items.end());
      EXPECT_EQ(itemsOf(result), twice);
      expectLike(result, array);
      EXPECT_ARRAY_UNTOUCHED(array, before);
    });
  }
}

TEST_F(ArrayRanges, Concat_ConvertsByTheReceiversType) {
  const Handle doubles = doubleArray("Array<Double>", {0.5});
  const Handle ints = intArray("ArraySync<Int>", {7});
  EXPECT_EQ(itemsOf(Handle(vorn_collections_Array_concat(doubles, ints))), (Elements{"Double 0.5", "Double 7"}));
  EXPECT_EQ(vorn_collections_Array_concat(ints, doubles), nullptr);
  EXPECT_RAISED(kArrayElementError);
}

TEST_F(ArrayRanges, Concat_ARefusedValueGivesNullAndLeavesBothAlone) {
  for (const bool synchronised : {false, true}) {
    const Handle array = counting(arrayType("Int", synchronised), 2);
    const Handle source = list("ArrayListSync", {integer("Int", 1), string("x"), string("y")});
    const ArrayState before(array);
    EXPECT_EQ(vorn_collections_Array_concat(array, source), nullptr);
    EXPECT_RAISED(kArrayElementError);
    EXPECT_ARRAY_UNTOUCHED(array, before);
    EXPECT_EQ(vorn_collections_ArrayList_size(source), 3);
  }
}

TEST_F(ArrayRanges, Concat_ForeignOperandsRaise) {
  for (const bool synchronised : {false, true}) {
    const Handle array = counting(arrayType("Int", synchronised), 2);
    const ArrayState before(array);
    for (const Handle& other :
         {object("HashSet"), object("Map"), string("text"), text("plain"), integer("Int", 1), item(1)}) {
      EXPECT_EQ(vorn_collections_Array_concat(array, other), nullptr);
      EXPECT_RAISED(kArrayConcatError);
      EXPECT_ARRAY_UNTOUCHED(array, before);
    }
  }
}

TEST_F(ArrayRanges, Concat_ATupleWhoseSizeIsNegativeIsNone) {
  const Handle tuple = tupleOf({integer("Int", 1)});
  vorn_field_set_integer(tuple, "size", -1);
  const Handle array = counting("Array<Int>", 1);
  EXPECT_EQ(vorn_collections_Array_concat(array, tuple), nullptr);
  EXPECT_RAISED(kArrayConcatError);
  arraySliceAssign(array, 0, 0, 1, tuple);
  EXPECT_RAISED(kSourceError);
}

}  // namespace
}  // namespace vorn::tests
