// What the tests of fixed arrays share: the slot kinds, makers, checks of whole objects, readable elements.
#pragma once

#include <vorn/collections/array.h>

#include <climits>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "collections/array/array_data.h"
#include "collections/array/slot_values.h"
#include "collections/core/port/object_layout.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/collections.h"
#include "tests/support/error_texts.h"
#include "tests/support/held_mutex.h"
#include "tests/support/lists.h"
#include "tests/support/slices.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {

using SlotKind = ArrayData::SlotKind;
using HeldArrayMutex = HeldRecordMutex<ArrayData>;

inline constexpr const char* kIndexError = error_texts::kIndexOutOfBounds;
inline constexpr const char* kCodeUnitError = error_texts::kCodeUnitOutOfRange;
inline constexpr const char* kCharError = error_texts::kCharNotScalar;
inline constexpr const char* kStepError = error_texts::kSliceStepZero;
inline constexpr const char* kSourceError = error_texts::kSliceAssignmentSource;
inline constexpr const char* kSumError = error_texts::kSumOfNull;
inline constexpr const char* kArraySizeError = error_texts::kArraySizeNegative;
inline constexpr const char* kArrayElementError = error_texts::kInvalidArrayElement;
inline constexpr const char* kIntegerItemError = error_texts::kExpectedIntegerArrayItem;
inline constexpr const char* kFloatingArrayItemError = error_texts::kExpectedFloatingArrayItem;
inline constexpr const char* kArraySliceCountError = error_texts::kFixedSliceCount;
inline constexpr const char* kArrayConcatError = error_texts::kArrayConcatSource;

constexpr long long kLowest = LLONG_MIN;
constexpr long long kHighest = LLONG_MAX;

// ---- Slot kinds -----------------------------------------------------------------------------------------------------

struct SlotCase {
  const char* element;
  SlotKind kind;
  std::uint64_t width;
};

// The thirteen primitive element types with what is documented of their slots, and one type of handles.
inline constexpr SlotCase kSlotCases[] = {
    {"SByte", SlotKind::Int8, 1},    {"Byte", SlotKind::UInt8, 1},      {"Short", SlotKind::Int16, 2},
    {"UShort", SlotKind::UInt16, 2}, {"CodeUnit", SlotKind::UInt16, 2}, {"Int", SlotKind::Int32, 4},
    {"UInt", SlotKind::UInt32, 4},   {"Char", SlotKind::UInt32, 4},     {"Long", SlotKind::Int64, 8},
    {"ULong", SlotKind::UInt64, 8},  {"Float", SlotKind::Float32, 4},   {"Double", SlotKind::Float64, 8},
    {"Boolean", SlotKind::Bool, 1},  {"Object", SlotKind::Object, 1}};

// A class name: "Array<Int>", "ArraySync<Int>", "Array".
inline std::string arrayType(const std::string& element, bool synchronised = false) {
  const std::string base = synchronised ? "ArraySync" : "Array";
  return element.empty() ? base : base + "<" + element + ">";
}

// A value of the element type: a box, or for handles a text.
inline Handle sample(const std::string& element, long long value) {
  return element == "Object" ? string("s" + std::to_string(value)) : box(element, value);
}

// ---- Makers ---------------------------------------------------------------------------------------------------------

inline ArrayData& recordOf(void* array) { return *getArrayData(array); }

inline Handle newArray(const std::string& type, long long size) {
  Handle array = object(type);
  EXPECT_NE(array.get(), nullptr) << type;
  vorn_collections_Array_ctor(array, size);
  return array;
}

inline Handle arrayOf(const std::string& type, const std::vector<Handle>& values) {
  Handle array = newArray(type, static_cast<long long>(values.size()));
  for (std::size_t i = 0; i < values.size(); ++i) {
    vorn_collections_Array_operator_index_eq(array, static_cast<long long>(i), values[i]);
  }
  return array;
}

inline Handle intArray(const std::string& type, const std::vector<long long>& values) {
  Handle array = newArray(type, static_cast<long long>(values.size()));
  for (std::size_t i = 0; i < values.size(); ++i) {
    vorn_collections_Array_setInt(array, static_cast<long long>(i), values[i]);
  }
  return array;
}

inline Handle doubleArray(const std::string& type, const std::vector<double>& values) {
  Handle array = newArray(type, static_cast<long long>(values.size()));
  for (std::size_t i = 0; i < values.size(); ++i) {
    vorn_collections_Array_setDouble(array, static_cast<long long>(i), values[i]);
  }
  return array;
}

// An array of one of the slot cases with the samples 1, 0, 1, 0, ... for Boolean and 1, 2, 3, ... for all others.
inline Handle sampleArray(const std::string& element, bool synchronised, long long size) {
  Handle array = newArray(arrayType(element, synchronised), size);
  for (long long i = 0; i < size; ++i) {
    vorn_collections_Array_operator_index_eq(array, i, sample(element, element == "Boolean" ? (i + 1) % 2 : i + 1));
  }
  return array;
}

// Runs check(array, element type, synchronised) for a sample array of every slot case, plain and synchronised.
template <class Check>
void forEachArray(long long size, Check check) {
  for (const SlotCase& slots : kSlotCases) {
    for (const bool synchronised : {false, true}) {
      SCOPED_TRACE(arrayType(slots.element, synchronised));
      const Handle array = sampleArray(slots.element, synchronised, size);
      check(array, std::string(slots.element), synchronised);
    }
  }
}

// ---- Checks ---------------------------------------------------------------------------------------------------------

inline bool isUnlockedArray(void* array) { return !isRecordLocked(recordOf(array)); }

#define EXPECT_ARRAY_AT_REST(array) EXPECT_EQ(::vorn::tests::faultOfArray(array), "")

// Everything that a native which refuses must leave alone. Handles are kept for comparison only.
struct ArrayState {
  explicit ArrayState(void* array) : ArrayState(recordOf(array)) { sizeField = ::vorn::tests::sizeField(array); }
  explicit ArrayState(const ArrayData& data)
      : kind(data.slotKind), synchronised(data.synchronized), elementType(data.elementType.get()) {
    const SmallPrimitiveBuffer& slots = data.primitive;
    bytes.assign(slots.data, slots.data + slots.size * slots.elementSize);
    handles.assign(data.objects.data, data.objects.data + data.objects.size);
  }
  SlotKind kind;
  bool synchronised;
  std::string elementType;
  std::vector<unsigned char> bytes;
  std::vector<const void*> handles;
  long long sizeField = 0;
  friend bool operator==(const ArrayState&, const ArrayState&) = default;
};
#define EXPECT_ARRAY_UNTOUCHED(array, before)                               \
  do {                                                                      \
    EXPECT_EQ(::vorn::tests::faultOfArray(array), "");                      \
    EXPECT_TRUE(::vorn::tests::ArrayState(array) == (before)) << "changed"; \
  } while (false)

// The elements as operator_index gives them, described.
inline Elements itemsOf(void* array) {
  Elements items;
  for (long long i = 0, size = vorn_collections_Array_size(array); i < size; ++i) {
    const Handle item = vorn_collections_Array_operator_index(array, i);
    items.push_back(describe(item));
  }
  return items;
}
inline std::vector<long long> integersOf(void* array) {
  std::vector<long long> values;
  for (long long i = 0, size = vorn_collections_Array_size(array); i < size; ++i) {
    values.push_back(vorn_collections_Array_getInt(array, i));
  }
  return values;
}
inline std::vector<double> doublesOf(void* array) {
  std::vector<double> values;
  for (long long i = 0, size = vorn_collections_Array_size(array); i < size; ++i) {
    values.push_back(vorn_collections_Array_getDouble(array, i));
  }
  return values;
}

using Integers = std::vector<long long>;
using Doubles = std::vector<double>;

// ---- Ranges ---------------------------------------------------------------------------------------------------------

inline Handle arraySlice(void* array, Bound start, Bound stop, long long step = 1) {
  return vorn_collections_Array_slice(array, boundOf(start), boundOf(stop), step, markOf(start), markOf(stop));
}

inline void arraySliceAssign(void* array, Bound start, Bound stop, long long step, void* source) {
  vorn_collections_Array_sliceAssign(array, boundOf(start), boundOf(stop), step, markOf(start), markOf(stop), source);
}

using ArrayTest = RuntimeTest;

}  // namespace vorn::tests
