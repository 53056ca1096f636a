#include "runtime/equality/sequence_elements.h"

#include <vorn/collections/runtime_helpers.hpp>

#include <cstring>

#include "collections/core/array_slot_kind.h"
#include "collections/core/kinds.h"
#include "collections/core/port/comparison.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"

namespace vorn::runtime {
namespace {

using collections::visitKind;

// The family of elements kept under a kind and a name, the same as their boxes would have.
Scalar::Family scalarFamilyOf(ListData::PrimitiveKind kind, RuntimeTypeName name) {
  if (kind == ListData::PrimitiveKind::Boolean) return Scalar::Family::Boolean;
  if (collections::kindOf(name.primitiveType()) == kind) {
    if (name.primitiveType() == collections::PrimitiveType::Char) return Scalar::Family::Char;
    if (name.primitiveType() == collections::PrimitiveType::CodeUnit) return Scalar::Family::CodeUnit;
  }
  return Scalar::Family::Number;
}

}  // namespace

UnboxedElements::UnboxedElements(const ListData& list)
    : data_(list.primitive.data),
      size_(list.primitive.size),
      width_(list.primitive.elementSize),
      kind_(list.primitiveKind),
      name_(list.primitiveType),
      family_(scalarFamilyOf(kind_, name_)),
      unsigned64_(name_.primitiveType() == collections::PrimitiveType::ULong) {}

UnboxedElements::UnboxedElements(const ArrayData& array)
    : data_(array.primitive.data),
      size_(array.primitive.size),
      width_(array.primitive.elementSize),
      kind_(collections::primitiveKindOf(array.slotKind)),
      name_(array.elementType.shortForm()),
      family_(scalarFamilyOf(kind_, name_)),
      unsigned64_(name_.primitiveType() == collections::PrimitiveType::ULong) {}

Scalar UnboxedElements::at(std::size_t index) const {
  return visitKind(
      kind_,
      [&](auto tag) {
        typename decltype(tag)::Element element;
        std::memcpy(&element, data_ + index * sizeof(element), sizeof(element));
        if constexpr (collections::isFloatingKind(decltype(tag)::kind)) {
          return Scalar{family_, floatingNumber(element)};
        } else if constexpr (decltype(tag)::kind == ListData::PrimitiveKind::Boolean) {
          return Scalar{family_, signedNumber(element != 0 ? 1 : 0)};
        } else {
          const auto value = static_cast<std::int64_t>(element);
          return Scalar{family_, unsigned64_ ? unsignedNumber(static_cast<std::uint64_t>(value)) : signedNumber(value)};
        }
      },
      Scalar{});
}

void* UnboxedElements::boxAt(std::size_t index) const {
  const auto nameOr = [this](std::string_view otherwise) {
    return name_.empty() ? RuntimeTypeName{collections::standardTypeName(otherwise)} : name_;
  };
  const Scalar scalar = at(index);
  if (scalar.value.kind == NativeNumericValue::Kind::Floating) {
    return boxFloatingLikeLocal(nameOr("Double"), std::bit_cast<double>(scalar.value.payload));
  }
  const auto integer = static_cast<long long>(scalar.value.payload);
  if (scalar.family == Scalar::Family::Boolean) return Vorn_boxBool(integer != 0);
  return boxIntegerLikeLocal(nameOr("Int"), integer);
}

void UnboxedElements::copyInto(std::vector<unsigned char>& bytes) {
  bytes.assign(data_, data_ + size_ * width_);
  data_ = bytes.data();
}

std::optional<bool> UnboxedElements::equalsAtOnce(const UnboxedElements& other) const {
  if (kind_ != other.kind_ || !(name_ == other.name_) || kind_ == ListData::PrimitiveKind::Boolean) return {};
  if (size_ == 0) return true;
  if (collections::isIntegerKind(kind_)) return std::memcmp(data_, other.data_, size_ * width_) == 0;
  // Bytes do not tell with floating numbers: the two zeros are equal, and a NaN is not equal to itself.
  return visitKind(
      kind_,
      [&](auto tag) {
        typename decltype(tag)::Element left;
        typename decltype(tag)::Element right;
        for (std::size_t i = 0; i < size_; ++i) {
          std::memcpy(&left, data_ + i * sizeof(left), sizeof(left));
          std::memcpy(&right, other.data_ + i * sizeof(right), sizeof(right));
          if (left != right) return false;
        }
        return true;
      },
      false);
}

ElementSnapshot::ElementSnapshot(const UnboxedElements& elements)
    : isUnboxed_(true), unboxed_(elements), count_(elements.size()) {
  unboxed_.copyInto(bytes_);
}

std::size_t appendHandles(const ListData& list, collections::HandleVector::Storage& handles) {
  const std::size_t before = handles.size();
  if (!list.linked) {
    handles.insert(handles.end(), list.objects.data, list.objects.data + list.objects.size);
    return handles.size() - before;
  }
  const LinkedHandles::Links* end = &list.linkedObjects.sentinel;
  for (const LinkedHandles::Links* at = end->next; at != end; at = at->next) {
    handles.push_back(static_cast<const LinkedHandles::Node*>(at)->handle);
  }
  return handles.size() - before;
}

std::size_t appendHandles(const ArrayData& array, collections::HandleVector::Storage& handles) {
  handles.insert(handles.end(), array.objects.data, array.objects.data + array.objects.size);
  return array.objects.size;
}

std::size_t appendItems(const TupleObject& tuple, collections::HandleVector::Storage& handles) {
  const std::uint64_t count = tuple.itemCount();
  handles.insert(handles.end(), tuple.items, tuple.items + count);
  return count;
}

}  // namespace vorn::runtime
