// Bytes in and out of arrays of bytes.
#include <vorn/collections/runtime_helpers.hpp>

#include <cstring>

#include "collections/array/array_data.h"
#include "collections/core/port/object_layout.h"

namespace {

constexpr const char* kNotBytes = "Expected Byte[]";
constexpr const char* kTooSmall = "Destination Byte[] is too small";

bool failWith(const char* text, std::string& error) {
  error = text;
  return false;
}

}  // namespace

bool Vorn_readByteArrayData(void* array, std::vector<unsigned char>& out, std::string& error) {
  if (array == nullptr) {
    out.clear();
    return true;
  }
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  if (data.slotKind != ArraySlotKind::UInt8) return failWith(kNotBytes, error);
  out.assign(data.primitive.data, data.primitive.data + data.primitive.size);
  return true;
}

bool Vorn_writeByteArrayData(void* array, const unsigned char* bytes, std::size_t count, std::string& error) {
  if (array == nullptr) return failWith(kNotBytes, error);
  ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  if (data.slotKind != ArraySlotKind::UInt8) return failWith(kNotBytes, error);
  if (data.primitive.size < count) return failWith(kTooSmall, error);
  if (count != 0) std::memmove(data.primitive.data, bytes, count);
  return true;
}
