// The type names and texts of map keys.
#include <string>
#include <string_view>

#include "collections/core/port/keys.h"
#include "collections/keyed/map_data.h"
#include "runtime/objects/object_types.h"
#include "runtime/text/text.h"

std::string_view mapKeyRuntimeTypeName(void* key) {
  const RuntimeClass* type = vorn::runtime::classOf(key);
  return type != nullptr ? type->shortName : std::string_view();
}

std::string_view resolveMapKeyTypeName(void* map) {
  const MapData& data = *getMapData(map);
  const MapDataLock lock(data);
  return !data.keyType.empty() ? data.keyType.get() : "Object";
}

std::string mapKeyString(void* key) {
  std::string text;
  const ObjectRecord* object = getObject(key);
  if (object == nullptr || object->kind() != ObjectKind::FloatingBox) return text;
  vorn::runtime::appendFloating(text, std::bit_cast<double>(static_cast<const RegisteredObject*>(object)->integer));
  return text;
}
