// Displays of fixed arrays.
#include <vorn/collections/array.h>

#include "collections/array/array_data.h"
#include "collections/array/slot_values.h"
#include "collections/core/array_slot_kind.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/type_names.h"
#include "collections/display/display_buffer.h"
#include "collections/display/display_guard.h"
#include "collections/display/element_text.h"
#include "collections/display/value_display.h"

namespace vc = vorn::collections;

namespace vorn::collections {

namespace {

// User code may construct an array anew that has no lock, so the size is read for each.
void appendSlots(DisplayBuffer& text, const ArrayData& array) {
  const PrimitiveKind kind = primitiveKindOf(array.slotKind);
  const ElementText form = elementTextOf(kind, array.elementType.shortForm());
  if (kind != PrimitiveKind::None && form != ElementText::Boxed) {
    return appendElements(text, form, kind, array.primitive.data, array.primitive.size, ", ");
  }
  RootedHandle element;
  for (std::uint64_t i = 0; i < arrayLogicalSize(array); ++i) {
    if (i != 0) text.append(", ");
    element = arraySlotToObject(array, i);
    appendValueDisplay(text, element.get());
  }
}

}  // namespace

void appendArrayDisplay(DisplayBuffer& text, void* array, void** string) {
  if (array == nullptr || CollectionDisplayGuard::isDisplaying(array)) {
    text.append(array == nullptr ? "f:[]" : "f:[...]");
    return finishDisplay(text, string);
  }
  const CollectionDisplayGuard guard(array);
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  text.append(isSyncArrayLike(Vorn_objectTypeName(array)) ? "fs:[" : "f:[");
  appendSlots(text, data);
  text.append("]");
  finishDisplay(text, string);
}

}  // namespace vorn::collections

std::string arrayToDisplayStringInternal(void* array) {
  vc::DisplayBuffer text;
  vc::appendArrayDisplay(text, array);
  return std::string(text.view());
}

void* vorn_collections_Array_toString(void* array) { return vc::displayAsString(vc::appendArrayDisplay, array); }
