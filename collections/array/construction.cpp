// The array constructors.
#include "collections/array/construction.h"

#include <vorn/collections/array.h>

#include <cctype>
#include <vector>

#include "collections/array/array_data.h"
#include "collections/array/collected_slots.h"
#include "collections/arraylist/collect_values.h"
#include "collections/core/errors.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"

namespace vc = vorn::collections;

namespace {

std::string_view classNameOf(void* handle) {
  const char* name = Vorn_objectTypeName(handle);
  return name != nullptr ? std::string_view(name) : std::string_view();
}

// What stands between the outermost brackets; empty when there is none.
std::string_view bracketedText(std::string_view typeName) {
  const std::size_t open = typeName.find('<');
  const std::size_t close = typeName.rfind('>');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) return {};
  std::string_view text = typeName.substr(open + 1, close - open - 1);
  const auto isBlank = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  return text;
}

std::uint64_t lockedSize(const ArrayData& array) {
  const ArrayDataLock lock(array);
  return arrayLogicalSize(array);
}

// The target takes over the source's element type, whatever its own was.
void copyFromArray(void* target, void* source) {
  if (target == source) return;
  const ArrayData& from = *getArrayData(source);
  const std::uint64_t size = lockedSize(from);
  ArrayData& to = *getArrayData(target);
  const ArrayDataLock lockSource(from);
  const ArrayDataLock lockTarget(to);
  copyArrayStorage(from, to);
  // Under the lock too, or two threads that copy to one array could leave it the size of the one and the elements of the
  // other.
  Vorn_setField_i64(target, "size", static_cast<long long>(size));
}

// An array's element type, and the kind of slots that goes with it, by the name of its class.
struct SlotType {
  RuntimeTypeName name;
  ArraySlotKind kind;
};

SlotType slotTypeOf(void* array) {
  const std::string name = vc::arrayElementTypeName(classNameOf(array));
  return {internRuntimeTypeName(name), slotKindForArrayElementType(name)};
}

// Constructs the target with as many slots and assigns the values: each is tested and converted, and a refusal does not
// end the copy.
void copyValues(void* target, const vc::CollectedValues& values) {
  ArrayData& data = *getArrayData(target);
  const ArrayDataLock lock(data);
  const SlotType type = slotTypeOf(target);
  vc::HandleVector boxes;
  void* const* const handles = vc::handlesForSlots(type.kind, values, boxes);
  vc::recreateArrayStorage(data, type.name, type.kind, values.size());
  vc::assignCollectedOrRaise(data, {0, 1, values.size()}, values, handles, vc::AfterRefusal::GoOn);
}

}  // namespace

namespace vorn::collections {

std::string arrayElementTypeName(std::string_view typeName) {
  std::vector<std::string> arguments;
  if (vorn::compiler::ClassLoader::resolveConcreteGenericArgs(typeName, arguments) && !arguments.empty()) {
    return arguments.front();
  }
  const std::string_view text = bracketedText(typeName);
  return text.empty() ? "Object" : std::string(text);
}

}  // namespace vorn::collections

void vorn_collections_Array_ctor(void* array, long long size) {
  if (array == nullptr) return;
  if (size < 0) return vc::errors::raiseArraySizeNegative();
  ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  const SlotType type = slotTypeOf(array);
  vc::recreateArrayStorage(data, type.name, type.kind, static_cast<std::uint64_t>(size));
}

void vorn_collections_Array_copyCtor(void* array, void* source) {
  if (array == nullptr) return;
  if (source == nullptr) return vc::errors::raiseArrayCopyOfNull();
  const std::string_view type = classNameOf(source);
  if (isArrayLike(type)) return copyFromArray(array, source);
  // A tuple of a negative size is no collection to anyone else, but here it gives the size that the array gets.
  if (isTupleLike(type) && Vorn_getField_i64(source, "size") < 0) return vc::errors::raiseArraySizeNegative();
  vc::CollectedValues values;
  if (!collectOrderedCollectionValues(source, array, values)) return vc::errors::raiseArrayCopySource();
  if (values.complete()) copyValues(array, values);
}
