// What the list tests share: the texts of their errors and a table of the natives.
#pragma once

#include <ostream>
#include <vector>

#include "collections/core/port/object_layout.h"
#include "tests/support/error_texts.h"
#include "tests/support/lists.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {

inline constexpr const char* kIndexError = error_texts::kIndexOutOfBounds;
inline constexpr const char* kIntItemError = error_texts::kExpectedIntItem;
inline constexpr const char* kFloatingItemError = error_texts::kExpectedFloatingItem;
inline constexpr const char* kCodeUnitError = error_texts::kCodeUnitOutOfRange;
inline constexpr const char* kCharError = error_texts::kCharNotScalar;
inline constexpr const char* kAddOnNullError = error_texts::kAddOnNull;

// One native, called with a plain choice of arguments: index 0 and the given value. `locks` tells whether it locks a
// synchronised list.
struct NativeCase {
  const char* name;
  bool locks;
  void (*call)(void* list, void* value);
};

inline std::ostream& operator<<(std::ostream& out, const NativeCase& native) { return out << native.name; }

// All natives of element access and mutation.
inline const std::vector<NativeCase>& natives() {
  static const std::vector<NativeCase> cases = {
      {"add", true, [](void* list, void* value) { vorn_collections_ArrayList_add(list, value); }},
      {"addInt", true, [](void* list, void*) { vorn_collections_ArrayList_addInt(list, 5); }},
      {"addPrimitiveI64", true, [](void* list, void*) { vorn_collections_ArrayList_addPrimitiveI64(list, 5, "Int"); }},
      {"addPrimitiveDouble", true,
       [](void* list, void*) { vorn_collections_ArrayList_addPrimitiveDouble(list, 5.5, "Double"); }},
      {"addPrimitiveBool", true, [](void* list, void*) { vorn_collections_ArrayList_addPrimitiveBool(list, true); }},
      {"addIntToData", true,
       [](void* list, void*) {
         vorn_collections_ArrayList_addIntToData(list != nullptr ? getListData(list) : nullptr, 5);
       }},
      {"addAt", true, [](void* list, void* value) { vorn_collections_ArrayList_addAt(list, 0, value); }},
      {"operator_index", true, [](void* list, void*) { vorn_collections_ArrayList_operator_index(list, 0); }},
      {"operator_index_eq", true,
       [](void* list, void* value) { vorn_collections_ArrayList_operator_index_eq(list, 0, value); }},
      {"getInt", true, [](void* list, void*) { vorn_collections_ArrayList_getInt(list, 0); }},
      {"getIntFast", true, [](void* list, void*) { vorn_collections_ArrayList_getIntFast(list, 0); }},
      {"getIntFromData", true,
       [](void* list, void*) {
         vorn_collections_ArrayList_getIntFromData(list != nullptr ? getListData(list) : nullptr, 0);
       }},
      {"getDouble", true, [](void* list, void*) { vorn_collections_ArrayList_getDouble(list, 0); }},
      {"removeAt", true, [](void* list, void*) { vorn_collections_ArrayList_removeAt(list, 0); }},
      {"remove", true, [](void* list, void* value) { vorn_collections_ArrayList_remove(list, value); }},
      {"clear", true, [](void* list, void*) { vorn_collections_ArrayList_clear(list); }},
      {"size", true, [](void* list, void*) { vorn_collections_ArrayList_size(list); }},
      {"sizeFast", false, [](void* list, void*) { vorn_collections_ArrayList_sizeFast(list); }},
      {"count", true, [](void* list, void* value) { vorn_collections_ArrayList_count(list, value); }},
      {"operator_in", true, [](void* list, void* value) { vorn_collections_ArrayList_operator_in(list, value); }},
      {"indexOf", true, [](void* list, void* value) { vorn_collections_ArrayList_indexOf(list, value, 0); }},
      {"lastIndexOf", true, [](void* list, void* value) { vorn_collections_ArrayList_lastIndexOf(list, value, -1); }},
  };
  return cases;
}

}  // namespace vorn::tests
