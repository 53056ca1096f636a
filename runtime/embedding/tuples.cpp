// The embedding API: making tuples.
#include <vorn/runtime.h>

#include <new>

#include "collections/core/port/roots.h"
#include "runtime/objects/class_registry.h"
#include "runtime/objects/tuple_object.h"

namespace {

using vorn::runtime::TupleObject;

TupleObject* newTupleWith(const RuntimeClass& type, void* const* items, std::size_t count) {
  TupleObject* tuple = vorn::runtime::newTuple(type);
  const vorn::collections::RootedHandle keep(tuple);
  // The last item first, so that room is made once.
  for (std::size_t i = count; i > 0; --i) vorn::runtime::setTupleItem(*tuple, i - 1, items[i - 1]);
  tuple->size = static_cast<std::int64_t>(count);
  return tuple;
}

}  // namespace

extern "C" void* vorn_tuple_new(const char* type_name, void* const* items, size_t count) {
  if (items == nullptr && count != 0) return nullptr;
  try {
    const RuntimeClass* type = vorn::runtime::findClass(type_name != nullptr ? type_name : "Tuple");
    if (type == nullptr || type->kind != ObjectKind::Tuple) return nullptr;
    // Roots are only read; the interface takes no const.
    const vorn::collections::RootedRange keep(const_cast<void**>(items), count * sizeof(void*));  // NOLINT
    return newTupleWith(*type, items, count);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
