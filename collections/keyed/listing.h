// Filling the list that a listing returns.
#pragma once

#include <vorn/collections/array_list.h>

#include <cstdint>

#include "collections/core/elements/box_run.h"
#include "collections/core/elements/store_forms.h"
#include "collections/core/port/object_layout.h"

namespace vorn::collections {

// Appends handles to a new, untyped list that no other thread knows, as vorn_collections_ArrayList_add would: the first
// decides how the list keeps its elements, and those that it keeps in the same way are stored without a call. walk(append)
// calls append(handle) for each of about `count` handles, which stay alive meanwhile. Allocates, may raise for
// characters out of range, and runs no user code.
template <class Walk>
void fillListing(void* list, std::uint64_t count, Walk walk) {
  ListData& data = *getListData(list);
  BoxRun run;
  walk([&](void* handle) {
    if (run.append(data, handle) || appendInPlace(data, handle)) return;
    const bool decides = data.logicalSize() == 0;
    vorn_collections_ArrayList_add(list, handle);
    if (!decides) return;
    vorn_collections_ArrayList_reserve(list, static_cast<long long>(count));
    run.beginWith(data, handle);
  });
}

}  // namespace vorn::collections
