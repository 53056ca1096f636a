// Equality, order and keys of fixed arrays.
#include <vorn/collections/array.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>

#include <cmath>

#include "collections/array/array_data.h"
#include "collections/core/port/comparison.h"
#include "collections/core/port/object_layout.h"
#include "tests/runtime/comparisons.h"
#include "tests/support/runtime_test.h"
#include "tests/support/sequences.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

using ArrayEquality = RuntimeTest;

// Both directions must agree.
bool equalArrays(void* left, void* right) {
  const bool forward = Vorn_deepEquals(left, right) != 0;
  EXPECT_EQ(Vorn_deepEquals(right, left) != 0, forward);
  EXPECT_EQ(vorn_collections_Array_operator_eq(left, right), forward);
  EXPECT_EQ(vorn_collections_Array_operator_ne(left, right), !forward);
  return forward;
}

Handle arrayWith(const char* type, const std::vector<Handle>& values) {
  const Handle array = object(type);
  vorn_collections_Array_ctor(array, static_cast<long long>(values.size()));
  for (std::size_t i = 0; i < values.size(); ++i) {
    vorn_collections_Array_operator_index_eq(array, static_cast<long long>(i), values[i]);
  }
  return array;
}
Handle numbers(const char* type, const std::vector<double>& values) {
  const Handle array = object(type);
  vorn_collections_Array_ctor(array, static_cast<long long>(values.size()));
  for (std::size_t i = 0; i < values.size(); ++i) {
    vorn_collections_Array_setDouble(array, static_cast<long long>(i), values[i]);
  }
  return array;
}

TEST_F(ArrayEquality, ElementByElementAcrossNumberKindsAndSynchronisation) {
  const char* const types[] = {"Array<SByte>",   "Array<Byte>", "ArraySync<Short>", "Array<UShort>", "Array<Int>",
                               "Array<UInt>",    "Array<Long>", "ArraySync<ULong>", "Array<Float>",  "Array<Double>",
                               "ArraySync<Int>", "Array<Long>", "ArraySync<Double>"};
  for (const char* left : types) {
    for (const char* right : types) {
      SCOPED_TRACE(std::string(left) + " and " + right);
      EXPECT_TRUE(equalArrays(numbers(left, {1, 2, 3}), numbers(right, {1, 2, 3})));
      EXPECT_FALSE(equalArrays(numbers(left, {1, 2, 3}), numbers(right, {1, 2, 4})));
      EXPECT_FALSE(equalArrays(numbers(left, {1, 2, 3}), numbers(right, {1, 2})));
      EXPECT_TRUE(equalArrays(numbers(left, {}), numbers(right, {})));
    }
    EXPECT_TRUE(equalArrays(numbers(left, {1, 2}), arrayWith("Array", {integer("Int", 1), floating("Double", 2)})));
    EXPECT_FALSE(equalArrays(numbers(left, {1, 2}), arrayWith("Array", {integer("Int", 1), string("2")})));
    EXPECT_FALSE(equalArrays(numbers(left, {0}), arrayWith("Array", {nullptr})));
  }
}

TEST_F(ArrayEquality, ExtremesOfSixtyFourBits) {
  const Handle unsignedMaximum = arrayWith("Array<ULong>", {integer("ULong", -1)});
  const Handle minusOne = arrayWith("Array<Long>", {integer("Long", -1)});
  EXPECT_FALSE(equalArrays(unsignedMaximum, minusOne));
  EXPECT_TRUE(equalArrays(unsignedMaximum, arrayWith("ArraySync", {integer("ULong", -1)})));
  EXPECT_FALSE(
      equalArrays(arrayWith("Array<Long>", {integer("Long", (1LL << 53) + 1)}), numbers("Array<Double>", {0x1p53})));
}

TEST_F(ArrayEquality, FloatingElements) {
  EXPECT_FALSE(equalArrays(numbers("Array<Double>", {std::nan("")}), numbers("Array<Double>", {std::nan("")})));
  EXPECT_TRUE(equalArrays(numbers("Array<Double>", {0.0}), numbers("Array<Float>", {-0.0})));
  EXPECT_FALSE(equalArrays(numbers("Array<Double>", {0.1}), numbers("Array<Float>", {0.1})));
  const Handle nan = numbers("Array<Double>", {std::nan("")});
  EXPECT_TRUE(equalArrays(nan, nan)) << "one object is equal to itself";
}

TEST_F(ArrayEquality, CharactersAndBooleansMeetTheirOwnTypeOnly) {
  const Handle characters = arrayWith("Array<Char>", {integer("Char", 65)});
  const Handle units = arrayWith("Array<CodeUnit>", {integer("CodeUnit", 65)});
  const Handle integers = numbers("Array<UInt>", {65});
  EXPECT_TRUE(equalArrays(characters, arrayWith("Array", {integer("Char", 65)})));
  EXPECT_TRUE(equalArrays(units, arrayWith("ArraySync<CodeUnit>", {integer("CodeUnit", 65)})));
  EXPECT_FALSE(equalArrays(characters, units));
  EXPECT_FALSE(equalArrays(characters, integers));
  EXPECT_FALSE(equalArrays(units, numbers("Array<UShort>", {65})));
  EXPECT_FALSE(equalArrays(arrayWith("Array<Boolean>", {boolean(true)}), numbers("Array<Byte>", {1})));
  EXPECT_TRUE(equalArrays(arrayWith("Array<Boolean>", {boolean(true)}), arrayWith("Array", {boolean(true)})));
}

TEST_F(ArrayEquality, BooleanBytesOtherThanOneAreTrue) {
  const Handle odd = arrayWith("Array<Boolean>", {boolean(true), boolean(false)});
  getArrayData(odd)->primitive.data[0] = 0x40;
  EXPECT_TRUE(equalArrays(odd, arrayWith("Array<Boolean>", {boolean(true), boolean(false)})));
  EXPECT_FALSE(equalArrays(odd, arrayWith("Array<Boolean>", {boolean(false), boolean(false)})));
}

TEST_F(ArrayEquality, ArraysOfHandlesUseUserEqualityAndNest) {
  EXPECT_TRUE(equalArrays(arrayWith("Array", {hooked(1), nullptr, string("a")}),
                          arrayWith("ArraySync", {hooked(1), nullptr, text("a")})));
  EXPECT_FALSE(equalArrays(arrayWith("Array", {hooked(1)}), arrayWith("Array", {hooked(2)})));
  EXPECT_TRUE(
      equalArrays(arrayWith("Array", {numbers("Array<Int>", {1})}), arrayWith("Array", {numbers("Array<Long>", {1})})));
  EXPECT_TRUE(equalArrays(tupleOf({numbers("Array<Int>", {1})}), tupleOf({numbers("Array<Double>", {1})})));
}

TEST_F(ArrayEquality, OtherFamiliesAreNeverEqual) {
  const Handle array = numbers("Array<Int>", {1});
  EXPECT_FALSE(equalArrays(array, list("ArrayList<Int>", {integer("Int", 1)})));
  EXPECT_FALSE(equalArrays(array, unboxedImmutable("Int", {1})));
  EXPECT_FALSE(equalArrays(array, tupleOf({integer("Int", 1)})));
  EXPECT_FALSE(equalArrays(object("Array"), object("ArrayList")));
  EXPECT_FALSE(equalArrays(object("Array"), object("HashSet")));
  EXPECT_FALSE(equalArrays(array, integer("Int", 1)));
  EXPECT_FALSE(equalArrays(array, nullptr));
  EXPECT_FALSE(equalArrays(array, text("1")));
}

TEST_F(ArrayEquality, ArraysThatHoldThemselvesAreComparedToAnEnd) {
  const Handle one = arrayWith("Array", {nullptr});
  const Handle other = arrayWith("ArraySync", {nullptr});
  vorn_collections_Array_operator_index_eq(one, 0, one);
  vorn_collections_Array_operator_index_eq(other, 0, other);
  EXPECT_TRUE(equalArrays(one, other));
  EXPECT_FALSE(equalArrays(one, arrayWith("Array", {arrayWith("Array", {nullptr})})));
}

TEST_F(ArrayEquality, DeepArraysAreComparedToAnEnd) {
  const auto deep = [](int levels, Handle innermost) {
    for (int i = 0; i < levels; ++i) innermost = arrayWith("Array", {innermost});
    return innermost;
  };
  const int levels = onStressHeap() ? 100 : 50'000;
  EXPECT_TRUE(Vorn_deepEquals(deep(levels, string("a")), deep(levels, text("a"))) != 0);
  EXPECT_FALSE(Vorn_deepEquals(deep(levels, string("a")), deep(levels, text("b"))) != 0);
}

TEST_F(ArrayEquality, TheLocksAreFreeWhileHooksRunAndAfterwards) {
  const Handle left = arrayWith("ArraySync", {hooked(1), hooked(2)});
  const Handle right = arrayWith("ArraySync", {hooked(1), hooked(2)});
  const Handle replacement = hooked(9);
  int calls = 0;
  userHooks.equals = [&](void*, void*) {
    ++calls;
    vorn_collections_Array_operator_index_eq(left, 1, replacement);
    vorn_collections_Array_ctor(right, 1);
    return true;
  };
  EXPECT_TRUE(Vorn_deepEquals(left, right) != 0) << "the elements as they were";
  EXPECT_EQ(calls, 2);
}

// ---- Order ----------------------------------------------------------------------------------------------------------

TEST_F(ArrayEquality, Order_IsLexicographic) {
  EXPECT_EQ(orderOf(numbers("Array<Int>", {}), numbers("Array<Double>", {})), "=");
  EXPECT_EQ(orderOf(numbers("Array<Int>", {1}), numbers("Array<Int>", {1, 0})), "<");
  EXPECT_EQ(orderOf(numbers("Array<Int>", {2}), numbers("Array<Int>", {1, 9})), ">");
  EXPECT_EQ(orderOf(numbers("Array<Int>", {1, 2}), numbers("ArraySync<Double>", {1, 2.5})), "<");
  EXPECT_EQ(orderOf(numbers("Array<Byte>", {200}), numbers("Array<SByte>", {-1})), ">");
  EXPECT_EQ(orderOf(arrayWith("Array", {string("a")}), arrayWith("Array", {string("b")})), "<");
  EXPECT_EQ(orderOf(arrayWith("Array", {numbers("Array<Int>", {2})}), arrayWith("Array", {numbers("Array<Int>", {1})})),
            ">");
}

TEST_F(ArrayEquality, Order_OfArraysInAListAndInAnArray) {
  const std::vector<std::vector<double>> rows = {{2}, {1, 5}, {}, {1}, {1, 2.5}};
  const std::vector<std::vector<double>> sorted = {{}, {1}, {1, 2.5}, {1, 5}, {2}};
  const Handle asList = object("ArrayList");
  const Handle asArray = object("Array<Array<Double>>");
  vorn_collections_Array_ctor(asArray, 5);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    vorn_collections_ArrayList_add(asList, numbers("Array<Double>", rows[i]));
    vorn_collections_Array_operator_index_eq(asArray, static_cast<long long>(i), numbers("Array<Double>", rows[i]));
  }
  vorn_collections_ArrayList_sort(asList);
  vorn_collections_Array_sort(asArray);
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    const Handle expected = numbers("Array<Double>", sorted[i]);
    EXPECT_TRUE(
        equalArrays(Handle(vorn_collections_ArrayList_operator_index(asList, static_cast<long long>(i))), expected));
    EXPECT_TRUE(
        equalArrays(Handle(vorn_collections_Array_operator_index(asArray, static_cast<long long>(i))), expected));
  }
}

TEST_F(ArrayEquality, Order_BetweenFamiliesIsNone) {
  EXPECT_EQ(orderOf(object("Array"), object("ArrayList")), "!");
  EXPECT_EQ(orderOf(object("Array"), tupleOf({})), "!");
}

// ---- Searches and keys ----------------------------------------------------------------------------------------------

TEST_F(ArrayEquality, ListsFindArraysByTheirContent) {
  const Handle rows = list("ArrayList", {numbers("Array<Int>", {1}), numbers("Array<Int>", {2})});
  EXPECT_EQ(vorn_collections_ArrayList_indexOf(rows, numbers("Array<Double>", {2}), 0), 1);
  EXPECT_FALSE(vorn_collections_ArrayList_operator_in(rows, list("ArrayList<Int>", {integer("Int", 1)})));
}

TEST_F(ArrayEquality, Keys_AreTheArraysThemselves) {
  const Handle one = numbers("Array<Int>", {1});
  const Handle same = numbers("Array<Int>", {1});
  for (const char* type : {"Map", "SortedMap", "HashMapSync"}) {
    const Handle map = object(type);
    vorn_collections_Map_put(map, one, string("one"));
    EXPECT_TRUE(vorn_collections_Map_operator_in(map, one));
    EXPECT_FALSE(vorn_collections_Map_operator_in(map, same));
    vorn_collections_Array_setInt(one, 0, 5);
    EXPECT_TRUE(vorn_collections_Map_operator_in(map, one)) << "whatever the array holds";
    vorn_collections_Array_setInt(one, 0, 1);
  }
  const Handle set = object("HashSet");
  vorn_collections_HashSet_add(set, one);
  vorn_collections_HashSet_add(set, one);
  vorn_collections_HashSet_add(set, same);
  EXPECT_EQ(vorn_collections_HashSet_size(set), 2);
}

}  // namespace
}  // namespace vorn::tests
