// Searches by value.
#include <cmath>
#include <functional>

#include "tests/array/array_cases.h"

namespace vorn::tests {
namespace {

class ArraySearch : public RuntimeTest {};

// What the searches must answer, by arraySlotEqualsObject slot for slot.
long long expectedFirst(void* array, void* value, long long start) {
  const long long size = vorn_collections_Array_size(array);
  for (long long i = start < 1 ? 0 : start; i < size; ++i) {
    if (arraySlotEqualsObject(recordOf(array), static_cast<std::uint64_t>(i), value)) return i;
  }
  return -1;
}
long long expectedLast(void* array, void* value, long long start) {
  const long long size = vorn_collections_Array_size(array);
  for (long long i = start < 0 || start >= size ? size - 1 : start; i >= 0; --i) {
    if (arraySlotEqualsObject(recordOf(array), static_cast<std::uint64_t>(i), value)) return i;
  }
  return -1;
}
long long expectedCount(void* array, void* value) {
  long long count = 0;
  for (long long i = 0; i < vorn_collections_Array_size(array); ++i) {
    count += arraySlotEqualsObject(recordOf(array), static_cast<std::uint64_t>(i), value) ? 1 : 0;
  }
  return count;
}

constexpr long long kStarts[] = {0, 1, 2, 5, 6, 7, 8, 100, -1, -2, -7, -8, LLONG_MAX, LLONG_MIN};

void expectSearches(void* array, void* value) {
  SCOPED_TRACE("looking for " + describe(value));
  EXPECT_EQ(vorn_collections_Array_count(array, value), expectedCount(array, value));
  EXPECT_EQ(vorn_collections_Array_operator_in(array, value), expectedCount(array, value) != 0);
  for (const long long start : kStarts) {
    EXPECT_EQ(vorn_collections_Array_indexOf(array, value, start), expectedFirst(array, value, start)) << start;
    EXPECT_EQ(vorn_collections_Array_lastIndexOf(array, value, start), expectedLast(array, value, start)) << start;
  }
  EXPECT_NOTHING_RAISED();
}

std::vector<Handle> needles() {
  return {integer("Int", 1),
          integer("Int", 2),
          integer("Int", 0),
          integer("Int", -1),
          integer("Int", 257),
          integer("Long", 3),
          integer("Byte", 3),
          integer("ULong", -1),
          integer("Char", 2),
          integer("CodeUnit", 2),
          boolean(true),
          boolean(false),
          floating("Double", 2),
          floating("Float", 2),
          floating("Double", 0.5),
          floating("Double", std::nan("")),
          floating("Double", 1e300),
          string("s2"),
          text("s2"),
          item(1),
          list("ArrayList"),
          Handle(nullptr)};
}

TEST_F(ArraySearch, EveryKindAndNeedle_AgreesWithTheComparisonOfSlots) {
  forEachArray(7, [](const Handle& array, const std::string& element, bool) {
    vorn_collections_Array_operator_index_eq(array, 5, sample(element, element == "Boolean" ? 0 : 2));  // twice
    const ArrayState before(array);
    for (const Handle& needle : needles()) expectSearches(array, needle);
    EXPECT_ARRAY_UNTOUCHED(array, before);
  });
}

TEST_F(ArraySearch, LongArraysOfEveryKind_FindTheNeedleAtEveryPosition) {
  for (const SlotCase& slots : kSlotCases) {
    SCOPED_TRACE(slots.element);
    const Handle needle = sample(slots.element, 1);
    const long long size = 100;
    const Handle array = newArray(arrayType(slots.element), size);
    for (long long at = 0; at < size; ++at) {
      vorn_collections_Array_ctor(array, size);
      vorn_collections_Array_operator_index_eq(array, at, needle);
      ASSERT_EQ(vorn_collections_Array_count(array, needle), 1);
      ASSERT_EQ(vorn_collections_Array_indexOf(array, needle, 0), at);
      ASSERT_EQ(vorn_collections_Array_indexOf(array, needle, at), at);
      ASSERT_EQ(vorn_collections_Array_indexOf(array, needle, at + 1), -1);
      ASSERT_EQ(vorn_collections_Array_lastIndexOf(array, needle, -1), at);
      ASSERT_EQ(vorn_collections_Array_lastIndexOf(array, needle, at), at);
      if (at > 0) {
        ASSERT_EQ(vorn_collections_Array_lastIndexOf(array, needle, at - 1), -1);
      }
    }
  }
}

TEST_F(ArraySearch, NegativeStart_BeginsAtTheFirstForwardsAndAtTheLastBackwards) {
  const Handle array = intArray("Array<Int>", {7, 1, 2, 7, 3});
  const Handle seven = integer("Int", 7);
  EXPECT_EQ(vorn_collections_Array_indexOf(array, seven, -2), 0);
  EXPECT_EQ(vorn_collections_Array_lastIndexOf(array, seven, -2), 3);
  EXPECT_EQ(vorn_collections_Array_lastIndexOf(array, seven, -5), 3);
  EXPECT_EQ(vorn_collections_Array_indexOf(array, seven, 4), -1);
  EXPECT_EQ(vorn_collections_Array_lastIndexOf(array, seven, 0), 0);
}

TEST_F(ArraySearch, EmptyArrays_HoldNothing) {
  forEachArray(0, [](const Handle& array, const std::string&, bool) {
    for (const Handle& needle : needles()) expectSearches(array, needle);
  });
}

TEST_F(ArraySearch, NullArray_HoldsNothing) {
  const Handle value = integer("Int", 1);
  EXPECT_EQ(vorn_collections_Array_count(nullptr, value), 0);
  EXPECT_FALSE(vorn_collections_Array_operator_in(nullptr, value));
  EXPECT_EQ(vorn_collections_Array_indexOf(nullptr, value, 0), -1);
  EXPECT_EQ(vorn_collections_Array_lastIndexOf(nullptr, value, 0), -1);
  EXPECT_NOTHING_RAISED();
}

TEST_F(ArraySearch, NaN_IsNeverFoundUnboxed) {
  const Handle nan = floating("Double", std::nan(""));
  for (const char* type : {"Array<Double>", "Array<Float>"}) {
    const Handle array = doubleArray(type, {1.0, std::nan(""), std::nan("")});
    EXPECT_EQ(vorn_collections_Array_count(array, nan), 0);
    EXPECT_FALSE(vorn_collections_Array_operator_in(array, nan));
    EXPECT_EQ(vorn_collections_Array_indexOf(array, nan, 0), -1);
    EXPECT_EQ(vorn_collections_Array_lastIndexOf(array, nan, -1), -1);
  }
  const Handle handles = arrayOf("Array", {nan, floating("Double", std::nan(""))});
  EXPECT_EQ(vorn_collections_Array_count(handles, nan), 1) << "a handle equals itself";
}

TEST_F(ArraySearch, BooleanBytes_OtherThanOneAreTrue) {
  const Handle array = newArray("Array<Boolean>", 3);
  recordOf(array).primitive.data[1] = 2;
  recordOf(array).primitive.data[2] = 0xFF;
  expectSearches(array, boolean(true));
  expectSearches(array, boolean(false));
  EXPECT_EQ(vorn_collections_Array_count(array, boolean(true)), 2);
}

TEST_F(ArraySearch, Handles_NullIsFoundByNull) {
  const Handle array = arrayOf("Array", {string("a"), nullptr, nullptr});
  EXPECT_EQ(vorn_collections_Array_count(array, nullptr), 2);
  EXPECT_EQ(vorn_collections_Array_indexOf(array, nullptr, 0), 1);
  EXPECT_EQ(vorn_collections_Array_lastIndexOf(array, nullptr, -1), 2);
}

// ---- User equality --------------------------------------------------------------------------------------------------

TEST_F(ArraySearch, UserEquality_VisitsUpwardsAndDownwards) {
  const Handle array = arrayOf("ArraySync", {item(0), item(1), item(2), item(1)});
  const Handle wanted = item(1);
  std::vector<long long> visited;
  const ScopedEquality equality([&](void* self, void* other) {
    EXPECT_EQ(self, wanted.get());
    EXPECT_FALSE(isUnlockedArray(array)) << "the lock is held";
    visited.push_back(idOf(other));
    return idOf(self) == idOf(other);
  });
  const auto visits = [&](auto search) {
    visited.clear();
    search();
    return visited;
  };
  EXPECT_EQ(visits([&] { vorn_collections_Array_operator_in(array, wanted); }), (Integers{0, 1}));
  EXPECT_EQ(visits([&] { vorn_collections_Array_count(array, wanted); }), (Integers{0, 1, 2, 1}));
  EXPECT_EQ(visits([&] { vorn_collections_Array_indexOf(array, wanted, 2); }), (Integers{2, 1}));
  EXPECT_EQ(visits([&] { vorn_collections_Array_lastIndexOf(array, wanted, 2); }), (Integers{2, 1}));
  EXPECT_ARRAY_AT_REST(array);
}

TEST_F(ArraySearch, UserEqualityThatRaises_EndsTheSearchWithTheNeutralResult) {
  for (const bool synchronised : {false, true}) {
    const Handle array = arrayOf(arrayType("", synchronised), {item(0), item(1), item(2)});
    const Handle wanted = item(1);
    const ArrayState before(array);
    int calls = 0;
    const ScopedEquality equality([&](void*, void*) {
      ++calls;
      vorn_raise("Exception", "from equality");
      return true;
    });
    const auto expectStopped = [&] {
      EXPECT_RAISED("Exception: from equality");
      EXPECT_EQ(calls, 1);
      EXPECT_ARRAY_UNTOUCHED(array, before);
      calls = 0;
    };
    EXPECT_EQ(vorn_collections_Array_count(array, wanted), 0);
    expectStopped();
    EXPECT_FALSE(vorn_collections_Array_operator_in(array, wanted));
    expectStopped();
    EXPECT_EQ(vorn_collections_Array_indexOf(array, wanted, 0), -1);
    expectStopped();
    EXPECT_EQ(vorn_collections_Array_lastIndexOf(array, wanted, -1), -1);
    expectStopped();
  }
}

TEST_F(ArraySearch, ErrorPendingBefore_DoesNotEndTheSearch) {
  const Handle array = arrayOf("Array", {item(0), item(1), item(1)});
  const Handle wanted = item(1);
  vorn_raise("Exception", "before");
  EXPECT_EQ(vorn_collections_Array_count(array, wanted), 2);
  EXPECT_EQ(vorn_collections_Array_indexOf(array, wanted, 0), 1);
  EXPECT_EQ(vorn_collections_Array_lastIndexOf(array, wanted, -1), 2);
  EXPECT_RAISED("Exception: before");
}

TEST_F(ArraySearch, UserEqualityThatReplacesTheSlots_SeesTheComparedOneAlive) {
  const Handle array = arrayOf("Array", {item(0), item(1), item(2)});
  const Handle wanted = item(7);
  const ScopedEquality equality([&](void*, void* other) {
    for (long long i = 0; i < 3; ++i) vorn_collections_Array_operator_index_eq(array, i, item(50));
    vorn_heap_collect();
    return idOf(other) == 50;
  });
  EXPECT_EQ(vorn_collections_Array_indexOf(array, wanted, 0), 1);
  EXPECT_ARRAY_AT_REST(array);
}

TEST_F(ArraySearch, UserEqualityThatMakesTheArrayLonger_SeesTheNewElements) {
  const Handle wanted = item(7);
  for (const int search : {0, 1, 2}) {
    const Handle array = arrayOf("Array", {item(0), item(1)});
    const ScopedEquality equality([&](void* self, void* other) {
      if (vorn_collections_Array_size(array) == 2) {
        vorn_collections_Array_ctor(array, 400);
        vorn_collections_Array_operator_index_eq(array, 300, item(7));
      }
      return idOf(self) == idOf(other);
    });
    if (search == 0) {
      EXPECT_EQ(vorn_collections_Array_count(array, wanted), 1);
    }
    if (search == 1) {
      EXPECT_TRUE(vorn_collections_Array_operator_in(array, wanted));
    }
    if (search == 2) {
      EXPECT_EQ(vorn_collections_Array_indexOf(array, wanted, 0), 300);
    }
  }
}

// By one of the four searches, numbered from 0.
void expectNotFoundBy(int search, void* array, void* wanted) {
  if (search == 0) {
    EXPECT_EQ(vorn_collections_Array_count(array, wanted), 0);
  }
  if (search == 1) {
    EXPECT_FALSE(vorn_collections_Array_operator_in(array, wanted));
  }
  if (search == 2) {
    EXPECT_EQ(vorn_collections_Array_indexOf(array, wanted, 0), -1);
  }
  if (search == 3) {
    EXPECT_EQ(vorn_collections_Array_lastIndexOf(array, wanted, -1), -1);
  }
}

TEST_F(ArraySearch, UserEqualityThatConstructsTheArrayAnew_NeverLeavesItsBounds) {
  const Handle wanted = item(7);
  const Handle doubles = doubleArray("Array<Double>", Doubles(50, 1.5));
  for (const int change : {0, 1, 2}) {
    for (const int search : {0, 1, 2, 3}) {
      const Handle array = newArray("Array", 100);
      for (long long i = 0; i < 100; ++i) vorn_collections_Array_operator_index_eq(array, i, item(0));
      int calls = 0;
      const ScopedEquality equality([&](void*, void*) {
        if (++calls != 5) return false;
        if (change == 0) vorn_collections_Array_ctor(array, 2);
        if (change == 1) vorn_collections_Array_ctor(array, 400);
        if (change == 2) vorn_collections_Array_copyCtor(array, doubles);
        return false;
      });
      expectNotFoundBy(search, array, wanted);
      EXPECT_ARRAY_AT_REST(array);
    }
  }
}

// ---- Texts ----------------------------------------------------------------------------------------------------------

// Slots outside the record, for a scope: the array has all but the last of them.
class SlotsWithANeighbour {
 public:
  SlotsWithANeighbour(void* array, const std::vector<Handle>& slots) : record_(recordOf(array)), handles_(slots) {
    slots_.assign(slots.begin(), slots.end());
    record_.objects.data = slots_.data();
    record_.objects.size = record_.objects.capacity = slots_.size() - 1;
  }
  ~SlotsWithANeighbour() {
    record_.objects.data = record_.objects.inlineSlots;
    record_.objects.size = 0;
    record_.objects.capacity = SmallObjectVector::kInlineSlots;
  }
  SlotsWithANeighbour(const SlotsWithANeighbour&) = delete;
  SlotsWithANeighbour& operator=(const SlotsWithANeighbour&) = delete;

 private:
  ArrayData& record_;
  std::vector<Handle> handles_;
  std::vector<void*> slots_;
};

TEST_F(ArraySearch, TextBehindTheLastSlot_IsNotFound) {
  const Handle array = newArray("Array", 0);
  const SlotsWithANeighbour slots(array, {string("a"), nullptr, string("b"), string("wanted")});
  for (const Handle& wanted : {string("wanted"), text("wanted")}) {
    EXPECT_EQ(vorn_collections_Array_count(array, wanted), 0);
    EXPECT_FALSE(vorn_collections_Array_operator_in(array, wanted));
    EXPECT_EQ(vorn_collections_Array_indexOf(array, wanted, 0), -1);
    EXPECT_EQ(vorn_collections_Array_indexOf(array, wanted, 3), -1);
    EXPECT_EQ(vorn_collections_Array_lastIndexOf(array, wanted, -1), -1);
    EXPECT_EQ(vorn_collections_Array_lastIndexOf(array, wanted, 3), -1);
  }
}

// An object that is a String by its class's name alone is asked for its text, and may do anything.
std::function<void()> whenAsked;
Handle askedString() {
  vorn_class_definition definition = {};
  definition.name = "arraysearch.String";
  definition.to_string = [](void*, void*) -> void* {
    if (whenAsked) whenAsked();
    return vorn_text_new("another");
  };
  defineClass(definition);
  return object("arraysearch.String");
}

TEST_F(ArraySearch, UserStringThatMakesTheSlotsNumbers_LeavesNoHandleToLookAt) {
  const Handle wanted = string("wanted");
  const Handle doubles = doubleArray("Array<Double>", {1.5, 2.5, 3.5});
  int asked = 0;
  for (const int search : {0, 1, 2}) {
    const Handle array = newArray("Array", 0);
    const SlotsWithANeighbour slots(array, {askedString(), wanted});
    whenAsked = [&] {
      ++asked;
      vorn_collections_Array_copyCtor(array, doubles);
    };
    expectNotFoundBy(search, array, wanted);
    EXPECT_EQ(doublesOf(array), (Doubles{1.5, 2.5, 3.5}));
  }
  whenAsked = nullptr;
  EXPECT_EQ(asked, 3);
}

}  // namespace
}  // namespace vorn::tests
