// What a runtime and this library must have been compiled alike: the version of the port and the layout of all records
// that both of them look into (core/port/runtime_check.h tells why).
#pragma once

#include <cstddef>
#include <type_traits>

#include "collections/array/array_data.h"
#include "collections/core/port/collection_key.h"
#include "collections/core/port/comparison.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/runtime_check.h"
#include "collections/core/port/type_name.h"
#include "collections/core/storage/list_data.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"

namespace vorn::collections {

// Goes up by one whenever an operation or a record of the port changes what it means, so that the facts below may stay
// what they were though a runtime has to change.
inline constexpr unsigned long long kPortVersion = 1;

// The version comes first, since it explains all other differences. Not inline: of a variable that both sides define under
// one name the linker would keep one, and compare it with itself.
static constexpr PortFact kPortFacts[] = {
    {"version of the port", kPortVersion},
    {"number of primitive types", kPrimitiveTypes},
    {"alignment of objects", kObjectAlignment},
    {"size of ObjectRecord", sizeof(ObjectRecord)},
    {"size of RegisteredObject", sizeof(RegisteredObject)},
    {"size of StringObject", sizeof(StringObject)},
    {"size of SizedObject", sizeof(SizedObject)},
    {"size of RuntimeClassHead", sizeof(RuntimeClassHead)},
    {"size of ObjectField", sizeof(ObjectField)},
    {"size of InternedTypeName", sizeof(InternedTypeName)},
    {"size of NativeNumericValue", sizeof(NativeNumericValue)},
    {"size of NativeCollectionKey", sizeof(NativeCollectionKey)},
    {"size of KeyHashSeed", sizeof(KeyHashSeed)},
    {"size of ListData", sizeof(ListData)},
    {"place of synchronized in ListData", offsetof(ListData, synchronized)},
    {"place of elementType in ListData", offsetof(ListData, elementType)},
    {"place of mutex in ListData", offsetof(ListData, mutex)},
    {"size of ArrayData", sizeof(ArrayData)},
    {"place of synchronized in ArrayData", offsetof(ArrayData, synchronized)},
    {"place of mutex in ArrayData", offsetof(ArrayData, mutex)},
    {"size of MapData", sizeof(MapData)},
    {"place of hashed in MapData", offsetof(MapData, hashed)},
    {"place of mutex in MapData", offsetof(MapData, mutex)},
    {"size of SetData", sizeof(SetData)},
    {"place of synchronized in SetData", offsetof(SetData, synchronized)},
    {"place of mutex in SetData", offsetof(SetData, mutex)},
    {nullptr, 0},
};
static_assert(std::is_standard_layout_v<ListData> && std::is_standard_layout_v<ArrayData>);
static_assert(std::is_standard_layout_v<MapData> && std::is_standard_layout_v<SetData>);

// Whether library and runtime agree; if not, one line on standard error names the first fact on which they do not, and
// both numbers.
[[nodiscard]] bool agreesWithLibrary(const PortFact* ofRuntime);

}  // namespace vorn::collections
