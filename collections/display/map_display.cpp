// Displays of maps.
#include <vorn/collections/map.h>

#include <string_view>

#include "collections/core/port/keys.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"
#include "collections/display/display_buffer.h"
#include "collections/display/display_guard.h"
#include "collections/display/value_display.h"
#include "collections/keyed/map_snapshot.h"

namespace vc = vorn::collections;

namespace vorn::collections {

namespace {

std::string_view prefixOf(void* map) {
  const std::string_view base = runtimeCollectionBaseName(Vorn_objectTypeName(map));
  if (base == "SortedMap") return "t:{";
  if (base == "SortedMapSync") return "ts:{";
  return base == "HashMapSync" ? "s:{" : "{";
}

// Whether the runtime has a text of its own for the key. A user class may bear the short name of a floating type.
bool isFloatingKey(void* key) {
  const ObjectRecord* object = getObject(key);
  if (object == nullptr || object->kind() == ObjectKind::Instance) return false;
  const char* type = Vorn_objectTypeName(key);
  return type != nullptr && isFloatingNumberShortType(shortTypeName(type));
}

void appendKey(DisplayBuffer& text, void* key) {
  if (isFloatingKey(key)) return text.append(mapKeyString(key));
  appendValueDisplay(text, key);
}

}  // namespace

void appendMapDisplay(DisplayBuffer& text, void* map, void** string) {
  if (map == nullptr) {
    text.append("{}");
    return finishDisplay(text, string);
  }
  text.append(prefixOf(map));
  // Unlike that of lists and sets, the marker keeps the tag.
  if (CollectionDisplayGuard::isDisplaying(map)) {
    text.append("...}");
    return finishDisplay(text, string);
  }
  const CollectionDisplayGuard guard(map);
  MapEntryVector entries;
  *entries = snapshotMapEntries(*getMapData(map));
  for (std::size_t i = 0; i < entries->size(); ++i) {
    if (i != 0) text.append(", ");
    appendKey(text, (*entries)[i].key);
    text.append(": ");
    appendValueDisplay(text, (*entries)[i].value);
  }
  text.append("}");
  finishDisplay(text, string);
}

}  // namespace vorn::collections

void* vorn_collections_Map_toString(void* map) { return vc::displayAsString(vc::appendMapDisplay, map); }
