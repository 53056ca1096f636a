#include "collections/array/slot_values.h"

#include <string_view>

#include "collections/core/array_slot_kind.h"
#include "collections/core/elements/accepted_values.h"
#include "collections/core/elements/element_types.h"
#include "collections/core/equality/element_order.h"
#include "collections/core/number_rules.h"
#include "collections/core/port/borrowed_box.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "collections/core/unicode.h"

namespace vc = vorn::collections;
using vc::PrimitiveType;

namespace {

// The payload of an object of exactly the named character type.
bool extractCharacter(void* value, std::string_view typeName, long long& character) {
  if (value == nullptr || !hasObjectMagic(value)) return false;
  const char* valueType = Vorn_objectTypeName(value);
  if (valueType == nullptr || shortTypeNameLocal(valueType) != typeName) return false;
  character = Vorn_getField_i64(value, "_value");
  return true;
}

bool extractCodeUnitValue(void* value, long long& unit) {
  return extractCharacter(value, "CodeUnit", unit) && static_cast<unsigned long long>(unit) <= 0xFFFF;
}

bool extractCharScalar(void* value, long long& scalar) {
  return extractCharacter(value, "Char", scalar) && vc::isUnicodeScalar(scalar);
}

bool extractInteger(const ArrayData& array, void* value, long long& integer) {
  const PrimitiveType type = array.elementType.shortForm().primitiveType();
  if (type == PrimitiveType::CodeUnit) return extractCodeUnitValue(value, integer);
  if (type == PrimitiveType::Char) return extractCharScalar(value, integer);
  return extractArrayElementInteger(value, integer);
}

// The leniency toward the four types is what the language promises.
bool acceptsHandle(const ArrayData& array, void* value) {
  if (value == nullptr) return true;
  const RuntimeTypeName type = array.elementType.shortForm();
  if (type == vc::typeNameOf(PrimitiveType::None) || vc::isCharacterType(type.primitiveType()) || type == "String")
    return true;
  return hasObjectMagic(value) && Vorn_isInstanceOf(value, array.elementType.get().data());
}

}  // namespace

namespace vorn::collections {

bool readSlotScalar(const ArrayData& array, void* value, SlotScalar& scalar) {
  if (!array.isUnboxed()) return false;
  if (arraySlotKindIsFloating(array.slotKind)) {
    if (!extractArrayElementDouble(value, scalar.floating)) return false;
    scalar.integer = truncateToI64(scalar.floating);
    return true;
  }
  if (array.slotKind == ArraySlotKind::Bool) {
    bool truth = false;
    if (!extractArrayElementBool(value, truth)) return false;
    scalar = {truth ? 1 : 0, truth ? 1.0 : 0.0};
    return true;
  }
  if (!extractInteger(array, value, scalar.integer)) return false;
  scalar.floating = static_cast<double>(scalar.integer);
  return true;
}

AcceptedValues acceptedBySlots(const ArrayData& array, const ElementType& type) {
  const auto when = [](bool accepted) { return accepted ? AcceptedValues::all() : AcceptedValues{}; };
  if (array.slotKind == ArraySlotKind::Bool) return when(type.kind == PrimitiveKind::Boolean);
  const RuntimeTypeName element = array.elementType.shortForm();
  const bool character = !arraySlotKindIsFloating(array.slotKind) && isCharacterType(element.primitiveType());
  if (character) return type.name == element ? storableValues(element) : AcceptedValues{};
  // Characters are no numbers, though they are kept as integers.
  const bool integer = isIntegerKind(type.kind) && !isCharacterType(type.name.primitiveType());
  return when(integer || (isFloatingKind(type.kind) && arraySlotKindIsFloating(array.slotKind)));
}

}  // namespace vorn::collections

void* arraySlotToObject(const ArrayData& array, std::uint64_t index) {
  if (index >= arrayLogicalSize(array)) return nullptr;
  if (!array.isUnboxed()) return array.objects.data[index];
  if (array.slotKind == ArraySlotKind::Bool) return Vorn_boxBool(arrayReadI64(array, index) != 0);
  const RuntimeTypeName type = array.elementType.shortForm();
  const auto typeOr = [&](PrimitiveType otherwise) { return type.empty() ? vc::typeNameOf(otherwise) : type; };
  if (arraySlotKindIsFloating(array.slotKind)) {
    return boxFloatingLikeLocal(typeOr(PrimitiveType::Double), arrayReadF64(array, index));
  }
  return boxIntegerLikeLocal(typeOr(PrimitiveType::Int), arrayReadI64(array, index));
}

bool assignArraySlotValue(ArrayData& array, std::uint64_t index, void* value) {
  if (!array.isUnboxed()) {
    if (!acceptsHandle(array, value)) return false;
    vc::assertMayBeKept(value);
    array.objects.data[index] = value;
    return true;
  }
  vc::SlotScalar scalar;
  if (!vc::readSlotScalar(array, value, scalar)) return false;
  arrayWrite(array, index, scalar.integer, scalar.floating);
  return true;
}

bool arraySlotEqualsObject(const ArrayData& array, std::uint64_t index, void* value) {
  if (index >= arrayLogicalSize(array)) return false;
  if (!array.isUnboxed()) {
    // User equality may replace the slot, and then only this frame holds what it compares.
    const vc::RootedHandle slot(array.objects.data[index]);
    return listValuesEqual(value, slot.get());
  }
  vc::SlotScalar scalar;
  if (value == nullptr || !vc::readSlotScalar(array, value, scalar)) return false;
  if (arraySlotKindIsFloating(array.slotKind)) return arrayReadF64(array, index) == scalar.floating;
  return arrayReadI64(array, index) == scalar.integer;
}
