// Joining the texts of a sequence's elements.
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>

#include <string_view>

#include "collections/array/array_data.h"
#include "collections/array/slot_values.h"
#include "collections/arraylist/object_cursor.h"
#include "collections/core/array_slot_kind.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "collections/core/storage/list_data.h"
#include "collections/display/display_buffer.h"
#include "collections/display/element_text.h"
#include "collections/display/value_display.h"

namespace vc = vorn::collections;
using vc::DisplayBuffer;

namespace {

// Most numbers are short; what is longer makes the buffer grow.
constexpr std::size_t kExpectedText = 4;

// Never a view of null, which memcpy must not see even for no bytes.
std::string_view separatorOf(const char* separator) { return separator != nullptr ? separator : ""; }

// A bare text is joined as it is, where the display form would quote it.
void appendHandle(DisplayBuffer& text, void* handle) {
  if (handle != nullptr && !isObjectPointer(handle)) return text.append(static_cast<const char*>(handle));
  vc::appendLanguageText(text, handle);
}

// Walks the storage itself: the toString of an element may change a list that has no lock, so the size is read for
// each.
void joinHandles(DisplayBuffer& text, ListData& list, std::string_view separator) {
  vc::ObjectCursor cursor(list);
  vc::RootedHandle element;
  for (std::uint64_t i = 0; i < list.objectCount(); ++i) {
    if (i != 0) text.append(separator);
    element = cursor.at(i);
    appendHandle(text, element.get());
  }
}

// Numbers and Booleans have one text, whichever form asks for it; everything else goes through its object.
void joinSlots(DisplayBuffer& text, const ArrayData& array, std::string_view separator) {
  const auto kind = vc::primitiveKindOf(array.slotKind);
  const vc::ElementText form = vc::elementTextOf(kind, array.elementType.shortForm());
  if (array.isUnboxed() && form != vc::ElementText::Boxed) {
    return vc::appendElements(text, form, kind, array.primitive.data, array.primitive.size, separator);
  }
  vc::RootedHandle element;
  for (std::uint64_t i = 0; i < arrayLogicalSize(array); ++i) {
    if (i != 0) text.append(separator);
    element = arraySlotToObject(array, i);
    vc::appendLanguageText(text, element.get());
  }
}

}  // namespace

void* vorn_collections_ArrayList_join(void* list, const char* separator) {
  if (list == nullptr) return Vorn_allocString({});
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  DisplayBuffer text;
  if (data.isUnboxed()) {
    text.reserve(kExpectedText * data.primitive.size);
    vc::appendUnboxedElements(text, data, separatorOf(separator));
  } else {
    joinHandles(text, data, separatorOf(separator));
  }
  return Vorn_allocString(text.view());
}

void* vorn_collections_Array_join(void* array, const char* separator) {
  if (array == nullptr) return Vorn_allocString({});
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  DisplayBuffer text;
  joinSlots(text, data, separatorOf(separator));
  return Vorn_allocString(text.view());
}
