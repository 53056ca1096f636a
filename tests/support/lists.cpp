#include "tests/support/lists.h"

namespace vorn::tests {

std::string className(bool linked, bool synchronised, const std::string& element) {
  const std::string name = std::string(linked ? "LinkedList" : "ArrayList") + (synchronised ? "Sync" : "");
  return element.empty() ? name : name + "<" + element + ">";
}

Handle intList(const std::string& type, const std::vector<long long>& values) {
  Handle result = object(type);
  for (const long long value : values) vorn_collections_ArrayList_add(result, integer("Int", value));
  return result;
}

Handle rawList(const std::string& type, const char* element, const std::vector<long long>& values) {
  Handle result = object(type);
  for (const long long value : values) vorn_collections_ArrayList_addPrimitiveI64(result, value, element);
  return result;
}
Handle rawDoubles(const std::string& type, const char* element, const std::vector<double>& values) {
  Handle result = object(type);
  for (const double value : values) vorn_collections_ArrayList_addPrimitiveDouble(result, value, element);
  return result;
}

Handle paletteList(bool linked, bool synchronised, const std::string& element) {
  const Palette palette = paletteOf(element);
  Handle result = object(className(linked, synchronised, element));
  for (const PaletteEntry& entry : palette) vorn_collections_ArrayList_add(result, entry.value);
  return result;
}

void forEachList(const std::function<void(const Handle& list)>& check) {
  std::vector<std::string> elements = primitiveNames();
  elements.insert(elements.end(), {"", "app.Item"});
  for (const bool linked : {false, true}) {
    for (const bool synchronised : {false, true}) {
      for (const std::string& element : elements) {
        SCOPED_TRACE(className(linked, synchronised, element));
        const Handle target = paletteList(linked, synchronised, element);
        check(target);
      }
    }
  }
}

std::vector<std::string> elementsOf(void* list) {
  std::vector<std::string> elements;
  for (long long i = 0, size = vorn_collections_ArrayList_size(list); i < size; ++i) {
    const Handle element = vorn_collections_ArrayList_operator_index(list, i);
    elements.push_back(describe(element));
  }
  return elements;
}

std::vector<void*> handlesOf(const ListData& data) {
  std::vector<void*> handles;
  if (!data.linked) handles.assign(data.objects.data, data.objects.data + data.objects.size);
  for (const LinkedHandles::Links* node = data.linkedObjects.sentinel.next; node != &data.linkedObjects.sentinel;
       node = node->next) {
    handles.push_back(static_cast<const LinkedHandles::Node*>(node)->handle);
  }
  return handles;
}
std::vector<const void*> handlesOf(void* list) {
  const std::vector<void*> handles = handlesOf(*getListData(list));
  return std::vector<const void*>(handles.begin(), handles.end());
}

std::string storageOf(void* list) {
  const ListData& data = *getListData(list);
  vorn_list_storage_info info;
  if (vorn_list_get_storage(list, &info) == 0) return "not a list";
  const bool unboxed = data.primitiveKind != ListData::PrimitiveKind::None;
  if (info.storage != (unboxed ? VORN_LIST_PRIMITIVE : data.linked ? VORN_LIST_LINKED : VORN_LIST_OBJECTS)) {
    return "the embedding API and the record disagree";
  }
  if (!unboxed) return data.linked ? "linked" : "objects";
  if (data.primitiveType.get() != info.primitive_type) return "the embedding API and the record disagree on the name";
  return info.primitive_type;
}

ListData::PrimitiveKind kindOf(void* list) { return getListData(list)->primitiveKind; }
std::string declaredTypeOf(void* list) { return std::string(getListData(list)->elementType.get()); }

Snapshot::Snapshot(const ListData& data) : handles(handlesOf(data)) {
  kind = static_cast<int>(data.primitiveKind);
  flags = (data.linked ? 1 : 0) + (data.synchronized ? 2 : 0);
  elementType = data.elementType.get();
  primitiveType = data.primitiveType.get();
  size = data.logicalSize();
  if (kind != 0) bytes.assign(data.primitive.data, data.primitive.data + size * data.primitive.elementSize);
}

std::ostream& operator<<(std::ostream& out, const Snapshot& snapshot) {
  out << "kind " << snapshot.kind << " under \"" << snapshot.primitiveType << "\", declared \"" << snapshot.elementType
      << "\", flags " << snapshot.flags << ", size " << snapshot.size << ", bytes";
  for (const unsigned char byte : snapshot.bytes) out << ' ' << static_cast<int>(byte);
  out << ", handles";
  for (const void* handle : snapshot.handles) out << ' ' << handle;
  return out;
}

bool isUnlocked(void* list) { return !isRecordLocked(*getListData(list)); }

}  // namespace vorn::tests
