// The storage record: emptying, recreating, copying, and raw access to single slots.
#include <cmath>
#include <memory>

#include "collections/array/array_validation.h"
#include "collections/core/array_slot_kind.h"
#include "tests/array/array_cases.h"

namespace vorn::tests {
namespace {

class ArrayStorage : public RuntimeTest {
 protected:
  // The record of an array object, which keeps its storage alive.
  static Handle ofKind(const char* element, long long size) { return newArray(arrayType(element), size); }
};

void writeOne(ArrayData& data, std::uint64_t index) { arrayWrite(data, index, 1, 1.0); }

TEST_F(ArrayStorage, Enumerators_HaveTheirNumbers) {
  EXPECT_EQ(static_cast<int>(SlotKind::Int8), 0);
  EXPECT_EQ(static_cast<int>(SlotKind::UInt8), 1);
  EXPECT_EQ(static_cast<int>(SlotKind::Int16), 2);
  EXPECT_EQ(static_cast<int>(SlotKind::UInt16), 3);
  EXPECT_EQ(static_cast<int>(SlotKind::Int32), 4);
  EXPECT_EQ(static_cast<int>(SlotKind::UInt32), 5);
  EXPECT_EQ(static_cast<int>(SlotKind::Int64), 6);
  EXPECT_EQ(static_cast<int>(SlotKind::UInt64), 7);
  EXPECT_EQ(static_cast<int>(SlotKind::Float32), 8);
  EXPECT_EQ(static_cast<int>(SlotKind::Float64), 9);
  EXPECT_EQ(static_cast<int>(SlotKind::Bool), 10);
  EXPECT_EQ(static_cast<int>(SlotKind::Object), 11);
  EXPECT_EQ(sizeof(SlotKind), 1U);
}

TEST_F(ArrayStorage, Resize_EveryKind_GivesZeroSlotsOfItsWidth) {
  for (const SlotCase& slots : kSlotCases) {
    SCOPED_TRACE(slots.element);
    const Handle array = ofKind(slots.element, 3);
    ArrayData& data = recordOf(array);
    EXPECT_EQ(data.slotKind, slots.kind);
    EXPECT_EQ(data.elementType.get(), slots.element);
    EXPECT_EQ(arrayLogicalSize(data), 3U);
    if (slots.kind == SlotKind::Object) {
      EXPECT_EQ(data.primitive.size, 0U);
      for (int i = 0; i < 3; ++i) EXPECT_EQ(data.objects.data[i], nullptr);
    } else {
      EXPECT_EQ(data.objects.size, 0U);
      EXPECT_EQ(data.primitive.elementSize, slots.width);
      for (std::uint64_t i = 0; i < 3; ++i) {
        EXPECT_EQ(arrayReadI64(data, i), 0);
        EXPECT_EQ(arrayReadF64(data, i), 0.0);
      }
    }
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayStorage, Resize_Again_DiscardsTheContentsAndZeroFills) {
  for (const SlotCase& slots : kSlotCases) {
    SCOPED_TRACE(slots.element);
    const Handle array = sampleArray(slots.element, false, 10);
    ArrayData& data = recordOf(array);
    for (const std::uint64_t size : {10, 4, 200, 0, 7}) {
      resizeArrayStorage(data, size);
      ASSERT_EQ(arrayLogicalSize(data), size);
      for (std::uint64_t i = 0; i < size; ++i) {
        EXPECT_EQ(arrayReadI64(data, i), 0);
        if (slots.kind == SlotKind::Object) {
          EXPECT_EQ(data.objects.data[i], nullptr);
          data.objects.data[i] = vorn_box_boolean(true);
        } else {
          writeOne(data, i);
          EXPECT_EQ(arrayReadI64(data, i), 1);
        }
      }
      EXPECT_ARRAY_AT_REST(array);
    }
    EXPECT_EQ(data.elementType.get(), slots.element);
    EXPECT_EQ(data.slotKind, slots.kind);
  }
}

TEST_F(ArrayStorage, Resize_UpTo128Bytes_StaysInline) {
  for (const SlotCase& slots : kSlotCases) {
    if (slots.kind == SlotKind::Object) continue;
    SCOPED_TRACE(slots.element);
    const std::uint64_t room = 128 / slots.width;
    const Handle array = ofKind(slots.element, 0);
    ArrayData& data = recordOf(array);
    resizeArrayStorage(data, room);
    EXPECT_EQ(data.primitive.data, data.primitive.inlineBytes);
    EXPECT_EQ(data.primitive.capacity, room);
    EXPECT_ARRAY_AT_REST(array);
    resizeArrayStorage(data, room + 1);
    EXPECT_NE(data.primitive.data, data.primitive.inlineBytes);
    EXPECT_EQ(data.primitive.capacity, 2 * room);
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayStorage, Resize_GrowsByDoublingAndKeepsItsRoom) {
  const Handle array = ofKind("Int", 0);
  ArrayData& data = recordOf(array);
  resizeArrayStorage(data, 1000);
  EXPECT_EQ(data.primitive.capacity, 1024U);
  const unsigned char* const block = data.primitive.data;
  resizeArrayStorage(data, 3);
  EXPECT_EQ(data.primitive.data, block);
  EXPECT_EQ(data.primitive.capacity, 1024U);
  resizeArrayStorage(data, 1024);
  EXPECT_EQ(data.primitive.data, block);
  resizeArrayStorage(data, 1025);
  EXPECT_EQ(data.primitive.capacity, 2048U);
  EXPECT_ARRAY_AT_REST(array);
}

TEST_F(ArrayStorage, Resize_OtherWidth_GoesBackToTheInlineStorage) {
  const Handle array = ofKind("Long", 1000);
  ArrayData& data = recordOf(array);
  data.slotKind = SlotKind::Int16;
  resizeArrayStorage(data, 5);
  EXPECT_EQ(data.primitive.elementSize, 2U);
  EXPECT_EQ(data.primitive.data, data.primitive.inlineBytes);
  EXPECT_EQ(data.primitive.capacity, 64U);
  resizeArrayStorage(data, 65);
  EXPECT_EQ(data.primitive.capacity, 128U);
  EXPECT_ARRAY_AT_REST(array);
}

TEST_F(ArrayStorage, Resize_EveryKindAfterEveryOther) {
  const Handle array = ofKind("Int", 0);
  ArrayData& data = recordOf(array);
  for (const SlotCase& before : kSlotCases) {
    for (const SlotCase& after : kSlotCases) {
      SCOPED_TRACE(std::string(before.element) + " to " + after.element);
      for (const std::uint64_t size : {3, 100}) {
        data.slotKind = before.kind;
        resizeArrayStorage(data, size);
        if (before.kind == SlotKind::Object) {
          data.objects.data[2] = vorn_box_boolean(true);
        } else {
          writeOne(data, 2);
        }
        data.slotKind = after.kind;
        resizeArrayStorage(data, 50);
        ASSERT_EQ(arrayLogicalSize(data), 50U);
        for (std::uint64_t i = 0; i < 50; ++i) ASSERT_EQ(arrayReadI64(data, i), 0);
        ASSERT_EQ(faultOfArray(array), "");
      }
    }
  }
}

TEST_F(ArrayStorage, Resize_MoreThanThereIs_ThrowsAndChangesNothing) {
  for (const char* element : {"Byte", "Long", "Object"}) {
    SCOPED_TRACE(element);
    const Handle array = sampleArray(element, false, 5);
    ArrayData& data = recordOf(array);
    data.elementCounters[0] = 7;
    const ArrayState before(array);
    for (const std::uint64_t size : {std::uint64_t{1} << 60, std::uint64_t{1} << 63, ~std::uint64_t{0}}) {
      EXPECT_THROW(resizeArrayStorage(data, size), std::bad_alloc);
      EXPECT_ARRAY_UNTOUCHED(array, before);
      EXPECT_EQ(data.elementCounters[0], 7U);
    }
  }
}

TEST_F(ArrayStorage, Clear_EmptiesBothStoresAndTheCounters) {
  for (const SlotCase& slots : kSlotCases) {
    SCOPED_TRACE(slots.element);
    const Handle array = sampleArray(slots.element, false, 20);
    ArrayData& data = recordOf(array);
    data.elementCounters[0] = 3;
    data.elementCounters[1] = 4;
    void** const handles = data.objects.data;
    clearArrayStorage(data);
    EXPECT_EQ(arrayLogicalSize(data), 0U);
    EXPECT_EQ(data.primitive.size, 0U);
    EXPECT_EQ(data.objects.size, 0U);
    EXPECT_EQ(data.elementCounters[0], 0U);
    EXPECT_EQ(data.elementCounters[1], 0U);
    EXPECT_EQ(data.elementType.get(), slots.element);
    EXPECT_EQ(data.slotKind, slots.kind);
    for (std::uint64_t i = 0; i < data.objects.capacity; ++i) EXPECT_EQ(handles[i], nullptr);
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayStorage, ResizeAndCopy_ResetTheCounters) {
  const Handle source = sampleArray("Int", false, 2);
  const Handle target = ofKind("Int", 2);
  ArrayData& data = recordOf(target);
  data.elementCounters[0] = 3;
  data.elementCounters[1] = 4;
  resizeArrayStorage(data, 2);
  EXPECT_EQ(data.elementCounters[0] + data.elementCounters[1], 0U);
  data.elementCounters[0] = 3;
  data.elementCounters[1] = 4;
  recordOf(source).elementCounters[0] = 9;
  copyArrayStorage(recordOf(source), data);
  EXPECT_EQ(data.elementCounters[0] + data.elementCounters[1], 0U);
  EXPECT_EQ(recordOf(source).elementCounters[0], 9U);
}

// ---- Copies ---------------------------------------------------------------------------------------------------------

TEST_F(ArrayStorage, Copy_EveryKindOntoEveryOther) {
  for (const SlotCase& from : kSlotCases) {
    for (const SlotCase& to : kSlotCases) {
      SCOPED_TRACE(std::string(from.element) + " onto " + to.element);
      for (const long long size : {0, 3, 40}) {
        const Handle source = sampleArray(from.element, false, size);
        const Handle target = sampleArray(to.element, true, 7);
        ArrayData& data = recordOf(target);
        pthread_mutex_t* const mutex = data.mutex;
        copyArrayStorage(recordOf(source), data);
        ArrayState expected(source);
        expected.synchronised = true;  // the target's own
        ASSERT_TRUE(ArrayState(target) == expected);
        ASSERT_EQ(data.mutex, mutex);
        ASSERT_EQ(faultOfArray(target), "");
        ASSERT_EQ(faultOfArray(source), "");
      }
    }
  }
}

TEST_F(ArrayStorage, Copy_IsIndependentOfItsSource) {
  const Handle source = intArray("Array<Int>", {1, 2, 3});
  const Handle target = ofKind("Int", 0);
  copyArrayStorage(recordOf(source), recordOf(target));
  vorn_collections_Array_setInt(source, 0, 9);
  EXPECT_EQ(integersOf(target), (Integers{1, 2, 3}));
}

TEST_F(ArrayStorage, Copy_SourceOfAnotherWidthThanItsKind_CopiesItsBytes) {
  const Handle source = ofKind("Int", 0);
  ArrayData& from = recordOf(source);
  from.primitive.resetToInline(8);
  from.primitive.size = 2;
  const long long slots[] = {5, 6};
  std::memcpy(from.primitive.data, slots, sizeof(slots));
  const Handle target = sampleArray("Short", false, 3);
  ArrayData& to = recordOf(target);
  copyArrayStorage(from, to);
  EXPECT_EQ(to.primitive.elementSize, 8U);
  EXPECT_EQ(to.primitive.size, 2U);
  EXPECT_EQ(std::memcmp(to.primitive.data, slots, sizeof(slots)), 0);
}

// The slots are read by their kind, so that a width that is too large never leads out of the new array.
TEST_F(ArrayStorage, Slice_SourceOfAnotherWidthThanItsKind_StaysInBounds) {
  const Handle source = ofKind("Int", 0);
  ArrayData& from = recordOf(source);
  from.primitive.resetFor(8, 20);
  from.primitive.size = 20;
  for (std::uint64_t i = 0; i < 20; ++i) arrayWrite(from, i, static_cast<long long>(i), 0.0);
  const Handle all = arraySlice(source, kOmitted, kOmitted);
  EXPECT_EQ(integersOf(all), integersOf(source));
  EXPECT_ARRAY_AT_REST(all);
  const Handle twice = vorn_collections_Array_concat(source, newArray("Array<Int>", 1));
  EXPECT_EQ(vorn_collections_Array_size(twice), 21);
  EXPECT_ARRAY_AT_REST(twice);
}

TEST_F(ArrayStorage, Copy_OntoItself_ChangesNothing) {
  for (const SlotCase& slots : kSlotCases) {
    SCOPED_TRACE(slots.element);
    const Handle array = sampleArray(slots.element, false, 20);
    const ArrayState before(array);
    copyArrayStorage(recordOf(array), recordOf(array));
    EXPECT_ARRAY_UNTOUCHED(array, before);
  }
}

// ---- Single slots ---------------------------------------------------------------------------------------------------

TEST_F(ArrayStorage, ReadI64_ExtendsByTheKind) {
  for (const SlotCase& slots : kSlotCases) {
    if (slots.kind >= SlotKind::Float32) continue;
    SCOPED_TRACE(slots.element);
    const Handle array = ofKind(slots.element, 2);
    ArrayData& data = recordOf(array);
    std::memset(data.primitive.data, 0xFF, 2 * slots.width);
    const bool isSigned = slots.element[0] == 'S' || slots.kind == SlotKind::Int32 || slots.kind == SlotKind::Int64 ||
                          slots.kind == SlotKind::UInt64;  // 64 unsigned bits read as the same bits
    EXPECT_EQ(arrayReadI64(data, 1), isSigned ? -1 : (1LL << (8 * slots.width)) - 1);
    EXPECT_EQ(arrayReadF64(data, 1), static_cast<double>(arrayReadI64(data, 1)));
  }
}

TEST_F(ArrayStorage, Write_IntegerKindsKeepTheLowBits) {
  const struct {
    const char* element;
    long long written;
    long long read;
  } cases[] = {{"Byte", 300, 44},          {"Byte", -1, 255},
               {"SByte", 200, -56},        {"Short", 70000, 4464},
               {"UShort", -1, 65535},      {"CodeUnit", 0x12345, 0x2345},
               {"Int", 1LL << 33 | 5, 5},  {"Int", kLowest, 0},
               {"UInt", -1, 4294967295},   {"Char", 0xD800, 0xD800},  // the raw write does not validate
               {"Long", kLowest, kLowest}, {"Long", kHighest, kHighest},
               {"ULong", -1, -1},          {"ULong", kLowest, kLowest}};
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.element);
    const Handle array = ofKind(entry.element, 3);
    ArrayData& data = recordOf(array);
    arrayWrite(data, 1, entry.written, 0.25);  // the floating form is ignored
    EXPECT_EQ(arrayReadI64(data, 1), entry.read);
    EXPECT_EQ(arrayReadI64(data, 0), 0);
    EXPECT_EQ(arrayReadI64(data, 2), 0);
  }
}

TEST_F(ArrayStorage, Write_FloatingKindsKeepTheFloatingForm) {
  const Handle doubles = ofKind("Double", 1);
  const Handle floats = ofKind("Float", 1);
  arrayWrite(recordOf(doubles), 0, 77, 2.9);
  arrayWrite(recordOf(floats), 0, 77, 0.1);
  EXPECT_EQ(arrayReadF64(recordOf(doubles), 0), 2.9);
  EXPECT_EQ(arrayReadF64(recordOf(floats), 0), static_cast<double>(0.1F));
  EXPECT_NE(arrayReadF64(recordOf(floats), 0), 0.1);
  arrayWrite(recordOf(floats), 0, 0, 1e300);
  EXPECT_EQ(arrayReadF64(recordOf(floats), 0), HUGE_VAL);
  arrayWrite(recordOf(doubles), 0, 0, -0.0);
  EXPECT_TRUE(std::signbit(arrayReadF64(recordOf(doubles), 0)));
}

TEST_F(ArrayStorage, ReadI64_FloatingKindsTruncateTowardZero) {
  for (const char* element : {"Double", "Float"}) {
    const Handle array = ofKind(element, 1);
    ArrayData& data = recordOf(array);
    const auto truncated = [&](double value) {
      arrayWrite(data, 0, 0, value);
      return arrayReadI64(data, 0);
    };
    EXPECT_EQ(truncated(2.9F), 2);
    EXPECT_EQ(truncated(-2.9F), -2);
    EXPECT_EQ(truncated(-0.5), 0);
    EXPECT_EQ(truncated(std::nan("")), kLowest);
    EXPECT_EQ(truncated(HUGE_VAL), kLowest);
    EXPECT_EQ(truncated(-HUGE_VAL), kLowest);
    EXPECT_EQ(truncated(0x1p63), kLowest);
    EXPECT_EQ(truncated(-0x1p63), kLowest);
    EXPECT_EQ(truncated(0x1p62), 1LL << 62);
  }
}

TEST_F(ArrayStorage, Bool_AnyNonZeroByteIsTrue) {
  const Handle array = ofKind("Boolean", 256);
  ArrayData& data = recordOf(array);
  for (int byte = 0; byte < 256; ++byte) data.primitive.data[byte] = static_cast<unsigned char>(byte);
  for (std::uint64_t byte = 0; byte < 256; ++byte) {
    EXPECT_EQ(arrayReadI64(data, byte), byte != 0);
    EXPECT_EQ(arrayReadF64(data, byte), byte != 0 ? 1.0 : 0.0);
  }
  for (const long long value : {5LL, -1LL, 256LL, 1LL << 40}) {
    arrayWrite(data, 0, value, 0.0);
    EXPECT_EQ(data.primitive.data[0], 1);
  }
  arrayWrite(data, 0, 0, 5.0);
  EXPECT_EQ(data.primitive.data[0], 0);
}

TEST_F(ArrayStorage, Object_ReadsAsZeroAndIgnoresWrites) {
  const Handle array = arrayOf("Array", {integer("Int", 7)});
  ArrayData& data = recordOf(array);
  const ArrayState before(array);
  arrayWrite(data, 0, 5, 5.0);
  EXPECT_EQ(arrayReadI64(data, 0), 0);
  EXPECT_EQ(arrayReadF64(data, 0), 0.0);
  EXPECT_ARRAY_UNTOUCHED(array, before);
}

TEST_F(ArrayStorage, Validator_FindsBrokenRecords) {
  const auto fault = [](const char* element, auto breakIt) {
    const Handle array = sampleArray(element, true, 2);
    ArrayData& data = recordOf(array);
    EXPECT_EQ(collections::validateArrayData(data), "");
    breakIt(data);
    std::string result = collections::validateArrayData(data);
    return result;
  };
  EXPECT_NE(fault("Int", [](ArrayData& data) { data.mutex = nullptr; }), "");
  EXPECT_NE(fault("Int", [](ArrayData& data) { data.slotKind = static_cast<SlotKind>(12); }), "");
  EXPECT_NE(fault("Int", [](ArrayData& data) { data.slotKind = SlotKind::Int64; }), "");
  EXPECT_NE(fault("Int", [](ArrayData& data) { data.slotKind = SlotKind::Object; }), "");
  EXPECT_NE(fault("Int", [](ArrayData& data) { data.primitive.size = 33; }), "");
  EXPECT_NE(fault("Int", [](ArrayData& data) { data.primitive.capacity = 33; }), "");
  EXPECT_NE(fault("Int", [](ArrayData& data) { data.objects.size = 1; }), "");
  EXPECT_NE(fault("Object", [](ArrayData& data) { data.objects.size = 1; }), "");
  EXPECT_NE(fault("Object", [](ArrayData& data) { data.objects.size = 5; }), "");
  EXPECT_NE(fault("Object", [](ArrayData& data) { data.slotKind = SlotKind::Int8; }), "");
}

}  // namespace
}  // namespace vorn::tests
