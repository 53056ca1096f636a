// Displays of hash sets.
#include <vorn/collections/hash_set.h>

#include "collections/core/port/objects.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/type_names.h"
#include "collections/display/display_buffer.h"
#include "collections/display/display_guard.h"
#include "collections/display/value_display.h"
#include "collections/keyed/set_data.h"

namespace vc = vorn::collections;

namespace vorn::collections {

namespace {

// Elements show by the language's own text, not the display one; only a bare text is quoted.
void appendElement(DisplayBuffer& text, void* element) {
  if (element != nullptr && !isObjectPointer(element)) return appendValueDisplay(text, element);
  appendLanguageText(text, element);
}

}  // namespace

void appendSetDisplay(DisplayBuffer& text, void* set, void** string) {
  if (set == nullptr || CollectionDisplayGuard::isDisplaying(set)) {
    text.append(set == nullptr ? "{}" : "{...}");
    return finishDisplay(text, string);
  }
  const CollectionDisplayGuard guard(set);
  const SetData& data = *getSetData(set);
  const SetDataLock lock(data);
  // The lock is held throughout, but the toString of an element may change a set that has none.
  HandleVector elements;
  elements->reserve(data.count());
  data.forEach([&](const NativeCollectionKey&, void* element) { elements->push_back(element); });
  text.append(isSyncHashSetLike(Vorn_objectTypeName(set)) ? "s:{" : "{");
  for (std::size_t i = 0; i < elements->size(); ++i) {
    if (i != 0) text.append(", ");
    appendElement(text, (*elements)[i]);
  }
  text.append("}");
  finishDisplay(text, string);
}

}  // namespace vorn::collections

void* vorn_collections_HashSet_toString(void* set) { return vc::displayAsString(vc::appendSetDisplay, set); }
