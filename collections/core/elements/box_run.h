// A run of boxes of one class that go into unboxed storage, one after another: what the first of them showed is not
// looked up again for the others.
#pragma once

#include <cstdint>
#include <cstring>

#include "collections/core/elements/kept_boxes.h"
#include "collections/core/kinds.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_data.h"

namespace vorn::collections {

class BoxRun {
 public:
  // Takes the boxes to come to be like this handle, which the untyped list has just appended; no run begins when it is
  // none that the list keeps bit by bit.
  void beginWith(const ListData& list, const void* handle) {
    type_ = nullptr;
    const RegisteredObject* const box = boxOfKeptType(list, handle);
    // A Float is rounded.
    if (box == nullptr || !list.elementType.empty() || list.primitiveKind == PrimitiveKind::Float) return;
    storage_ = list.primitiveKind;
    visitKind(storage_, [&](auto tag) {
      range_ = keptRangeOf(tag);
      width_ = sizeof(typename decltype(tag)::Element);
    });
    kind_ = box->kind();
    type_ = box->runtimeClass;
  }

  // Appends what the handle holds when it is a box like the first, its value is in the kind's range and the list still
  // has room in such storage. False, with nothing changed, otherwise.
  bool append(ListData& list, const void* handle) const {
    SmallPrimitiveBuffer& buffer = list.primitive;
    // Boxed storage may leave room behind in the buffer.
    if (type_ == nullptr || list.primitiveKind != storage_ || buffer.size >= buffer.capacity) return false;
    if (objectHeaderAt(handle) != objectHeaderFor(handle, kind_)) return false;
    const auto* const box = static_cast<const RegisteredObject*>(handle);
    const auto bits = static_cast<std::uint64_t>(box->integer);
    if (box->runtimeClass != type_ || !range_.has(bits)) return false;
    visitWidth(width_, [&](auto element) {
      element = static_cast<decltype(element)>(bits);
      std::memcpy(buffer.data + buffer.size * sizeof(element), &element, sizeof(element));
    });
    ++buffer.size;
    return true;
  }

 private:
  const RuntimeClass* type_ = nullptr;  // null while no run has begun
  ObjectKind kind_ = ObjectKind::IntegerBox;
  PrimitiveKind storage_ = PrimitiveKind::None;
  std::uint64_t width_ = 0;
  KeptRange range_;
};

}  // namespace vorn::collections
