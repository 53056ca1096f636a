// Slicing and slice assignment.

#include <vorn/collections/array_list.h>

#include "collections/arraylist/collect_values.h"
#include "collections/arraylist/result_lists.h"
#include "collections/arraylist/slice_indexes.h"
#include "collections/arraylist/snapshots.h"
#include "collections/core/errors.h"
#include "collections/core/pending_error_watch.h"
#include "collections/core/primitive_copies.h"
#include "collections/core/primitive_kinds.h"

namespace vc = vorn::collections;
using vc::PrimitiveKind;

namespace {

// A slice expression as the natives receive it: a bound is given when its handle is not null.
struct SliceExpression {
  long long start;
  long long stop;
  long long step;
  bool hasStart;
  bool hasStop;

  [[nodiscard]] vc::SliceSequence over(std::uint64_t length) const {
    return vc::sliceSequence(static_cast<long long>(length), start, stop, step, hasStart, hasStop);
  }
  [[nodiscard]] vc::SliceBounds forwardBounds(std::uint64_t length) const {
    return vc::clampForwardBounds(static_cast<long long>(length), start, stop, hasStart, hasStop);
  }
};

// Fills a new list with the selected elements; both records are locked by the caller.
void copySlice(const ListData& source, const vc::SliceSequence& slice, ListData& target) {
  if (source.primitiveKind != PrimitiveKind::None) {
    vc::adoptPrimitiveStorageOf(source, target, slice.count);
    return vc::appendPrimitiveElements(source, slice.first, slice.step, slice.count, target);
  }
  if (slice.count == 0) return;
  // Linked nodes are only cheap to visit in order, so the handles are laid out first.
  vc::HandleVector handles;
  void* const* elements = source.objects.data;
  if (source.linked) {
    source.copyObjectsTo(*handles);
    elements = handles->data();
  }
  if (!target.linked) target.objects.reserve(slice.count);
  auto position = static_cast<std::uint64_t>(slice.first);
  for (std::uint64_t i = 0; i < slice.count; ++i, position += static_cast<std::uint64_t>(slice.step)) {
    target.objectPushBack(elements[position]);
  }
}

// Assigns value by value through the public native, which locks, checks and converts each; the first refusal ends it.
void assignElementwise(void* list, const vc::SliceSequence& slice, const vc::HandleVector::Storage& values) {
  const vc::PendingErrorWatch watch;
  auto position = static_cast<std::uint64_t>(slice.first);
  for (std::uint64_t i = 0; i < slice.count; ++i, position += static_cast<std::uint64_t>(slice.step)) {
    vorn_collections_ArrayList_operator_index_eq(list, static_cast<long long>(position), values[i]);
    if (watch.raised()) return;
  }
}

// Replaces a range by values of another count. The list is in boxed storage afterwards.
void replaceRange(void* list, const SliceExpression& expression, const vc::HandleVector::Storage& values) {
  ListStorageSnapshot snapshot;
  snapshotListStorage(list, snapshot);
  const vc::SliceBounds range = expression.forwardBounds(snapshot.size());
  if (range.stop < range.start) return vc::errors::raiseSliceAssignmentRange();
  vc::HandleVector elements;
  elements->reserve(snapshot.size() + values.size());
  appendSnapshotObjects(snapshot, *elements);
  elements->erase(elements->begin() + range.start, elements->begin() + range.stop);
  elements->insert(elements->begin() + range.start, values.begin(), values.end());

  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  replaceWithObjects(data, *elements);
}

std::uint64_t lockedSize(void* list) { return static_cast<std::uint64_t>(vorn_collections_ArrayList_size(list)); }

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
  const ListData& source = *getListData(list);
  const ListDataLock lock(source);
  const ListDataLock lockResult(*target);
  const SliceExpression expression{start, stop, step, hasStart != nullptr, hasStop != nullptr};
  copySlice(source, expression.over(source.logicalSize()), *target);
  return result.get();
}

void vorn_collections_ArrayList_sliceAssign(void* list, long long start, long long stop, long long step, void* hasStart,
                                            void* hasStop, void* source) {
  if (list == nullptr) return;
  if (step == 0) return vc::errors::raiseSliceStepZero();
  vc::HandleVector values;
  if (!collectOrderedCollectionValues(source, *values)) return vc::errors::raiseSliceAssignmentSource();
  const SliceExpression expression{start, stop, step, hasStart != nullptr, hasStop != nullptr};
  const vc::SliceSequence slice = expression.over(lockedSize(list));
  if (slice.count == values->size()) return assignElementwise(list, slice, *values);
  if (step != 1) return vc::errors::raiseExtendedSliceCount();
  replaceRange(list, expression, *values);
}
