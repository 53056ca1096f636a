// Compares lists with a model after operations on whole lists and ranges: from every sort of source, onto every storage,
// with a list as its own source, and tuples made from them.
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>
#include <vorn/collections/runtime_helpers.hpp>

#include <algorithm>
#include <utility>

#include "collections/core/port/gc_allocator.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_data.h"
#include "fuzz/list_slots.h"

namespace vorn::fuzz {
namespace {

// A collection to take values from.
struct Source {
  void* handle = nullptr;
  Values values;
  bool isOrdered = true;     // a list, array or tuple
  bool isCollection = true;  // one of these, or a set
};

class Bulk : public ListSlots {
 public:
  explicit Bulk(Input& input) : ListSlots(input) { sourceRoot() = nullptr; }

  // ---- Storing many ----

  void addAll() {
    Slot& chosen = anySlot();
    const Source source = anySource();
    if (chosen.model.size() + static_cast<std::int64_t>(source.values.size()) > kMostElements) return;
    vorn_collections_ArrayList_addAll(chosen.list(), source.handle);
    require("addAll", chosen,
            source.isCollection ? chosen.model.addAll(chosen.model.size(), source.values) : notACollection());
  }

  void addAllAt() {
    Slot& chosen = anySlot();
    const Source source = anySource();
    if (chosen.model.size() + static_cast<std::int64_t>(source.values.size()) > kMostElements) return;
    const std::int64_t index = indexIn(chosen);
    vorn_collections_ArrayList_addAllAt(chosen.list(), index, source.handle);
    require("addAllAt", chosen, source.isCollection ? chosen.model.addAll(index, source.values) : notACollection());
  }

  static ExpectedError notACollection() { return {"TypeError", "addAll expects a list, array, tuple or set"}; }

  void sliceAssign() {
    Slot& chosen = anySlot();
    const Source source = anySource();
    if (chosen.model.size() + static_cast<std::int64_t>(source.values.size()) > kMostElements) return;
    const Slice slice = anySlice();
    vorn_collections_ArrayList_sliceAssign(chosen.list(), slice.start, slice.stop, slice.step,
                                           slice.hasStart ? chosen.list() : nullptr,
                                           slice.hasStop ? chosen.list() : nullptr, source.handle);
    require("sliceAssign", chosen, assignSlice(chosen.model, slice, source));
  }

  static ExpectedError assignSlice(ListModel& model, const Slice& slice, const Source& source) {
    if (slice.step == 0) return {"Exception", "slice step cannot be zero"};
    if (!source.isOrdered) return {"TypeError", "slice assignment source must be an ordered collection"};
    const std::vector<std::size_t> positions = positionsOf(slice, model.size());
    if (positions.size() == source.values.size()) {
      for (std::size_t i = 0; i < positions.size(); ++i) {
        ExpectedError error = model.assignAt(static_cast<std::int64_t>(positions[i]), source.values[i]);
        if (error.exceptionClass != nullptr) return error;
      }
      return {};
    }
    if (slice.step != 1) {
      return {"ValueException", "extended slice assignment requires the same number of values"};
    }
    const auto clamped = [&](std::int64_t bound) {
      if (bound < 0) bound += model.size();
      return std::clamp<std::int64_t>(bound, 0, model.size());
    };
    const std::int64_t start = slice.hasStart ? clamped(slice.start) : 0;
    const std::int64_t stop = slice.hasStop ? clamped(slice.stop) : model.size();
    if (stop < start) return {"IndexException", "Invalid slice assignment range"};
    model.materialise();
    const auto first = model.elements.erase(model.elements.begin() + start, model.elements.begin() + stop);
    model.elements.insert(first, source.values.begin(), source.values.end());
    return {};
  }

  // ---- Results ----

  void slice() {
    Slot& chosen = anySlot();
    Slot& target = anySlot();
    const Slice slice = anySlice();
    void* const result = vorn_collections_ArrayList_slice(chosen.list(), slice.start, slice.stop, slice.step,
                                                          slice.hasStart ? chosen.list() : nullptr,
                                                          slice.hasStop ? chosen.list() : nullptr);
    ListModel model = emptyLike(chosen.model);
    ExpectedError error;
    if (slice.step == 0) {
      error = {"Exception", "slice step cannot be zero"};
    } else {
      takeStorage(model, chosen.model);
      for (const std::size_t at : positionsOf(slice, chosen.model.size())) {
        model.elements.push_back(chosen.model.elements[at]);
      }
    }
    requireError("slice", error);
    finish("slice", chosen, target, result, std::move(model));
  }

  void repeat() {
    Slot& chosen = anySlot();
    Slot& target = anySlot();
    const std::int64_t count = input().index();
    if (count > 20 && !chosen.model.elements.empty()) {
      if (count > INT64_MAX / 2)
        requireThrows("repeat", [&] { vorn_collections_ArrayList_repeat(chosen.list(), count); });
      return require("repeat", chosen);
    }
    if (count * chosen.model.size() > kMostElements) return;
    void* const result = vorn_collections_ArrayList_repeat(chosen.list(), count);
    ListModel model = emptyLike(chosen.model);
    if (count > 0) takeStorage(model, chosen.model);
    for (std::int64_t i = 0; i < count && !chosen.model.elements.empty(); ++i) {
      model.elements.insert(model.elements.end(), chosen.model.elements.begin(), chosen.model.elements.end());
    }
    finish("repeat", chosen, target, result, std::move(model));
  }

  void concat() {
    Slot& chosen = anySlot();
    Slot& other = anySlot();
    Slot& target = anySlot();
    if (chosen.model.size() + other.model.size() > kMostElements) return;
    const bool withNull = input().byte() % 16 == 0;
    void* const result = vorn_collections_ArrayList_concat(chosen.list(), withNull ? nullptr : other.list());
    ListModel model = modelOfClass(chosen.model.linked, chosen.model.synchronised, chosen.model.argument);
    model.immutable = chosen.model.immutable;
    model.elements = chosen.model.elements;
    if (!withNull) {
      model.elements.insert(model.elements.end(), other.model.elements.begin(), other.model.elements.end());
      if (chosen.model.isUnboxed() && other.model.kind == chosen.model.kind && other.model.name == chosen.model.name) {
        takeStorage(model, chosen.model);
        if (model.argument != Type::None) model.declared = model.argument;
      }
    }
    requireNoError("concat");
    requireList("the other list of concat", other.list(), other.model);
    finish("concat", chosen, target, result, std::move(model));
  }

  void reverseNew() {
    Slot& chosen = anySlot();
    Slot& target = anySlot();
    void* const result = vorn_collections_ArrayList_reverseNew(chosen.list());
    ListModel model = chosen.model;
    model.declared = model.argument;
    if (model.isUnboxed()) takeStorage(model, chosen.model);
    std::reverse(model.elements.begin(), model.elements.end());
    finish("reverseNew", chosen, target, result, std::move(model));
  }

  // ---- In place ----

  void reverse() {
    Slot& chosen = anySlot();
    vorn_collections_ArrayList_reverse(chosen.list());
    std::reverse(chosen.model.elements.begin(), chosen.model.elements.end());
    require("reverse", chosen);
  }

  void shuffle() {
    Slot& chosen = anySlot();
    vorn_collections_ArrayList_shuffle(chosen.list());
    adoptOrder("shuffle", chosen.list(), chosen.model, false);
    require("shuffle", chosen);
  }

  void snapshot() {
    Slot& chosen = anySlot();
    const auto values = snapshotListObjectValues(*getListData(chosen.list()));
    requireEqual("the size of a snapshot", static_cast<std::int64_t>(values.size()), chosen.model.size());
    // The vector is not rooted, so only what the list itself holds may be looked at on every heap.
    for (std::size_t i = 0; i < values.size() && !chosen.model.isUnboxed(); ++i) {
      requireValue("a snapshot", values[i], chosen.model.elements[i]);
    }
    require("a snapshot", chosen);
  }

  // ---- Tuples ----

  void tuple() {
    Slot& chosen = anySlot();
    if (chosen.model.size() > 30) return;
    // An untyped list that keeps characters unboxed declares nothing, so its items come as integers.
    Values items = chosen.model.elements;
    if (chosen.model.isUnboxed()) {
      for (Value& item : items) {
        item = boxed({chosen.model.kind, chosen.model.declared, item.integer, item.floating});
      }
    }
    Handle tuple = vorn_object_new("Tuple");
    vorn_collections_Tuple_ctor(tuple, chosen.list());
    requireTuple(tuple, items);
    vorn_collections_Tuple_operator_index_eq(tuple, 0, nullptr);
    requireError("Tuple.operator_index_eq", {"ReadOnlyException", "Tuple is read-only"});
    vorn_collections_Tuple_ctor(tuple, input().flag() ? nullptr : tuple.get());
    requireError("Tuple.ctor", {"TypeError", "argument 1 of Tuple must be a packed variadic list"});
    requireTuple(tuple, items);
    require("Tuple.ctor", chosen);
  }

 private:
  static void*& sourceRoot() {
    static RootedSlots<1> root;
    return root[0];
  }

  void requireTuple(void* tuple, Values& items) {
    const auto size = static_cast<std::int64_t>(items.size());
    requireEqual("the size of a tuple", vorn_collections_Tuple_size(tuple), size);
    for (std::int64_t i = 0; i < size; ++i) {
      const std::int64_t index = input().flag() ? i : i - size;
      requireValue("an item", vorn_collections_Tuple_operator_index(tuple, index), items[static_cast<std::size_t>(i)]);
    }
    requireNoError("Tuple.operator_index");
    const bool outside = vorn_collections_Tuple_operator_index(tuple, input().flag() ? size : -size - 1) == nullptr;
    requireEqual("an item outside being null", outside ? 1 : 0, 1);
    requireError("Tuple.operator_index", indexOutOfBounds());
  }

  // The receiver's family without its elements: linked lists keep their class.
  static ListModel emptyLike(const ListModel& model) {
    return modelOfClass(model.linked, model.synchronised, model.linked ? model.argument : Type::None);
  }

  static void takeStorage(ListModel& target, const ListModel& source) {
    if (!source.isUnboxed()) return;
    target.kind = source.kind;
    target.name = source.name;
    target.declared = source.declared != Type::None ? source.declared : source.name;
  }

  void finish(const char* what, Slot& source, Slot& target, void* result, ListModel model) {
    requireNoError(what);
    argumentSlots()[0] = result;
    requireList("the receiver", source.list(), source.model);
    place(target, result, std::move(model));
    require(what, target);
  }

  Slice anySlice() {
    const std::uint8_t flags = input().byte();
    Slice slice{};
    slice.start = input().index();
    slice.stop = input().index();
    slice.step = flags / 4 % 2 == 0 ? 1 : input().index();
    slice.hasStart = flags % 2 == 0;
    slice.hasStop = flags / 2 % 2 == 0;
    return slice;
  }

  // Values of one type or of any, which the collection to come keeps alive or the argument slots do.
  Values someValues(Type type) {
    Values values;
    const std::size_t count = input().below(8);
    for (std::size_t i = 0; i < count; ++i) values.push_back(argumentOf(type, i));
    return values;
  }

  Source anySource() {
    const std::uint8_t which = input().byte();
    if (which < 90) {
      Slot& other = anySlot();
      return {other.list(), other.model.elements};
    }
    const Type type = which % 3 == 0 ? Type::None : choosePrimitive(input());
    Source source;
    source.values = someValues(type);
    switch (which % 6) {
      case 0:
        source.handle = arrayOf(which % 12 == 0 ? type : Type::None, source.values);
        break;
      case 1:
      case 2:
        source.handle = tupleOf(source.values);
        break;
      case 3:
      case 4:
        source.handle = setOf(source.values);
        source.isOrdered = false;
        break;
      default:
        source.values.clear();
        source.isOrdered = source.isCollection = false;
        source.handle = which % 12 == 5 ? vorn_object_new("Map") : nullptr;
        break;
    }
    sourceRoot() = source.handle;
    return source;
  }

  // An array of a type that refuses some of the values keeps those that it takes.
  static void* arrayOf(Type type, Values& values) {
    const std::string name = type == Type::None ? "Array" : std::string("Array<") + nameOf(type) + ">";
    void* const array = sourceRoot() = vorn_object_new(name.c_str());
    vorn_collections_Array_ctor(array, static_cast<long long>(values.size()));
    for (std::size_t i = 0; i < values.size(); ++i) {
      vorn_collections_Array_operator_index_eq(array, static_cast<long long>(i), values[i].handle);
      vorn_errors_clear();
      if (type == Type::None) continue;
      // Unboxed slots are boxed anew whenever they are read.
      values[i] = slotOf(array, static_cast<long long>(i), type);
    }
    return array;
  }

  static Value slotOf(void* array, long long at, Type type) {
    const double floating = vorn_collections_Array_getDouble(array, at);
    const std::int64_t integer = vorn_collections_Array_getInt(array, at);
    return boxed({kindOf(type), type, integer, floating});
  }

  static void* tupleOf(const Values& values) {
    std::vector<void*> items;
    for (const Value& value : values) items.push_back(value.handle);
    return vorn_tuple_new(nullptr, items.data(), items.size());
  }

  // A set keeps one of equal values, the one that came last at the place of the first.
  static void* setOf(Values& values) {
    void* const set = sourceRoot() = vorn_object_new("HashSet");
    Values kept;
    for (const Value& value : values) {
      vorn_collections_HashSet_add(set, value.handle);
      const auto same =
          std::find_if(kept.begin(), kept.end(), [&](const Value& other) { return compareKeys(other, value) == 0; });
      if (same != kept.end()) {
        *same = value;
      } else {
        kept.push_back(value);
      }
    }
    values = std::move(kept);
    return set;
  }
};

constexpr Operation<Bulk> kOperations[] = {
    {"create", &Bulk::create},           {"add", &Bulk::add},
    {"add many", &Bulk::addMany},        {"clear", &Bulk::clear},
    {"removeAt", &Bulk::removeAt},       {"addAll", &Bulk::addAll},
    {"addAllAt", &Bulk::addAllAt},       {"slice", &Bulk::slice},
    {"sliceAssign", &Bulk::sliceAssign}, {"sliceAssign", &Bulk::sliceAssign},
    {"concat", &Bulk::concat},           {"repeat", &Bulk::repeat},
    {"reverse", &Bulk::reverse},         {"reverseNew", &Bulk::reverseNew},
    {"shuffle", &Bulk::shuffle},         {"snapshotListObjectValues", &Bulk::snapshot},
    {"Tuple.ctor", &Bulk::tuple},
};

}  // namespace
}  // namespace vorn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return vorn::fuzz::runInput(data, size, vorn::fuzz::kOperations);
}
