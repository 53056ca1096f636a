// Type names and the families of classes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "collections/core/port/type_name.h"

#pragma GCC visibility push(default)

// The type name without its module prefix ("vorn.collections.Map<vorn.String, Int>" gives "Map<vorn.String, Int>");
// the local variant is the one used for element types. The result is a suffix of the argument, so that it is
// NUL-terminated when the argument is. Neither allocates.
std::string_view shortTypeName(std::string_view typeName);
std::string_view shortTypeNameLocal(std::string_view typeName);

// The shared, interned handle of a name; the null handle for the empty name. The library's standard names are found
// with standardTypeName. Every other name is made once, with no primitive type, and refers to its canonical short form,
// which is shortTypeNameLocal's ("Object" when that is empty), unless it is that form. Does not touch the collected
// heap.
RuntimeTypeName internRuntimeTypeName(std::string_view name);

// The short collection class name without type arguments ("vorn.collections.LinkedList<Int>" gives "LinkedList").
std::string_view runtimeCollectionBaseName(std::string_view typeName);

// Class families of a runtime type name, short or full, generic or not.
bool isArrayListLike(std::string_view typeName);      // ArrayList, ArrayListSync, LinkedList, LinkedListSync
bool isSyncArrayListLike(std::string_view typeName);  // ArrayListSync, LinkedListSync
bool isLinkedListLike(std::string_view typeName);     // LinkedList, LinkedListSync
bool isImmutableListLike(std::string_view typeName);
bool isIListLike(std::string_view typeName);  // the four list classes and ImmutableList
bool isArrayLike(std::string_view typeName);
bool isSyncArrayLike(std::string_view typeName);
bool isTupleLike(std::string_view typeName);
bool isMapLike(std::string_view typeName);
bool isHashSetLike(std::string_view typeName);
bool isSyncHashSetLike(std::string_view typeName);

// Whether a short type name is "Float" or "Double".
bool isFloatingNumberShortType(std::string_view shortName);

namespace vorn::compiler {
struct ClassLoader {
  // Splits a generic type name into its concrete argument names; false when it has none.
  static bool resolveConcreteGenericArgs(std::string_view typeName, std::vector<std::string>& arguments);
};
}  // namespace vorn::compiler

#pragma GCC visibility pop
