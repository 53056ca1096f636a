#include "collections/array/collected_slots.h"

#include "collections/array/slot_values.h"
#include "collections/core/elements/accepted_values.h"
#include "collections/core/errors.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/storage/primitive_copies.h"

namespace vorn::collections {

namespace {

bool assignHandlesOrRaise(ArrayData& array, const SlicePositions& positions, void* const* handles, AfterRefusal then) {
  bool all = true;
  for (std::uint64_t i = 0; i < positions.size(); ++i) {
    if (assignArraySlotValue(array, static_cast<std::uint64_t>(positions[i]), handles[i])) continue;
    errors::raiseInvalidArrayElement();
    all = false;
    if (then == AfterRefusal::Stop) break;
  }
  return all;
}

// A floating slot takes the value of an unsigned number, where a list takes the signed reading.
void readUnsigned(RawRun& run, std::uint64_t count) {
  for (std::uint64_t i = 0; i < count; ++i) {
    run.floatings[i] = static_cast<double>(static_cast<unsigned long long>(run.integers[i]));
  }
}

bool assignRawOrRaise(ArrayData& array, const SlicePositions& positions, const CollectedValues& values,
                      AfterRefusal then) {
  const PrimitiveKind slots = primitiveKindOf(array.slotKind);
  const PrimitiveKind kind = values.type().kind;
  const AcceptedValues accepted = acceptedBySlots(array, values.type());
  // Any byte but 0 may stand for true, but a stored value is 0 or 1.
  if (slots == kind && kind != PrimitiveKind::Boolean && accepted.containsAllOf(kind)) {
    scatterElements(values.bytes(), values.size(), primitiveWidth(kind), array.primitive.data, positions.first,
                    positions.step);
    return true;
  }
  bool all = true;
  values.forEachRun([&](std::uint64_t first, std::uint64_t count, RawRun& run) {
    if (kind == PrimitiveKind::ULong) readUnsigned(run, count);
    visitKind(slots, [&](auto tag) {
      for (std::uint64_t i = 0; i < count && (all || then == AfterRefusal::GoOn); ++i) {
        if (accepted.contains(run.integers[i])) {
          const auto position = static_cast<std::uint64_t>(positions[first + i]);
          storeElement(tag, array.primitive.data, position, run.integers[i], run.floatings[i]);
        } else {
          errors::raiseInvalidArrayElement();
          all = false;
        }
      }
    });
    return all || then == AfterRefusal::GoOn;
  });
  return all;
}

}  // namespace

void* const* handlesForSlots(ArraySlotKind kind, const CollectedValues& values, HandleVector& boxes) {
  return values.raw() && kind != ArraySlotKind::Object ? nullptr : values.handles(values.size(), boxes);
}

bool assignCollectedOrRaise(ArrayData& array, const SlicePositions& positions, const CollectedValues& values,
                            void* const* handles, AfterRefusal then) {
  if (values.raw() && array.isUnboxed()) return assignRawOrRaise(array, positions, values, then);
  return assignHandlesOrRaise(array, positions, handles, then);
}

}  // namespace vorn::collections
