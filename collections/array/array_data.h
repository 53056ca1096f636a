// The storage record of every fixed array.
//
// An array has one element type from its construction on, and with it one kind of slot:
//   slotKind != Object  `primitive` holds the unboxed slots, elementSize being the kind's width;
//   slotKind == Object  `objects` holds handles.
// plainSlotKind repeats slotKind in arrays without a lock, so that compiled code tests both by one comparison.
// The store that is not live is empty. The record belongs to its object and lives inside the object's block; heap
// blocks come from the collector (unboxed slots from pointer-free memory) and are never freed. Only natives lock;
// nothing in this file does, and nothing checks an index unless it says so.
#pragma once

#include <pthread.h>
#include <vorn/collections/runtime_helpers.hpp>

#include <cstdint>

#include "collections/core/array_slot_kind.h"
#include "collections/core/port/type_name.h"
#include "collections/core/record_lock.h"
#include "collections/core/storage/small_buffers.h"

struct ArrayData {
  using SlotKind = ArraySlotKind;
  static constexpr std::uint8_t kNotPlain = 0xFF;  // there is a lock, or no constructor has run

  bool synchronized = false;
  RuntimeTypeName elementType;  // as written in the array's type, such as "Int", "vorn.Double" or "Map<String, Int>"
  SlotKind slotKind = SlotKind::Object;
  std::uint8_t plainSlotKind = kNotPlain;
  SmallPrimitiveBuffer primitive;
  std::uint64_t elementCounters[2] = {};  // the runtime's; this library only resets them
  SmallObjectVector objects;
  pthread_mutex_t* mutex = nullptr;

  ArrayData() = default;
  ArrayData(const ArrayData&) = delete;
  ArrayData& operator=(const ArrayData&) = delete;

  // Whether the slots are unboxed, not handles.
  [[nodiscard]] bool isUnboxed() const { return slotKind != SlotKind::Object; }
};

using ArrayDataLock = vorn::collections::RecordLock<ArrayData>;

// Stores a scalar, given in both forms: the integer's low bits, the double, or whether the integer is not zero.
// Ignored for Object.
void arrayWrite(ArrayData& array, std::uint64_t index, long long integer, double floating);

namespace vorn::collections {

// Turns the array into n empty slots of another element type. Throws std::bad_alloc with nothing changed. Allocates.
void recreateArrayStorage(ArrayData& array, RuntimeTypeName elementType, ArraySlotKind kind, std::uint64_t n);

}  // namespace vorn::collections
