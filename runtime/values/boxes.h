// Boxed values.
#pragma once

#include <bit>
#include <cstdint>

#include "runtime/heap/heap.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/objects/runtime_class.h"

namespace vorn::runtime {

static_assert(ObjectKind::CharacterBox < ObjectKind::String, "the four box kinds come first");

// Whether objects of the kind are RegisteredObjects.
inline bool isBoxKind(ObjectKind kind) { return kind <= ObjectKind::CharacterBox; }

// A new box of a boxed type other than Boolean; `payload` is the integer or the double's bits (newFloatingBox, below).
// Every word is written, since pointer-free blocks come as they are. Allocates; std::bad_alloc.
inline RegisteredObject* newBox(const RuntimeClass& type, std::int64_t payload) {
  auto* box = static_cast<RegisteredObject*>(allocateAtomic(sizeof(RegisteredObject)));
  box->header = objectHeaderFor(box, type.kind);
  box->runtimeClass = &type;
  box->nativeRecord = nullptr;
  box->integer = payload;
  return box;
}

// A new box of a floating type; a Float is single precision here as in unboxed storage. Allocates; std::bad_alloc.
inline RegisteredObject* newFloatingBox(collections::PrimitiveType type, double value) {
  const double kept = collections::visitKind(
      collections::kindOf(type),
      [value](auto tag) { return static_cast<double>(static_cast<typename decltype(tag)::Element>(value)); }, value);
  return newBox(boxClass(type), std::bit_cast<std::int64_t>(kept));
}

}  // namespace vorn::runtime
