// Slices as new lists.

#include <vorn/collections/array_list.h>

#include "collections/arraylist/object_cursor.h"
#include "collections/arraylist/result_lists.h"
#include "collections/arraylist/slice_indexes.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/errors.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/storage/primitive_copies.h"

namespace vc = vorn::collections;

namespace {

// Fills a new list with the selected elements; both records are locked by the caller.
void copySlice(ListData& source, const vc::SlicePositions& positions, ListData& target) {
  if (source.isUnboxed()) {
    vc::adoptPrimitiveStorageOf(source, target, positions.count);
    return vc::appendPrimitiveElements(source, positions.first, positions.step, positions.count, target);
  }
  if (!target.linked) target.objects.reserve(positions.count);
  vc::ObjectCursor elements(source);
  for (const long long position : positions) target.objectPushBack(elements.at(static_cast<std::uint64_t>(position)));
}

}  // namespace

void* vorn_collections_ArrayList_slice(void* list, long long start, long long stop, long long step, void* hasStart,
                                       void* hasStop) {
  ListData* target = nullptr;
  const vc::RootedHandle result(allocateMutableListResultLike(list, &target));
  if (list == nullptr) return result.get();
  if (step == 0) {
    vc::errors::raiseSliceStepZero();
    return result.get();
  }
  if (target == nullptr) return result.get();
  ListData& source = *getListData(list);
  const ListDataLock lock(source);
  const ListDataLock lockResult(*target);
  const vc::SliceExpression expression{start, stop, step, hasStart, hasStop};
  copySlice(source, expression.over(source.logicalSize()), *target);
  return result.get();
}
