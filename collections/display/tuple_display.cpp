// Displays of tuples.
#include <vorn/collections/tuple.h>

#include <string>

#include "collections/core/port/objects.h"
#include "collections/core/port/roots.h"
#include "collections/display/display_buffer.h"
#include "collections/display/display_guard.h"
#include "collections/display/value_display.h"

namespace vc = vorn::collections;

namespace vorn::collections {

void appendTupleDisplay(DisplayBuffer& text, void* tuple, void** string) {
  if (tuple == nullptr || CollectionDisplayGuard::isDisplaying(tuple)) {
    text.append(tuple == nullptr ? "()" : "(...)");
    return finishDisplay(text, string);
  }
  const CollectionDisplayGuard guard(tuple);
  const long long size = Vorn_getField_i64(tuple, "size");
  text.append("(");
  RootedHandle item;
  for (long long i = 0; i < size; ++i) {
    if (i != 0) text.append(", ");
    item = Vorn_getField_ptr(tuple, ("_" + std::to_string(i)).c_str());
    appendValueDisplay(text, item.get());
  }
  text.append(size == 1 ? ",)" : ")");
  finishDisplay(text, string);
}

}  // namespace vorn::collections

void* vorn_collections_Tuple_toString(void* tuple) { return vc::displayAsString(vc::appendTupleDisplay, tuple); }
