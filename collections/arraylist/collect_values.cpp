#include "collections/arraylist/collect_values.h"

#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/tuple.h>

#include <string_view>

#include "collections/core/runtime_interface.h"

using vorn::collections::HandleVector;

// The natives of arrays. Weak, because a build of the library may leave the class out; the runtime then makes no such
// object.
extern "C" {
__attribute__((weak)) long long vorn_collections_Array_size(void* array);
__attribute__((weak)) void* vorn_collections_Array_operator_index(void* array, long long index);
}

namespace {

using SizeNative = long long (*)(void*);
using IndexNative = void* (*)(void*, long long);

struct ElementReader {
  SizeNative size = nullptr;
  IndexNative at = nullptr;
};

long long tupleSize(void* tuple) { return Vorn_getField_i64(tuple, "size"); }

ElementReader orderedReader(std::string_view typeName) {
  if (isArrayLike(typeName)) return {vorn_collections_Array_size, vorn_collections_Array_operator_index};
  if (isArrayListLike(typeName)) return {vorn_collections_ArrayList_size, vorn_collections_ArrayList_operator_index};
  if (isImmutableListLike(typeName)) {
    return {vorn_collections_ArrayList_size, vorn_collections_ImmutableList_operator_index};
  }
  if (isTupleLike(typeName)) return {tupleSize, vorn_collections_Tuple_operator_index};
  return {};
}

ElementReader insertionReader(std::string_view typeName) {
  const ElementReader reader = orderedReader(typeName);
  if (reader.at != nullptr || !isHashSetLike(typeName)) return reader;
  return {vorn_collections_HashSet_size, vorn_collections_HashSet_operator_index};
}

std::string_view typeNameOf(void* value) {
  const char* name = Vorn_objectTypeName(value);
  return name != nullptr ? std::string_view(name) : std::string_view();
}

bool collect(void* value, const ElementReader& reader, HandleVector::Storage& values) {
  if (reader.size == nullptr || reader.at == nullptr) return false;
  const long long length = reader.size(value);
  if (length < 0) return false;
  values.reserve(values.size() + static_cast<std::size_t>(length));
  for (long long i = 0; i < length; ++i) values.push_back(reader.at(value, i));
  return true;
}

}  // namespace

bool collectOrderedCollectionValues(void* value, HandleVector::Storage& values) {
  return value != nullptr && collect(value, orderedReader(typeNameOf(value)), values);
}

bool collectListInsertionValues(void* value, HandleVector::Storage& values) {
  return value != nullptr && collect(value, insertionReader(typeNameOf(value)), values);
}
