#include "tests/support/sequences.h"

#include <vorn/collections/immutable_list.h>
#include <vorn/collections/tuple.h>

namespace vorn::tests {

Handle tupleOf(const std::vector<Handle>& items, const char* typeName) {
  std::vector<void*> raw(items.begin(), items.end());
  return vorn_tuple_new(typeName, raw.data(), raw.size());
}

Handle boxedImmutable(const std::vector<Handle>& elements) {
  const Handle source = object("LinkedList");
  for (const Handle& element : elements) vorn_collections_ArrayList_add(source, element);
  Handle result = object("ImmutableList");
  vorn_collections_ImmutableList_ctor(result, source);
  return result;
}

Handle unboxedImmutable(const char* type, const std::vector<std::int64_t>& values) {
  const Handle source = object("ArrayList");
  for (const std::int64_t value : values) vorn_collections_ArrayList_addPrimitiveI64(source, value, type);
  Handle result = object("ImmutableList");
  vorn_collections_ImmutableList_ctor(result, source);
  return result;
}

Handle unboxedFloatingImmutable(const char* type, const std::vector<double>& values) {
  const Handle source = object("ArrayList");
  for (const double value : values) vorn_collections_ArrayList_addPrimitiveDouble(source, value, type);
  Handle result = object("ImmutableList");
  vorn_collections_ImmutableList_ctor(result, source);
  return result;
}

Handle deepTuple(int levels, Handle innermost) {
  for (int i = 0; i < levels; ++i) {
    void* item = innermost;
    innermost = vorn_tuple_new(nullptr, &item, 1);
  }
  return innermost;
}

}  // namespace vorn::tests
