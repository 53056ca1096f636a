// What lists really are, beside what their models say.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_data.h"
#include "collections/core/storage/list_validation.h"
#include "fuzz/list_model.h"

namespace vorn::fuzz {

namespace {

template <class Element>
Element elementAt(const ListData& list, std::size_t index) {
  Element element;
  std::memcpy(&element, list.primitive.data + index * sizeof(Element), sizeof(Element));
  return element;
}

// An unboxed element in the form that the kind gives it, as its bits.
std::int64_t bitsAt(const ListData& list, Kind kind, std::size_t index) {
  switch (kind) {
    case Kind::SByte:
      return elementAt<std::int8_t>(list, index);
    case Kind::Byte:
      return elementAt<std::uint8_t>(list, index);
    case Kind::Short:
      return elementAt<std::int16_t>(list, index);
    case Kind::UShort:
      return elementAt<std::uint16_t>(list, index);
    case Kind::Int:
      return elementAt<std::int32_t>(list, index);
    case Kind::UInt:
      return elementAt<std::uint32_t>(list, index);
    case Kind::Float:
      return std::bit_cast<std::int64_t>(static_cast<double>(elementAt<float>(list, index)));
    case Kind::Boolean:
      return elementAt<std::uint8_t>(list, index) != 0 ? 1 : 0;
    default:
      return elementAt<std::int64_t>(list, index);
  }
}

// The bits of an element of the model. All NaNs are one here.
std::int64_t bitsOf(Kind kind, const Value& value) {
  return isFloating(kind) ? std::bit_cast<std::int64_t>(value.floating) : value.integer;
}
std::int64_t withoutPayload(Kind kind, std::int64_t bits) {
  constexpr std::int64_t kNan = 0x7FF8000000000000;
  return isFloating(kind) && std::isnan(std::bit_cast<double>(bits)) ? kNan : bits;
}

// The handles of a boxed list, in order.
std::vector<void*> handlesOf(const ListData& list) {
  // Not in braces, where two pointers are a list of two handles.
  if (!list.linked) return std::vector<void*>(list.objects.data, list.objects.data + list.objects.size);
  std::vector<void*> handles;
  for (const LinkedHandles::Links* node = list.linkedObjects.sentinel.next; node != &list.linkedObjects.sentinel;
       node = node->next) {
    handles.push_back(static_cast<const LinkedHandles::Node*>(node)->handle);
  }
  return handles;
}

// Whether the element may stand before the other one in a list that is sorted.
bool isInOrder(Kind kind, const Value& left, const Value& right) {
  if (kind == Kind::None) return compareElements(left, right) <= 0;
  if (isFloating(kind)) return std::isnan(right.floating) || left.floating <= right.floating;
  if (kind == Kind::ULong) {
    return static_cast<std::uint64_t>(left.integer) <= static_cast<std::uint64_t>(right.integer);
  }
  return left.integer <= right.integer;
}

void requireOrder(const char* what, const ListModel& model) {
  if (!model.isUnboxed()) {
    for (const Value& value : model.elements) {
      if (!haveOneOrder(model.elements[0], value)) return;
    }
  }
  for (std::size_t i = 1; i < model.elements.size(); ++i) {
    if (isInOrder(model.kind, model.elements[i - 1], model.elements[i])) continue;
    diverge(what, describe(model.elements[i - 1]) + " before " + describe(model.elements[i]), "ascending order");
  }
}

void adoptUnboxed(const char* what, const ListData& list, ListModel& model) {
  std::vector<std::int64_t> expected;
  for (const Value& value : model.elements) expected.push_back(withoutPayload(model.kind, bitsOf(model.kind, value)));
  std::vector<std::int64_t> actual;
  for (std::size_t i = 0; i < model.elements.size(); ++i) {
    actual.push_back(withoutPayload(model.kind, bitsAt(list, model.kind, i)));
  }
  for (std::size_t i = 0; i < actual.size(); ++i) {
    Value& element = model.elements[i];
    RawValue raw = isFloating(model.kind) ? rawFloating(model.kind, model.name, std::bit_cast<double>(actual[i]))
                                          : rawInteger(model.kind, model.name, actual[i]);
    element = stored(raw);
  }
  std::sort(expected.begin(), expected.end());
  std::sort(actual.begin(), actual.end());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    if (actual[i] != expected[i])
      diverge(what, "bits " + std::to_string(actual[i]), "bits " + std::to_string(expected[i]));
  }
}

void adoptBoxed(const char* what, const ListData& list, ListModel& model) {
  const auto byHandle = [](const Value& left, const Value& right) { return left.handle < right.handle; };
  Values sorted = model.elements;
  std::sort(sorted.begin(), sorted.end(), byHandle);
  const std::vector<void*> handles = handlesOf(list);
  std::vector<void*> sortedHandles = handles;
  std::sort(sortedHandles.begin(), sortedHandles.end());
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    if (sorted[i].handle != sortedHandles[i]) diverge(what, describe(sortedHandles[i]), describe(sorted[i]));
  }
  for (std::size_t i = 0; i < handles.size(); ++i) {
    Value wanted;
    wanted.handle = handles[i];
    model.elements[i] = *std::lower_bound(sorted.begin(), sorted.end(), wanted, byHandle);
  }
}

}  // namespace

void requireList(const char* what, void* handle, ListModel& model) {
  const ListData& list = *getListData(handle);
  requireSame(what, collections::validateListData(list), "");
  requireEqual("being linked", list.linked ? 1 : 0, model.linked ? 1 : 0);
  requireEqual("being synchronised", list.synchronized ? 1 : 0, model.synchronised ? 1 : 0);
  requireEqual("the kind of elements", static_cast<int>(list.primitiveKind), static_cast<int>(model.kind));
  requireSame("the type of unboxed elements", list.primitiveType.get(), nameOf(model.name));
  requireSame("the declared type", list.elementType.get(), nameOf(model.declared));
  requireEqual("the size", static_cast<std::int64_t>(list.logicalSize()), model.size());
  if (!model.isUnboxed()) {
    if (model.linked) {
      const std::vector<void*> handles = handlesOf(list);
      for (std::size_t i = 0; i < handles.size(); ++i) requireValue(what, handles[i], model.elements[i]);
    } else {
      for (std::size_t i = 0; i < model.elements.size(); ++i) {
        requireValue(what, list.objects.data[i], model.elements[i]);
      }
    }
    return;
  }
  for (std::size_t i = 0; i < model.elements.size(); ++i) {
    const std::int64_t actual = bitsAt(list, model.kind, i);
    const std::int64_t expected = bitsOf(model.kind, model.elements[i]);
    if (actual == expected || withoutPayload(model.kind, actual) == withoutPayload(model.kind, expected)) continue;
    diverge(what, "bits " + std::to_string(actual) + " at " + std::to_string(i), describe(model.elements[i]));
  }
}

void adoptOrder(const char* what, void* handle, ListModel& model, bool sorted) {
  const ListData& list = *getListData(handle);
  requireEqual("the kind of elements", static_cast<int>(list.primitiveKind), static_cast<int>(model.kind));
  requireEqual("the size", static_cast<std::int64_t>(list.logicalSize()), model.size());
  if (model.isUnboxed()) {
    adoptUnboxed(what, list, model);
  } else {
    adoptBoxed(what, list, model);
  }
  if (sorted) requireOrder(what, model);
}

}  // namespace vorn::fuzz
