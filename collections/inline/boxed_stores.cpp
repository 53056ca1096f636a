// Storing raw values where a list keeps handles, or other values than these: by a box of the value.
#include <vorn/collections/inline/lists.h>

#include "collections/core/kinds.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/type_name.h"
#include "collections/core/port/values.h"

namespace vc = vorn::collections;

namespace {

void replaceByBox(void* list, long long index, void* box) {
  const vc::RootedHandle rooted(box);
  vorn_collections_ArrayList_operator_index_eq(list, index, rooted.get());
}

}  // namespace

void vorn_inline_set_boxed_integer(void* list, long long index, long long value, int type) {
  const auto primitive = static_cast<vc::PrimitiveType>(type);
  if (list == nullptr || primitive == vc::PrimitiveType::None || vc::isFloatingType(primitive)) return;
  replaceByBox(list, index, boxIntegerLikeLocal(vc::typeNameOf(primitive), value));
}

void vorn_inline_set_boxed_floating(void* list, long long index, double value, int type) {
  const auto primitive = static_cast<vc::PrimitiveType>(type);
  if (list == nullptr || !vc::isFloatingType(primitive)) return;
  replaceByBox(list, index, boxFloatingLikeLocal(vc::typeNameOf(primitive), value));
}
