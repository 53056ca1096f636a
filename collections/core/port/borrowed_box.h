// Borrowed boxes: boxes of numbers on the stack of compiled code, which natives that keep and show no key may be given
// (<vorn/collections/inline/borrowed.h>).
#pragma once

#include <cassert>

#include "collections/core/port/object_layout.h"

namespace vorn::collections {

// Whether the handle is one. All other boxes have no record.
inline bool isBorrowedBox(const void* handle) {
  const RegisteredObject* box = getRegisteredObjectUnsafe(handle);
  return box != nullptr && box->kind() <= ObjectKind::CharacterBox && box->nativeRecord == box;
}

// Ends a debug build that is about to keep one.
inline void assertMayBeKept([[maybe_unused]] const void* handle) {
  assert(!isBorrowedBox(handle) && "a borrowed box is valid for one call only and must not be stored");
}

}  // namespace vorn::collections
