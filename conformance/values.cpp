#include "conformance/values.h"

#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>

#include "collections/core/port/objects.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "conformance/check.h"

namespace vorn::conformance {

void* held(void* handle) {
  static auto* const handles = new collections::HandleVector();
  const collections::RootedHandle rooted(handle);
  (*handles)->push_back(handle);
  return handle;
}

void* box(std::string_view type, long long value) {
  return held(boxIntegerLikeLocal(internRuntimeTypeName(type), value));
}

void* box(std::string_view type, double value) {
  return held(boxFloatingLikeLocal(internRuntimeTypeName(type), value));
}

void* string(std::string_view text) { return held(Vorn_allocString(text)); }

void* bare(const char* text) { return const_cast<char*>(text); }

void* object(const char* className) {
  void* const made = held(Vorn_allocObject(className));
  if (made == nullptr) throw Failure("Vorn_allocObject(" + shown(className) + ") gives null");
  return made;
}

void* listOf(const char* className, std::initializer_list<void*> elements) {
  void* const list = object(className);
  for (void* element : elements) vorn_collections_ArrayList_add(list, element);
  return list;
}

void* arrayOf(const char* className, std::initializer_list<void*> elements) {
  void* const array = object(className);
  vorn_collections_Array_ctor(array, static_cast<long long>(elements.size()));
  long long at = 0;
  for (void* element : elements) vorn_collections_Array_operator_index_eq(array, at++, element);
  return array;
}

void* tupleOf(std::initializer_list<void*> elements) {
  void* const tuple = object("Tuple");
  int at = 0;
  for (void* element : elements) Vorn_setField_ptr(tuple, ("_" + std::to_string(at++)).c_str(), element);
  Vorn_setField_i64(tuple, "size", at);
  return tuple;
}

void* setOf(std::initializer_list<void*> elements) {
  void* const set = object("HashSet");
  for (void* element : elements) vorn_collections_HashSet_add(set, element);
  return set;
}

void* immutableListOf(std::initializer_list<void*> elements) {
  void* const list = object("ImmutableList");
  vorn_collections_ImmutableList_ctor(list, listOf("ArrayList", elements));
  return list;
}

std::string textOf(void* handle) { return std::string(stringTextFromPtr(held(handle))); }

void expectRaised(std::string_view what, const std::string& error) {
  expect(std::string(what) + " raises", adapter().takeErrors(), std::vector<std::string>{error});
}

}  // namespace vorn::conformance
