// Bytes in and out of arrays of bytes.
#include <vorn/collections/runtime_helpers.hpp>

#include "tests/array/array_cases.h"

namespace vorn::tests {
namespace {

class ArrayBytes : public RuntimeTest {};

using Bytes = std::vector<unsigned char>;
constexpr const char* kUntouched = "untouched";
constexpr const char* kNotBytes = "Expected Byte[]";
constexpr const char* kTooSmall = "Destination Byte[] is too small";

struct Reading {
  bool done = false;
  Bytes out = {9, 9};
  std::string error = kUntouched;
};
Reading readFrom(void* array) {
  Reading reading;
  reading.done = Vorn_readByteArrayData(array, reading.out, reading.error);
  EXPECT_NOTHING_RAISED();
  return reading;
}

TEST_F(ArrayBytes, Read_ReplacesTheVector) {
  for (const bool synchronised : {false, true}) {
    for (const std::size_t size : {0U, 1U, 3U, 1000U}) {
      Integers values(size);
      for (std::size_t i = 0; i < size; ++i) values[i] = static_cast<long long>(255 - i % 256);
      const Handle array = intArray(arrayType("Byte", synchronised), values);
      const Reading reading = readFrom(array);
      EXPECT_TRUE(reading.done);
      EXPECT_EQ(reading.out, Bytes(values.begin(), values.end()));
      EXPECT_EQ(reading.error, kUntouched);
      EXPECT_ARRAY_AT_REST(array);
    }
  }
}

TEST_F(ArrayBytes, Read_NullIsNoBytes) {
  const Reading reading = readFrom(nullptr);
  EXPECT_TRUE(reading.done);
  EXPECT_EQ(reading.out, Bytes{});
  EXPECT_EQ(reading.error, kUntouched);
}

TEST_F(ArrayBytes, OtherKinds_AreNoBytes) {
  for (const long long size : {0, 3}) {
    forEachArray(size, [](const Handle& array, const std::string& element, bool) {
      if (element == "Byte") return;
      const ArrayState before(array);
      const Reading reading = readFrom(array);
      EXPECT_FALSE(reading.done);
      EXPECT_EQ(reading.out, (Bytes{9, 9}));
      EXPECT_EQ(reading.error, kNotBytes);
      for (const std::size_t count : {0U, 1U, 99U}) {  // the kind is tested before the count
        const Bytes bytes(count, 7);
        std::string error = kUntouched;
        EXPECT_FALSE(Vorn_writeByteArrayData(array, bytes.data(), count, error));
        EXPECT_EQ(error, kNotBytes);
      }
      EXPECT_NOTHING_RAISED();
      EXPECT_ARRAY_UNTOUCHED(array, before);
    });
  }
}

// The slot kind counts, not the element type's name.
TEST_F(ArrayBytes, AnArrayOfTheKindUnderAnotherName_IsBytes) {
  const Handle array = object("Array<Int>");
  vorn_collections_Array_copyCtor(array, intArray("Array<Byte>", {1, 2}));
  EXPECT_EQ(readFrom(array).out, (Bytes{1, 2}));
}

TEST_F(ArrayBytes, Write_FirstSlotsOnly) {
  for (const bool synchronised : {false, true}) {
    const Handle array = intArray(arrayType("Byte", synchronised), {50, 51, 52, 53, 54});
    const Bytes bytes = {1, 0, 255, 4, 5, 6};
    std::string error = kUntouched;
    EXPECT_TRUE(Vorn_writeByteArrayData(array, bytes.data(), 3, error));
    EXPECT_EQ(integersOf(array), (Integers{1, 0, 255, 53, 54}));
    EXPECT_TRUE(Vorn_writeByteArrayData(array, bytes.data(), 5, error));
    EXPECT_EQ(integersOf(array), (Integers{1, 0, 255, 4, 5}));
    EXPECT_TRUE(Vorn_writeByteArrayData(array, nullptr, 0, error));
    EXPECT_EQ(error, kUntouched);
    const ArrayState before(array);
    EXPECT_FALSE(Vorn_writeByteArrayData(array, bytes.data(), 6, error));
    EXPECT_EQ(error, kTooSmall);
    EXPECT_FALSE(Vorn_writeByteArrayData(array, bytes.data(), ~std::size_t{0}, error));
    EXPECT_NOTHING_RAISED();
    EXPECT_ARRAY_UNTOUCHED(array, before);
  }
}

TEST_F(ArrayBytes, Write_NullAndEmptyArrays) {
  const Bytes bytes = {1};
  std::string error = kUntouched;
  EXPECT_FALSE(Vorn_writeByteArrayData(nullptr, bytes.data(), 1, error));
  EXPECT_EQ(error, kNotBytes);
  error = kUntouched;
  EXPECT_FALSE(Vorn_writeByteArrayData(nullptr, nullptr, 0, error));
  EXPECT_EQ(error, kNotBytes);
  const Handle empty = newArray("Array<Byte>", 0);
  error = kUntouched;
  EXPECT_TRUE(Vorn_writeByteArrayData(empty, bytes.data(), 0, error));
  EXPECT_EQ(error, kUntouched);
  EXPECT_FALSE(Vorn_writeByteArrayData(empty, bytes.data(), 1, error));
  EXPECT_EQ(error, kTooSmall);
}

TEST_F(ArrayBytes, Write_FromTheArraysOwnSlots) {
  Integers values(300);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<long long>(i % 251);
  for (const std::size_t shift : {1U, 7U, 100U}) {
    const Handle array = intArray("Array<Byte>", values);
    std::string error;
    const auto* slots = static_cast<unsigned char*>(vorn_collections_Array_rawDataPtr(array));
    EXPECT_TRUE(Vorn_writeByteArrayData(array, slots + shift, 300 - shift, error));
    Integers expected(values.begin() + static_cast<std::ptrdiff_t>(shift), values.end());
    expected.insert(expected.end(), values.end() - static_cast<std::ptrdiff_t>(shift), values.end());
    EXPECT_EQ(integersOf(array), expected);
    EXPECT_ARRAY_AT_REST(array);
  }
}

}  // namespace
}  // namespace vorn::tests
