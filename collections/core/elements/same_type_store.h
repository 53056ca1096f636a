// Storing a box in unboxed storage of its very own type: the common case of every boxed store, decided without looking
// up a name.
#pragma once

#include <bit>
#include <cstdint>

#include "collections/core/elements/element_types.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/port/object_layout.h"

namespace vorn::collections {

// Stores the value of a box at `index` of a buffer with elements of the list's kind, which need not be the list's own.
// False, with nothing stored, when the value does not fit, or is no box of exactly the type that the list keeps and, if
// it declares one, declares: the ordinary path then decides. Neither grows the buffer nor sets a size.
inline bool storeBoxOfSameType(const ListData& list, unsigned char* elements, std::uint64_t index, void* value) {
  const RegisteredObject* box = getRegisteredObjectUnsafe(value);
  if (box == nullptr || box->kind() > ObjectKind::CharacterBox) return false;
  const ElementType type = elementTypeOf(boxedTypeOf(*box));
  if (type.kind != list.primitiveKind || !(list.primitiveType == type.name)) return false;
  if (list.elementType.text != nullptr && !(list.elementType == list.primitiveType)) return false;
  return visitKind(
      type.kind,
      [&](auto tag) {
        using Tag = decltype(tag);
        if constexpr (isFloatingKind(Tag::kind)) {
          storeElement(tag, elements, index, 0, std::bit_cast<double>(box->integer));
          return true;
        } else {
          const long long integer = box->integer;
          if (static_cast<long long>(static_cast<typename Tag::Element>(integer)) != integer) return false;
          // A character has a range of its own, and ULong takes no value that is negative as a signed number.
          if ((Tag::kind == PrimitiveKind::UInt && box->kind() == ObjectKind::CharacterBox) ||
              (Tag::kind == PrimitiveKind::ULong && integer < 0)) {
            return false;
          }
          storeElement(tag, elements, index, integer, 0.0);
          return true;
        }
      },
      false);
}

}  // namespace vorn::collections
