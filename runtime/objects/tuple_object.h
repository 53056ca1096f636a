// Tuples: their items by number and by field name.
#pragma once

#include <cstdint>

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
  if (!hasObjectMagic(handle)) return nullptr;
  auto* object = static_cast<ObjectRecord*>(handle);
  return object->kind() == ObjectKind::Tuple ? static_cast<TupleObject*>(object) : nullptr;
}

bool readLongItemName(const char* name, std::uint64_t& index);

// Whether a field name is that of an item, "_" and a decimal number without leading zeros, and which.
inline bool readItemName(const char* name, std::uint64_t& index) {
  if (name[0] != '_' || name[1] < '0' || name[1] > '9') return false;
  index = static_cast<std::uint64_t>(name[1] - '0');
  return name[2] == '\0' || readLongItemName(name, index);
}

// The item, or null when there is no room for it.
void* tupleItem(const TupleObject& tuple, std::uint64_t index);

// Stores an item, making room when there is none. Does not change "size". May allocate; std::bad_alloc.
void setTupleItem(TupleObject& tuple, std::uint64_t index, void* item);

}  // namespace vorn::runtime
