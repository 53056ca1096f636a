// How a slot of a fixed array is represented.
#pragma once

#include <cstddef>
#include <cstdint>

// The numbering is shared with the runtime, which maps element type names to kinds.
enum class ArraySlotKind : std::uint8_t {
  Int8 = 0,
  UInt8 = 1,
  Int16 = 2,
  UInt16 = 3,
  Int32 = 4,
  UInt32 = 5,
  Int64 = 6,
  UInt64 = 7,
  Float32 = 8,
  Float64 = 9,
  Bool = 10,
  Object = 11,  // a handle
};

// The width of an unboxed slot in bytes; 0 for handles.
constexpr std::size_t arraySlotKindSize(ArraySlotKind kind) {
  constexpr unsigned char kWidths[] = {1, 1, 2, 2, 4, 4, 8, 8, 4, 8, 1, 0};
  return kWidths[static_cast<std::size_t>(kind)];
}

constexpr bool arraySlotKindIsFloating(ArraySlotKind kind) {
  return kind == ArraySlotKind::Float32 || kind == ArraySlotKind::Float64;
}
