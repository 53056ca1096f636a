#include "runtime/objects/tuple_object.h"

#include <vorn/collections/inline_layout.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <system_error>

#include "runtime/heap/heap.h"
#include "runtime/objects/builtin_classes.h"

namespace vorn::runtime {
namespace {

// Compiled code reads items by itself.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
static_assert(VORN_INLINE_TUPLE_SIZE == offsetof(TupleObject, size));
static_assert(VORN_INLINE_TUPLE_CAPACITY == offsetof(TupleObject, capacity));
static_assert(VORN_INLINE_TUPLE_ITEMS == offsetof(TupleObject, items));
#pragma GCC diagnostic pop

// Room in tuples whose class does not say how many items they have.
constexpr std::uint64_t kUntypedItems = 4;

constexpr std::uint64_t kMostItems = std::numeric_limits<std::int64_t>::max() / sizeof(void*);

}  // namespace

TupleObject* newTuple(const RuntimeClass& type) {
  const std::uint64_t capacity = type.typeArguments != 0 ? type.typeArguments : kUntypedItems;
  auto* tuple = static_cast<TupleObject*>(allocateScanned(sizeof(TupleObject) + capacity * sizeof(void*)));
  tuple->runtimeClass = &type;
  tuple->capacity = capacity;
  tuple->items = reinterpret_cast<void**>(tuple + 1);
  tuple->header = objectHeaderFor(tuple, ObjectKind::Tuple);
  return tuple;
}

// The name begins with "_" and a digit.
std::uint64_t numberOfLongItemName(const char* name) {
  if (name[1] == '0') return kNoItem;
  const char* const end = name + std::strlen(name);
  std::uint64_t number = 0;
  const auto parsed = std::from_chars(name + 1, end, number);
  return parsed.ec == std::errc() && parsed.ptr == end ? std::min(number, kNoItem - 1) : kNoItem;
}

// There is no room for the item yet.
void setFurtherTupleItem(TupleObject& tuple, std::uint64_t index, void* item) {
  if (index >= kMostItems) throw std::bad_alloc();
  const std::uint64_t capacity = std::max(index + 1, tuple.capacity * 2);
  auto** items = static_cast<void**>(allocateScanned(capacity * sizeof(void*)));
  if (tuple.capacity != 0) std::memcpy(items, tuple.items, tuple.capacity * sizeof(void*));
  items[index] = item;
  tuple.items = items;
  tuple.capacity = capacity;
}

}  // namespace vorn::runtime
