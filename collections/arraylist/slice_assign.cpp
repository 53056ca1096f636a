// Slice assignment: element by element, or by replacing a range. The list is locked once for either, and what can fail
// comes before its first change.

#include <vorn/collections/array_list.h>

#include <memory>

#include "collections/arraylist/collect_values.h"
#include "collections/arraylist/object_cursor.h"
#include "collections/arraylist/slice_indexes.h"
#include "collections/arraylist/snapshots.h"
#include "collections/arraylist/store.h"
#include "collections/core/elements/accepted_values.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/elements/store_forms.h"
#include "collections/core/errors.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/kinds.h"
#include "collections/core/port/roots.h"
#include "collections/core/storage/primitive_copies.h"

namespace vc = vorn::collections;
using vc::PrimitiveKind;

namespace {

// ---- Element by element ---------------------------------------------------------------------------------------------

// What assigning the values one after the other comes to, found out before any is assigned: the first `unboxed` go into
// unboxed storage, those from there up to `assigned` are stored as handles, and the one at `assigned`, if there is one,
// is refused and ends it.
struct AssignmentPlan {
  std::uint64_t unboxed = 0;
  std::uint64_t assigned = 0;
};

// Elements of a list's kind that are to be written into its unboxed storage.
class StagedElements {
 public:
  StagedElements(const ListData& list, std::uint64_t count)
      : elements_(count != 0 ? new unsigned char[count * vc::primitiveWidth(list.primitiveKind)] : nullptr) {}
  [[nodiscard]] unsigned char* data() const { return elements_.get(); }

 private:
  std::unique_ptr<unsigned char[]> elements_;
};

// How many values, from `first` on, the list takes as handles.
std::uint64_t acceptedHandles(const ListData& list, void* const* values, std::uint64_t first, std::uint64_t count) {
  while (first < count && vc::declaredTypeAccepts(list, values[first])) ++first;
  return first;
}

// Stages what unboxed storage takes of values given as handles.
AssignmentPlan planHandles(const ListData& list, void* const* values, std::uint64_t count, StagedElements& staged) {
  for (std::uint64_t i = 0; i < count; ++i) {
    if (vc::storeBoxOfSameType(list, staged.data(), i, values[i])) continue;
    BulkPrimitiveListValue raw;
    if (!vc::rawReplacement(list, values[i], raw)) return {i, acceptedHandles(list, values, i, count)};
    // Unboxed storage of a character type refuses what its declared type may not.
    if (!vc::storableValues(list.primitiveType).contains(raw.integer)) return {i, i};
    vc::visitKind(list.primitiveKind,
                  [&](auto tag) { vc::storeElement(tag, staged.data(), i, raw.integer, raw.floating); });
  }
  return {count, count};
}

// How many raw values the list takes as handles. A class takes either all boxes of one type or none of them.
std::uint64_t acceptedBoxes(const ListData& list, const vc::CollectedValues& values) {
  const vc::ElementType declared = vc::declaredElementType(list);
  if (declared.kind != PrimitiveKind::None) return values.firstOutside(vc::acceptedValues(declared, values.type()));
  if (vc::isObjectType(declared)) return values.size();
  return vc::declaredTypeAccepts(list, values.handleAt(0)) ? values.size() : 0;
}

// Raw values all go one way: unboxed as they are, unboxed as the declared type, or boxed.
AssignmentPlan planRaw(const ListData& list, const vc::CollectedValues& values) {
  const auto unboxed = [&](const vc::AcceptedValues& accepted) {
    const std::uint64_t assigned = values.firstOutside(accepted);
    return AssignmentPlan{assigned, assigned};
  };
  if (values.type() == vc::keptElementType(list)) return unboxed(vc::storableValues(values.type().name));
  const vc::ElementType declared = vc::declaredElementType(list);
  if (declared.kind != PrimitiveKind::None && declared == vc::keptElementType(list)) {
    return unboxed(vc::acceptedValues(declared, values.type()));
  }
  return {0, acceptedBoxes(list, values)};
}

AssignmentPlan planBoxed(const ListData& list, const vc::CollectedValues& values) {
  return {0, values.raw() ? acceptedBoxes(list, values) : acceptedHandles(list, values.handles(), 0, values.size())};
}

// Writes the first values over elements in unboxed storage. Values given as handles have been staged.
void writeUnboxed(ListData& list, const vc::SlicePositions& positions, const vc::CollectedValues& values,
                  std::uint64_t count, StagedElements& staged) {
  const unsigned char* elements = staged.data();
  if (values.raw() && values.type().kind == list.primitiveKind && list.primitiveKind != PrimitiveKind::Boolean) {
    elements = values.bytes();
  } else if (values.raw()) {
    staged = StagedElements(list, values.size());
    values.storeAs(list.primitiveKind, staged.data());
    elements = staged.data();
  }
  vc::scatterElements(elements, count, list.primitive.elementSize, list.primitive.data, positions.first,
                      positions.step);
}

// Stores the first values over elements of a list that is in boxed storage or gets there. Those that unboxed storage
// would have taken first are boxed as they have been staged.
void writeBoxed(ListData& list, const vc::SlicePositions& positions, const vc::CollectedValues& values,
                const AssignmentPlan& plan, const StagedElements& staged) {
  vc::HandleVector own;
  void* const* handles = nullptr;
  if (plan.unboxed == 0) {
    handles = values.handles(plan.assigned, own);
  } else {
    own->reserve(plan.assigned);
    vc::appendBoxes(list.primitiveKind, list.primitiveType, staged.data(), plan.unboxed, *own);
    own->insert(own->end(), values.handles() + plan.unboxed, values.handles() + plan.assigned);
    handles = own->data();
  }
  materializePrimitiveList(list);
  vc::ObjectCursor elements(list);
  for (std::uint64_t i = 0; i < plan.assigned; ++i) {
    elements.replace(static_cast<std::uint64_t>(positions[i]), handles[i]);
  }
}

// Assigns value by value as operator_index_eq would; the first refusal ends it.
void assignElementwise(ListData& list, const vc::SlicePositions& positions, const vc::CollectedValues& values) {
  if (positions.empty()) return;
  const bool boxed = !list.isUnboxed();
  StagedElements staged(list, boxed || values.raw() ? 0 : values.size());
  const AssignmentPlan plan = boxed          ? planBoxed(list, values)
                              : values.raw() ? planRaw(list, values)
                                             : planHandles(list, values.handles(), values.size(), staged);
  const bool refuses = plan.assigned < values.size();
  const vc::RootedHandle refused(refuses ? values.handleAt(plan.assigned) : nullptr);
  if (plan.unboxed < plan.assigned) {
    writeBoxed(list, positions, values, plan, staged);
  } else if (!boxed) {
    writeUnboxed(list, positions, values, plan.assigned, staged);
  }
  if (refuses) vc::replaceValueOrRaise(list, static_cast<std::uint64_t>(positions[plan.assigned]), refused.get());
}

// ---- A range of another size ----------------------------------------------------------------------------------------

// Replaces a range by values of another count. The list is in boxed storage afterwards.
void replaceRange(ListData& list, const vc::SliceBounds& range, const vc::CollectedValues& values) {
  if (range.stop < range.start) return vc::errors::raiseSliceAssignmentRange();
  vc::HandleVector boxes;
  void* const* const handles = values.handles(values.size(), boxes);
  vc::HandleVector elements;
  elements->reserve(list.logicalSize() + values.size());
  vc::appendListObjectsLocked(list, *elements);
  elements->erase(elements->begin() + range.start, elements->begin() + range.stop);
  elements->insert(elements->begin() + range.start, handles, handles + values.size());
  replaceWithObjects(list, *elements);
}

}  // namespace

void vorn_collections_ArrayList_sliceAssign(void* list, long long start, long long stop, long long step, void* hasStart,
                                            void* hasStop, void* source) {
  if (list == nullptr) return;
  if (step == 0) return vc::errors::raiseSliceStepZero();
  vc::CollectedValues values;
  if (!collectOrderedCollectionValues(source, list, values)) return vc::errors::raiseSliceAssignmentSource();
  if (!values.complete()) return;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  const vc::SliceExpression expression{start, stop, step, hasStart, hasStop};
  const vc::SlicePositions positions = expression.over(data.logicalSize());
  if (positions.size() == values.size()) return assignElementwise(data, positions, values);
  if (step != 1) return vc::errors::raiseExtendedSliceCount();
  replaceRange(data, expression.forwardBounds(data.logicalSize()), values);
}
