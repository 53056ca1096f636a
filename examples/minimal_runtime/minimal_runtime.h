// A runtime that does as little as the port of the collections library allows: see README.md.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "collections/core/port/comparison.h"
#include "collections/core/port/gc_allocator.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/text.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"

// Made once and kept for good: the library takes classes for the same when they have the same address.
struct RuntimeClass : RuntimeClassHead {
  std::string name;             // in full: "vorn.collections.ArrayList<Int>"
  ObjectKind kind;              // of its objects
  const RuntimeClass* base;     // of a generic form, the class without arguments; null for Object
  RuntimeTypeName elementType;  // what a list's type argument declares
};

namespace minimal {
namespace vc = vorn::collections;
using Handles = std::vector<void*, VornGcAllocator<void*>>;

struct TupleObject : SizedObject {
  Handles items;
};

// arena.cpp: zeroed memory, 16-byte aligned; null when there is none. Any thread may call it.
void* take(std::size_t bytes);

// classes.cpp: the class of a short, full or generic name; null when there is none. The class of an object; String for
// bare texts, null for null. And a new class without fields and hooks.
const RuntimeClass* findClass(std::string_view name);
const RuntimeClass* classOf(const void* handle);
void defineClass(const std::string& name);

// A new object in the arena, which is never destroyed.
template <class Object>
Object* make(const RuntimeClass* type) {
  void* memory = take(sizeof(Object));
  if (memory == nullptr) throw std::bad_alloc();
  auto* object = new (memory) Object();
  object->header = objectHeaderFor(object, type->kind);
  object->runtimeClass = type;
  return object;
}

// The handle as an object of that kind; null when it is none.
template <class Object>
Object* as(void* handle, ObjectKind kind) {
  ObjectRecord* object = getObject(handle);
  return object != nullptr && object->kind() == kind ? static_cast<Object*>(object) : nullptr;
}

// comparison.cpp: negative, zero or positive. Mutable collections are different keys, but may have the same contents;
// those that have no order are ordered by their address.
enum class Seen { AsKeys, AsOrdered, AsEqual };
int compare(void* left, void* right, Seen seen);
long double exactly(const NativeNumericValue& number);
Handles elementsOf(void* collection);

// errors.cpp: this thread's errors as "Class: message", oldest first, which are no longer pending then.
std::vector<std::string> takeErrors();

}  // namespace minimal
