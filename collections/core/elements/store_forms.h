// How a value enters a list: does the declared element type accept it, and can it be kept unboxed. Nothing here locks.
#pragma once

#include <cstdint>
#include <string_view>

#include "collections/core/elements/primitive_values.h"
#include "collections/core/storage/list_data.h"

// The value converted to the list's declared element type; false when that is no primitive type or refuses the value.
bool rawPrimitiveValueToDeclared(const ListData& list, const BulkPrimitiveListValue& value,
                                 BulkPrimitiveListValue& out);
bool listValueToDeclaredPrimitiveValue(const ListData& list, void* handle, BulkPrimitiveListValue& out);

// Whether a value of this kind and name may be stored unboxed in the list as it stands.
bool primitiveStorageCompatible(const ListData& list, ListData::PrimitiveKind kind, std::string_view typeName);

// Appends a raw value: unboxed when the list is empty (it then adopts the kind) or keeps this kind and name, otherwise
// boxed, materialising first. May raise the character range errors. Allocates.
void appendPrimitiveValue(ListData& list, const BulkPrimitiveListValue& value);

namespace vorn::collections {

// Whether the declared element type takes the value; what ensureListValueMatchesDeclaredElementType asks before it
// raises. Neither allocates nor runs user code.
bool declaredTypeAccepts(const ListData& list, void* handle);

// Makes an empty array-backed list keep values of this kind and name unboxed; false, after raising and with nothing
// changed, when the value is a Char or CodeUnit out of range.
bool adoptPrimitiveKindOrRaise(ListData& list, const BulkPrimitiveListValue& value);

// How a value enters a list.
enum class StoreForm {
  Refused,  // the declared element type does not accept it; the error is pending
  Unboxed,  // as the raw value, which the present storage can keep
  Boxed,    // as the handle, in boxed storage
};

// Decides how a value enters the list; `raw` is filled for the unboxed form. One lookup of the declared type and one
// unboxing serve the gate and the storage decision.
StoreForm chooseStoreFormOrRaise(const ListData& list, void* handle, BulkPrimitiveListValue& raw);

}  // namespace vorn::collections

// The declared-type gate of every list store; raises TypeError "ArrayList<...> cannot accept ..." and gives false when
// the value is refused.
bool ensureListValueMatchesDeclaredElementType(const ListData& list, void* handle);
