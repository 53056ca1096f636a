// How a value enters a list: does the declared element type accept it, and can it be kept unboxed. The one place that
// decides it. Nothing here locks.
#pragma once

#include <bit>
#include <cstdint>

#include "collections/core/elements/element_types.h"
#include "collections/core/elements/kept_boxes.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/port/borrowed_box.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_data.h"

// The value converted to the list's declared element type; false when that is no primitive type or refuses the value.
bool rawPrimitiveValueToDeclared(const ListData& list, const BulkPrimitiveListValue& value,
                                 BulkPrimitiveListValue& out);
bool listValueToDeclaredPrimitiveValue(const ListData& list, void* handle, BulkPrimitiveListValue& out);

// Whether a value of this kind and name may be stored unboxed in the list as it stands.
bool primitiveStorageCompatible(const ListData& list, ListData::PrimitiveKind kind, RuntimeTypeName typeName);

// Appends a raw value: unboxed when the list is empty (it then adopts the kind) or keeps this kind and name, otherwise
// boxed, materialising first. May raise the character range errors. Allocates.
void appendPrimitiveValue(ListData& list, const BulkPrimitiveListValue& value);

// The declared-type gate of every list store; raises TypeError "ArrayList<...> cannot accept ..." and gives false when
// the value is refused.
bool ensureListValueMatchesDeclaredElementType(const ListData& list, void* handle);

namespace vorn::collections {

// Whether the declared element type takes the value; what ensureListValueMatchesDeclaredElementType asks before it
// raises. Neither allocates nor runs user code.
bool declaredTypeAccepts(const ListData& list, void* handle);

// How a value enters a list.
enum class StoreForm : std::uint8_t {
  Refused,  // the declared element type does not accept it; the error is pending
  Kept,     // as the raw value, converted if need be, in unboxed storage of its type
  Adopted,  // as the raw value; the empty list becomes unboxed storage of its type
  Boxed,    // as the handle, in boxed storage
};

// Decides how a value enters the list; `raw` is filled for the two unboxed forms. A character may still be out of the
// range that its storage takes.
StoreForm chooseStoreFormOrRaise(const ListData& list, void* handle, BulkPrimitiveListValue& raw);

// Makes an empty array-backed list keep values of this kind and name unboxed; false, after raising and with nothing
// changed, when the value is a Char or CodeUnit out of range.
bool adoptPrimitiveKindOrRaise(ListData& list, const BulkPrimitiveListValue& value);

// ---- The common cases of that decision, which look at no type but one -----------------------------------------------

// Whether the list takes the value as one more handle, as far as that is known without asking for types: it holds
// handles, or nodes, and is untyped, declares Object, or declares a type that the value's class was seen to be of. A
// list without a declared type that is empty may still become unboxed.
inline bool takesAsHandle(const ListData& list, const void* value) {
  if (list.isUnboxed()) return false;
  if (list.elementType.empty()) return list.objects.size != 0 || list.linked;
  const InternedTypeName& declared = *list.elementType.name;
  if (declared.takesEveryValue) return true;
  const RuntimeClass* const type = classOfObject(value);
  return type != nullptr && declared.lastSeen(type);
}

// Stores the value of a box over element `index` of elements of the list's kind, the list's own or others. False, with
// nothing stored, when the value is not a box of exactly the type that the list keeps and, if it is typed, declares, or
// when it does not fit: chooseStoreFormOrRaise then decides. Takes no part in growing and sets no size.
inline bool storeBoxOfSameType(const ListData& list, unsigned char* elements, std::uint64_t index, void* value) {
  const RegisteredObject* const box = boxOfKeptType(list, value);
  if (box == nullptr || (!list.elementType.empty() && list.elementType != list.primitiveType)) return false;
  return visitKind(
      list.primitiveKind,
      [&](auto tag) {
        if (!keptRangeOf(tag).has(static_cast<std::uint64_t>(box->integer))) return false;
        storeElement(tag, elements, index, box->integer, std::bit_cast<double>(box->integer));
        return true;
      },
      false);
}

// Appends a value that one of the two cases takes and that there is room for; false, with nothing changed, otherwise.
inline bool appendInPlace(ListData& list, void* value) {
  if (takesAsHandle(list, value)) {
    assertMayBeKept(value);
    if (list.linked) return list.linkedObjects.pushBackInPlace(value);
    SmallObjectVector& objects = list.objects;
    if (objects.size == objects.capacity) return false;
    objects.data[objects.size] = value;
    ++objects.size;
    return true;
  }
  SmallPrimitiveBuffer& buffer = list.primitive;
  if (buffer.size >= buffer.capacity || !storeBoxOfSameType(list, buffer.data, buffer.size, value)) return false;
  ++buffer.size;
  return true;
}

}  // namespace vorn::collections
