// Natives that read or write single slots, the size, and the raw pointers.
#include <vorn/collections/array.h>

#include <cstring>
#include <string_view>

#include "collections/array/array_data.h"
#include "collections/array/slot_values.h"
#include "collections/core/array_slot_kind.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/errors.h"
#include "collections/core/index_rules.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/number_rules.h"
#include "collections/core/port/comparison.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/pending_errors.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"

namespace vc = vorn::collections;

namespace {

// The commonest accesses of all, an index from the start into slots of Int or Double: kept free of calls, so that the
// natives need no frame for them, and of the arithmetic of negative indexes. Everything else goes the long way.
inline bool isPlainIndex(const ArrayData& array, ArraySlotKind kind, long long index) {
  return array.slotKind == kind && static_cast<std::uint64_t>(index) < array.primitive.size;
}

// The common case of a typed access: an index inside unboxed slots.
inline bool isUnboxedIndex(const ArrayData& array, long long index, std::uint64_t& at) {
  const std::uint64_t size = array.primitive.size;
  at = static_cast<std::uint64_t>(index) + (index < 0 ? size : 0);
  return at < size;
}

// The slot of an object array, or null after raising; `raiseNull` is what a null slot raises.
void* objectAtOrRaise(const ArrayData& array, long long index, void (*raiseNull)()) {
  const auto at = vc::elementIndexOrRaise(arrayLogicalSize(array), index);
  if (!at) return nullptr;
  void* element = array.objects.data[*at];
  if (element == nullptr) raiseNull();
  return element;
}

[[gnu::noinline]] long long intAtOrRaise(const ArrayData& array, long long index) {
  std::uint64_t at = 0;
  if (isUnboxedIndex(array, index, at)) return arrayReadI64(array, at);
  void* element = objectAtOrRaise(array, index, vc::errors::raiseExpectedIntegerArrayItem);
  return element != nullptr ? readListItemI64(element) : 0;
}

[[gnu::noinline]] long long lockedIntAtOrRaise(const ArrayData& array, long long index) {
  const ArrayDataLock lock(array);
  return intAtOrRaise(array, index);
}

double floatingElement(void* element) {
  const char* type = Vorn_objectTypeName(element);
  const bool floating = type != nullptr && isFloatingNumberShortType(shortTypeNameLocal(type));
  return floating ? Vorn_getField_double(element, "_value") : static_cast<double>(readListItemI64(element));
}

[[gnu::noinline]] double doubleAtOrRaise(const ArrayData& array, long long index) {
  std::uint64_t at = 0;
  if (isUnboxedIndex(array, index, at)) return arrayReadF64(array, at);
  void* element = objectAtOrRaise(array, index, vc::errors::raiseExpectedFloatingArrayItem);
  return element != nullptr ? floatingElement(element) : 0.0;
}

[[gnu::noinline]] double lockedDoubleAtOrRaise(const ArrayData& array, long long index) {
  const ArrayDataLock lock(array);
  return doubleAtOrRaise(array, index);
}

void assignOrRaise(ArrayData& array, std::uint64_t index, void* value) {
  if (!assignArraySlotValue(array, index, value)) vc::errors::raiseInvalidArrayElement();
}

// Stores a raw value at a checked index: in both forms into an unboxed slot, else as the box that `makeBox` gives.
template <class MakeBox>
void storeOrRaise(ArrayData& array, std::uint64_t at, long long integer, double floating, MakeBox makeBox) {
  if (array.isUnboxed()) return arrayWrite(array, at, integer, floating);
  // No root: nothing allocates between the box and its slot.
  assignOrRaise(array, at, makeBox());
}

RuntimeTypeName elementTypeOr(const ArrayData& array, vc::PrimitiveType otherwise) {
  return array.elementType.empty() ? vc::typeNameOf(otherwise) : array.elementType;
}

// The value as the array's character type has it; false after an error. Other types keep it.
bool asCharacterOrRaise(const ArrayData& array, long long& value) {
  const vc::PrimitiveType type = array.elementType.shortForm().primitiveType();
  if (type == vc::PrimitiveType::CodeUnit) {
    value = Vorn_intToCodeUnit(value);
  } else if (type == vc::PrimitiveType::Char) {
    value = Vorn_intToChar(value);
  } else {
    return true;
  }
  return !hasPendingError();
}

[[gnu::noinline]] void setIntOrRaise(ArrayData& array, long long index, long long value) {
  const auto at = vc::elementIndexOrRaise(arrayLogicalSize(array), index);
  if (!at || !asCharacterOrRaise(array, value)) return;
  storeOrRaise(array, *at, value, static_cast<double>(value),
               [&] { return boxIntegerLikeLocal(elementTypeOr(array, vc::PrimitiveType::Int), value); });
}

[[gnu::noinline]] void lockedSetIntOrRaise(ArrayData& array, long long index, long long value) {
  const ArrayDataLock lock(array);
  setIntOrRaise(array, index, value);
}

// The record of an unsynchronised array, reached through the object; null for anything else.
ArrayData* unlockedRecord(void* array) {
  auto* data = nativeRecordOrNull<ArrayData>(array, ObjectKind::Array);
  return data != nullptr && !data->synchronized ? data : nullptr;
}

}  // namespace

long long vorn_collections_Array_size(void* array) {
  if (array == nullptr) return 0;
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  return static_cast<long long>(arrayLogicalSize(data));
}

long long vorn_collections_Array_rawSize(void* array) {
  const ArrayData* data = unlockedRecord(array);
  return data != nullptr ? static_cast<long long>(arrayLogicalSize(*data)) : 0;
}

void* vorn_collections_Array_rawDataPtr(void* array) {
  ArrayData* data = unlockedRecord(array);
  return data != nullptr && data->isUnboxed() ? data->primitive.data : nullptr;
}

long long* vorn_collections_Array_i64DataPtr(void* array) {
  if (array == nullptr) return nullptr;
  ArrayData& data = *getArrayData(array);
  return data.slotKind == ArraySlotKind::Int64 ? reinterpret_cast<long long*>(data.primitive.data) : nullptr;
}

double* vorn_collections_Array_f64DataPtr(void* array) {
  if (array == nullptr) return nullptr;
  ArrayData& data = *getArrayData(array);
  return data.slotKind == ArraySlotKind::Float64 ? reinterpret_cast<double*>(data.primitive.data) : nullptr;
}

long long vorn_collections_Array_getInt(void* array, long long index) {
  if (array == nullptr) return 0;
  const ArrayData& data = *getArrayData(array);
  if (data.synchronized) [[unlikely]]
    return lockedIntAtOrRaise(data, index);
  if (!isPlainIndex(data, ArraySlotKind::Int32, index)) [[unlikely]]
    return intAtOrRaise(data, index);
  return vc::loadElement<std::int32_t>(data.primitive.data, static_cast<std::uint64_t>(index));
}

double vorn_collections_Array_getDouble(void* array, long long index) {
  if (array == nullptr) return 0.0;
  const ArrayData& data = *getArrayData(array);
  if (data.synchronized) [[unlikely]]
    return lockedDoubleAtOrRaise(data, index);
  if (!isPlainIndex(data, ArraySlotKind::Float64, index)) [[unlikely]]
    return doubleAtOrRaise(data, index);
  return vc::loadElement<double>(data.primitive.data, static_cast<std::uint64_t>(index));
}

void vorn_collections_Array_setInt(void* array, long long index, long long value) {
  if (array == nullptr) return;
  ArrayData& data = *getArrayData(array);
  if (data.synchronized) [[unlikely]]
    return lockedSetIntOrRaise(data, index, value);
  // No character type has slots of this kind.
  if (!isPlainIndex(data, ArraySlotKind::Int32, index)) [[unlikely]]
    return setIntOrRaise(data, index, value);
  const auto element = static_cast<std::int32_t>(value);
  std::memcpy(data.primitive.data + static_cast<std::uint64_t>(index) * sizeof(element), &element, sizeof(element));
}

void vorn_collections_Array_setDouble(void* array, long long index, double value) {
  if (array == nullptr) return;
  ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  const auto at = vc::elementIndexOrRaise(arrayLogicalSize(data), index);
  if (!at) return;
  storeOrRaise(data, *at, vc::truncateToI64(value), value,
               [&] { return boxFloatingLikeLocal(elementTypeOr(data, vc::PrimitiveType::Double), value); });
}

void vorn_collections_Array_setBool(void* array, long long index, bool value) {
  if (array == nullptr) return;
  ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  const auto at = vc::elementIndexOrRaise(arrayLogicalSize(data), index);
  if (!at) return;
  storeOrRaise(data, *at, value ? 1 : 0, value ? 1.0 : 0.0, [&] { return Vorn_boxBool(value); });
}

void* vorn_collections_Array_operator_index(void* array, long long index) {
  if (array == nullptr) return nullptr;
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  const auto at = vc::elementIndexOrRaise(arrayLogicalSize(data), index);
  return at ? arraySlotToObject(data, *at) : nullptr;
}

void vorn_collections_Array_operator_index_eq(void* array, long long index, void* value) {
  if (array == nullptr) return;
  ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  if (const auto at = vc::elementIndexOrRaise(arrayLogicalSize(data), index)) assignOrRaise(data, *at, value);
}

bool vorn_collections_Array_operator_eq(void* array, void* other) { return Vorn_deepEquals(array, other) != 0; }

bool vorn_collections_Array_operator_ne(void* array, void* other) { return Vorn_deepEquals(array, other) == 0; }
