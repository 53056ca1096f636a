#include "console/display_cost.h"

#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "console/scalars.h"
#include "console/values.h"

namespace vorn::console {

namespace {

constexpr std::uint64_t kMostShown = 300'000;
constexpr std::uint64_t kMostCollections = 2'000'000;
constexpr std::size_t kDeepest = 1000;

class Walk {
 public:
  Walk(std::uint64_t mostElements, std::uint64_t mostCollections)
      : mostElements_(mostElements), mostCollections_(mostCollections) {}

  // False when the walk is to end; why() tells the reason.
  bool visit(void* handle) {
    if (++seen_ > mostElements_) return stop(DisplayCost::TooLarge);
    const Family family = familyOf(handle);
    if (family != Family::None && ++collections_ > mostCollections_) return stop(DisplayCost::TooLarge);
    // What holds itself is shown as a mark where it comes again.
    if (family == Family::None || std::ranges::count(path_, handle) != 0) return true;
    if (path_.size() == kDeepest) return stop(DisplayCost::TooDeep);
    path_.push_back(handle);
    const bool more = visitElements(handle, family);
    path_.pop_back();
    return more;
  }

  [[nodiscard]] DisplayCost why() const { return why_; }

 private:
  bool stop(DisplayCost why) {
    why_ = why;
    return false;
  }

  bool visitElements(void* handle, Family family) {
    switch (family) {
      case Family::List:
      case Family::ImmutableList:
        return visitList(handle);
      case Family::Array:
        if (scalarType(elementTypeText(handle)) != nullptr) return visitUnboxed(sizeOf(handle));
        return visitEach(handle, vorn_collections_Array_operator_index);
      case Family::Map:
        return visitEach(Handle(vorn_collections_Map_keys(handle)), vorn_collections_ArrayList_operator_index) &&
               visitEach(Handle(vorn_collections_Map_values(handle)), vorn_collections_ArrayList_operator_index);
      case Family::HashSet:
        return visitEach(Handle(vorn_collections_HashSet_items(handle)), vorn_collections_ArrayList_operator_index);
      case Family::Tuple:
        return visitEach(handle, vorn_collections_Tuple_operator_index);
      case Family::None:
        break;
    }
    return true;
  }

  bool visitList(void* list) {
    vorn_list_storage_info info = {};
    vorn_list_get_storage(list, &info);
    if (info.storage == VORN_LIST_PRIMITIVE) return visitUnboxed(info.size);
    if (info.storage == VORN_LIST_OBJECTS) return visitEach(list, vorn_collections_ArrayList_operator_index);
    // A linked list is read by index in time in proportion to the index.
    const Handle copy = vorn_object_new("ImmutableList");
    if (copy == nullptr) return stop(DisplayCost::TooLarge);
    vorn_collections_ImmutableList_ctor(copy, list);
    return visitEach(copy, vorn_collections_ArrayList_operator_index);
  }

  bool visitUnboxed(std::uint64_t count) {
    seen_ += count;
    return seen_ <= mostElements_ || stop(DisplayCost::TooLarge);
  }

  bool visitEach(void* collection, void* (*read)(void*, long long)) {
    Handle element;
    const auto count = static_cast<long long>(sizeOf(collection));
    for (long long i = 0; i < count; ++i) {
      element = read(collection, i);
      if (!visit(element)) return false;
    }
    return true;
  }

  std::uint64_t mostElements_;
  std::uint64_t mostCollections_;
  std::uint64_t seen_ = 0;
  std::uint64_t collections_ = 0;
  std::vector<void*> path_;
  DisplayCost why_ = DisplayCost::Fine;
};

}  // namespace

DisplayCost displayCost(void* handle) {
  Walk walk(kMostShown, kMostShown);
  walk.visit(handle);
  return walk.why();
}

DisplayCost textCost(void* handle) {
  Walk walk(UINT64_MAX, kMostCollections);
  walk.visit(handle);
  return walk.why();
}

}  // namespace vorn::console
