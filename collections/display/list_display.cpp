// Displays of the list classes.
#include "collections/display/list_display.h"

#include <vorn/collections/array_list.h>
#include <vorn/collections/immutable_list.h>

#include <string_view>

#include "collections/core/port/objects.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/type_names.h"
#include "collections/core/storage/list_data.h"
#include "collections/display/display_buffer.h"
#include "collections/display/display_guard.h"
#include "collections/display/element_text.h"
#include "collections/display/value_display.h"

namespace vc = vorn::collections;

namespace {

constexpr std::string_view kSeparator = ", ";

std::string immutablePrefix(void* /*list*/, std::uint64_t /*count*/) { return "i:["; }

// What one class of lists shows.
struct ListTexts {
  std::string_view null;
  std::string_view cycle;
  std::string (*prefix)(void* list, std::uint64_t count);
};

// Handles are copied under the lock and shown without it; unboxed elements are shown under it.
void appendDisplay(vc::DisplayBuffer& text, void* list, const ListTexts& texts, void** string) {
  if (list == nullptr || CollectionDisplayGuard::isDisplaying(list)) {
    text.append(list == nullptr ? texts.null : texts.cycle);
    return vc::finishDisplay(text, string);
  }
  const CollectionDisplayGuard guard(list);
  const ListData& data = *getListData(list);
  vc::HandleVector handles;
  {
    const ListDataLock lock(data);
    if (data.isUnboxed()) {
      text.append(texts.prefix(list, data.primitive.size));
      vc::appendUnboxedElements(text, data, kSeparator);
      text.append("]");
      return vc::finishDisplay(text, string);
    }
    data.copyObjectsTo(*handles);
  }
  text.append(texts.prefix(list, handles->size()));
  for (std::size_t i = 0; i < handles->size(); ++i) {
    if (i != 0) text.append(kSeparator);
    vc::appendValueDisplay(text, (*handles)[i]);
  }
  text.append("]");
  vc::finishDisplay(text, string);
}

constexpr ListTexts kListTexts = {"[]", "[...]", listDisplayPrefix};
constexpr ListTexts kImmutableListTexts = {"i:[]", "i:[...]", immutablePrefix};

}  // namespace

std::string listDisplayPrefix(void* list, std::uint64_t count) {
  const char* type = list != nullptr ? Vorn_objectTypeName(list) : nullptr;
  const std::string_view base = type != nullptr ? runtimeCollectionBaseName(type) : std::string_view();
  if (base == "LinkedList") return "l:[";
  if (base == "LinkedListSync") return "ls:[";
  return base == "ArrayListSync" && count != 0 ? "s:[" : "[";
}

namespace vorn::collections {

void appendListDisplay(DisplayBuffer& text, void* list, void** string) {
  appendDisplay(text, list, kListTexts, string);
}

void appendImmutableListDisplay(DisplayBuffer& text, void* list, void** string) {
  appendDisplay(text, list, kImmutableListTexts, string);
}

}  // namespace vorn::collections

void* vorn_collections_ArrayList_toString(void* list) { return vc::displayAsString(vc::appendListDisplay, list); }

void* vorn_collections_ImmutableList_toString(void* list) {
  return vc::displayAsString(vc::appendImmutableListDisplay, list);
}
