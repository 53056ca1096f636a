// Tuples: their items by number and by field name.
#pragma once

#include <cstdint>
#include <limits>

#include "collections/core/port/borrowed_box.h"
#include "runtime/objects/runtime_class.h"

namespace vorn::runtime {

// The items stand behind the object in its own block as long as they fit there, else in a block of their own. The slots
// past the highest item ever written are null. "size" is an ordinary field, which whoever fills the tuple sets: it may
// say anything, and no reader trusts it with memory.
struct TupleObject : ObjectRecord {
  std::int64_t size;
  std::uint64_t capacity;
  void** items;

  // The number of items to compare or hash: what "size" says, within what there is room for.
  [[nodiscard]] std::uint64_t itemCount() const {
    if (size <= 0) return 0;
    const auto wanted = static_cast<std::uint64_t>(size);
    return wanted < capacity ? wanted : capacity;
  }
};
static_assert(sizeof(TupleObject) == 48);

// A new tuple of size 0 with room for as many items as its class has type arguments. Allocates; std::bad_alloc.
TupleObject* newTuple(const RuntimeClass& type);

// The tuple behind a handle, or null.
inline TupleObject* tupleOf(void* handle) {
  if (objectHeaderAt(handle) != objectHeaderFor(handle, ObjectKind::Tuple)) return nullptr;
  return static_cast<TupleObject*>(handle);
}

// No name of an item.
inline constexpr std::uint64_t kNoItem = std::numeric_limits<std::uint64_t>::max();

std::uint64_t numberOfLongItemName(const char* name);

// Which item a field name, "_" and a decimal number without leading zeros, is that of; kNoItem for every other name.
inline std::uint64_t itemNumber(const char* name) {
  if (name[0] != '_' || name[1] < '0' || name[1] > '9') return kNoItem;
  if (name[2] != '\0') [[unlikely]]
    return numberOfLongItemName(name);
  return static_cast<std::uint64_t>(name[1] - '0');
}

// The item, or null when there is no room for it.
inline void* tupleItem(const TupleObject& tuple, std::uint64_t index) {
  return index < tuple.capacity ? tuple.items[index] : nullptr;
}

void setFurtherTupleItem(TupleObject& tuple, std::uint64_t index, void* item);

// Stores an item, making room when there is none. Does not change "size". May allocate; std::bad_alloc.
inline void setTupleItem(TupleObject& tuple, std::uint64_t index, void* item) {
  collections::assertMayBeKept(item);
  if (index >= tuple.capacity) [[unlikely]]
    return setFurtherTupleItem(tuple, index, item);
  tuple.items[index] = item;
}

}  // namespace vorn::runtime
