// The elements of a list, array or tuple as they were at one moment, for comparisons that may run user code.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "collections/array/array_data.h"
#include "collections/core/port/roots.h"
#include "collections/core/storage/list_data.h"
#include "runtime/objects/tuple_object.h"
#include "runtime/values/scalars.h"

namespace vorn::runtime {

// Unboxed elements, where they are. Not valid once the list or array may change.
class UnboxedElements {
 public:
  UnboxedElements() = default;
  // `list` has primitive storage.
  explicit UnboxedElements(const ListData& list);
  // `array` has unboxed slots.
  explicit UnboxedElements(const ArrayData& array);

  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] Scalar at(std::size_t index) const;
  // A new box of an element. Allocates; std::bad_alloc.
  [[nodiscard]] void* boxAt(std::size_t index) const;

  // Moves the elements into memory of their own, which `bytes` holds.
  void copyInto(std::vector<unsigned char>& bytes);

  // Equality of elements that are kept under the same number type, which takes no look at each one's type; nothing for
  // other elements. The sizes are equal.
  [[nodiscard]] std::optional<bool> equalsAtOnce(const UnboxedElements& other) const;

 private:
  const unsigned char* data_ = nullptr;
  std::size_t size_ = 0;
  std::size_t width_ = 1;
  ListData::PrimitiveKind kind_ = ListData::PrimitiveKind::None;
  RuntimeTypeName name_;
  Scalar::Family family_ = Scalar::Family::Number;
  bool unsigned64_ = false;
};

// A snapshot in either form. Handles stand in a rooted vector shared by all snapshots of one comparison.
class ElementSnapshot {
 public:
  explicit ElementSnapshot(const UnboxedElements& elements);
  ElementSnapshot(std::size_t firstHandle, std::size_t count) : firstHandle_(firstHandle), count_(count) {}
  // Moving keeps the copied bytes where they are; copying would not.
  ElementSnapshot(ElementSnapshot&&) = default;
  ElementSnapshot& operator=(ElementSnapshot&&) = default;

  [[nodiscard]] std::size_t size() const { return count_; }
  // Null for handles.
  [[nodiscard]] const UnboxedElements* unboxed() const { return isUnboxed_ ? &unboxed_ : nullptr; }
  [[nodiscard]] std::size_t handleIndex(std::size_t index) const { return firstHandle_ + index; }

 private:
  bool isUnboxed_ = false;
  UnboxedElements unboxed_;
  std::vector<unsigned char> bytes_;
  std::size_t firstHandle_ = 0;
  std::size_t count_ = 0;
};

// Appends the list's handles to the vector and gives their number. The caller holds the list's lock. Allocates.
std::size_t appendHandles(const ListData& list, collections::HandleVector::Storage& handles);

// The same for an array.
std::size_t appendHandles(const ArrayData& array, collections::HandleVector::Storage& handles);

// The same for the items of a tuple, which has no lock.
std::size_t appendItems(const TupleObject& tuple, collections::HandleVector::Storage& handles);

}  // namespace vorn::runtime
