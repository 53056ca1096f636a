// A run of boxes of one class that go into unboxed storage, one after another: what the first of them showed is not
// looked up again for the others.
#pragma once

#include <cstdint>
#include <cstring>
#include <limits>

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
    const RegisteredObject* const box = getRegisteredObjectUnsafe(handle);
    if (box == nullptr || box->kind() > ObjectKind::CharacterBox || !list.elementType.empty()) return;
    const PrimitiveType type = boxedTypeOf(*box);
    if (list.primitiveType.primitiveType() != type || list.primitiveKind != kindOf(type)) return;
    // A Float is rounded, and UInt storage takes no characters beyond their own range.
    if (list.primitiveKind == PrimitiveKind::Float ||
        (box->kind() == ObjectKind::CharacterBox && list.primitiveKind == PrimitiveKind::UInt)) {
      return;
    }
    storage_ = list.primitiveKind;
    visitKind(storage_, [&](auto tag) { takeRangeOf(tag); });
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
    if (box->runtimeClass != type_ || bits - least_ > span_) return false;
    visitWidth(width_, [&](auto element) {
      element = static_cast<decltype(element)>(bits);
      std::memcpy(buffer.data + buffer.size * sizeof(element), &element, sizeof(element));
    });
    ++buffer.size;
    return true;
  }

 private:
  // The bits of a box's value that storage of the kind keeps as they are, or cut to its width.
  template <class Tag>
  void takeRangeOf(Tag) {
    using Range = std::numeric_limits<typename Tag::Element>;
    width_ = sizeof(typename Tag::Element);
    least_ = 0;
    if constexpr (isFloatingKind(Tag::kind)) {
      span_ = std::numeric_limits<std::uint64_t>::max();
    } else if constexpr (Tag::kind == PrimitiveKind::Boolean) {
      span_ = 1;
    } else if constexpr (Tag::kind == PrimitiveKind::ULong) {
      span_ = std::numeric_limits<std::int64_t>::max();
    } else {
      least_ = static_cast<std::uint64_t>(Range::min());
      span_ = static_cast<std::uint64_t>(Range::max()) - least_;
    }
  }

  const RuntimeClass* type_ = nullptr;  // null while no run has begun
  ObjectKind kind_ = ObjectKind::IntegerBox;
  PrimitiveKind storage_ = PrimitiveKind::None;
  std::uint64_t width_ = 0;
  std::uint64_t least_ = 0;  // the range begins here, and has span_ + 1 values
  std::uint64_t span_ = 0;
};

}  // namespace vorn::collections
