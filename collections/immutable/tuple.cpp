// Natives of tuples. A tuple is filled through its fields, which may make room for them, so that every box is rooted.

#include <vorn/collections/tuple.h>

#include <charconv>
#include <cstring>
#include <new>
#include <optional>

#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/errors.h"
#include "collections/core/kinds.h"
#include "collections/core/number_rules.h"
#include "collections/core/storage/list_data.h"
#include "collections/immutable/list_arguments.h"

namespace vc = vorn::collections;

namespace {

// The field name of an item: "_0", "_1", ...
class ItemName {
 public:
  explicit ItemName(std::uint64_t index) { *std::to_chars(text_ + 1, text_ + sizeof(text_) - 1, index).ptr = '\0'; }
  [[nodiscard]] const char* get() const { return text_; }

 private:
  char text_[24] = "_";
};

// The unboxed elements of a list, as raw 64-bit values in pointer-free memory that this object keeps alive.
class RawValues {
 public:
  // The caller holds the list's lock. Allocates; std::bad_alloc.
  explicit RawValues(const ListData& list)
      : kind_(list.primitiveKind), declared_(list.elementType), count_(list.primitive.size) {
    if (count_ == 0) return;
    block_ = Vorn_gcAllocAtomic(count_ * kBytes);
    if (block_.get() == nullptr) throw std::bad_alloc();
    for (std::uint64_t i = 0; i < count_; ++i) {
      vc::isFloatingKind(kind_) ? store(i, primitiveListReadF64(list, i)) : store(i, primitiveListReadI64(list, i));
    }
  }

  [[nodiscard]] std::uint64_t count() const { return count_; }

  // A box under the list's declared type, which may differ from the name that the list kept the elements under.
  [[nodiscard]] void* boxAt(std::uint64_t index) const {
    if (!vc::isFloatingKind(kind_)) {
      const auto integer = load<long long>(index);
      return boxPrimitiveListValue(kind_, declared_, integer, static_cast<double>(integer));
    }
    const auto floating = load<double>(index);
    return boxPrimitiveListValue(kind_, declared_, vc::truncateToI64(floating), floating);
  }

 private:
  static constexpr std::uint64_t kBytes = 8;
  static_assert(sizeof(long long) == kBytes && sizeof(double) == kBytes);

  template <class Value>
  void store(std::uint64_t index, Value value) {
    std::memcpy(static_cast<unsigned char*>(block_.get()) + index * kBytes, &value, kBytes);
  }
  template <class Value>
  [[nodiscard]] Value load(std::uint64_t index) const {
    Value value;
    std::memcpy(&value, static_cast<const unsigned char*>(block_.get()) + index * kBytes, kBytes);
    return value;
  }

  ListData::PrimitiveKind kind_;
  RuntimeTypeName declared_;
  std::uint64_t count_;
  vc::RootedHandle block_;
};

// Both give the number of items.
std::uint64_t storeBoxed(void* tuple, const RawValues& values) {
  vc::RootedHandle item;
  for (std::uint64_t i = 0; i < values.count(); ++i) {
    item = values.boxAt(i);
    Vorn_setField_ptr(tuple, ItemName(i).get(), item.get());
  }
  return values.count();
}

std::uint64_t storeHandles(void* tuple, const vc::HandleVector::Storage& handles) {
  for (std::uint64_t i = 0; i < handles.size(); ++i) Vorn_setField_ptr(tuple, ItemName(i).get(), handles[i]);
  return handles.size();
}

// Copies the elements under the list's lock and stores them without it.
std::uint64_t storeElements(void* tuple, const ListData& list) {
  vc::HandleVector handles;
  std::optional<RawValues> raw;
  {
    const ListDataLock lock(list);
    if (list.isUnboxed()) {
      raw.emplace(list);
    } else {
      list.copyObjectsTo(*handles);
    }
  }
  return raw ? storeBoxed(tuple, *raw) : storeHandles(tuple, *handles);
}

}  // namespace

void vorn_collections_Tuple_ctor(void* tuple, void* packed) {
  if (tuple == nullptr) return;
  if (packed == nullptr || !vc::isList(packed)) return vc::errors::raiseTupleSource();
  const std::uint64_t size = storeElements(tuple, *getListData(packed));
  Vorn_setField_i64(tuple, "size", static_cast<long long>(size));
}

long long vorn_collections_Tuple_size(void* tuple) { return tuple != nullptr ? Vorn_getField_i64(tuple, "size") : 0; }

void* vorn_collections_Tuple_operator_index(void* tuple, long long index) {
  if (tuple == nullptr) return nullptr;
  const long long size = Vorn_getField_i64(tuple, "size");
  if (index < 0 && size > 0) index += size;
  if (index < 0 || index >= size) {
    vc::errors::raiseIndexOutOfBounds();
    return nullptr;
  }
  return Vorn_getField_ptr(tuple, ItemName(static_cast<std::uint64_t>(index)).get());
}

void vorn_collections_Tuple_operator_index_eq(void*, long long, void*) { vc::errors::raiseTupleReadOnly(); }
