// Compares lists of all classes, declared types and storages with a model after every operation on single elements, and
// after sorts, sums and the natives of immutable lists.
#include <vorn/collections/array_list.h>
#include <vorn/collections/immutable_list.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "fuzz/list_slots.h"

namespace vorn::fuzz {
namespace {

class Lists : public ListSlots {
 public:
  explicit Lists(Input& input) : ListSlots(input) {}

  // ---- Storing ----

  void addInt() {
    Slot& chosen = anySlot();
    const std::int64_t integer = chooseValue(input(), Type::Long).integer;
    const bool throughRecord = input().flag();
    const RawValue raw = rawInteger(Kind::Int, Type::Int, integer);
    if (throughRecord) {
      vorn_collections_ArrayList_addIntToData(vorn_collections_ArrayList_dataHandle(chosen.list()), integer);
    } else {
      vorn_collections_ArrayList_addInt(chosen.list(), integer);
    }
    require("addInt", chosen, throughRecord ? chosen.model.addRaw(raw) : chosen.model.addConverted(raw));
  }

  // The types of raw appends are names of any sort.
  Type rawType(const ListModel& model) {
    const std::uint8_t which = input().byte();
    if (which < 120) return model.isUnboxed() ? model.name : model.declared;
    return static_cast<Type>(which % 16 == 15 ? static_cast<int>(Type::Nowhere) : which % 14);
  }

  void addPrimitiveI64() {
    Slot& chosen = anySlot();
    const Type type = rawType(chosen.model);
    const std::int64_t integer = chooseValue(input(), Type::Long).integer;
    vorn_collections_ArrayList_addPrimitiveI64(chosen.list(), integer, nameOrNull(type));
    const Type name = type == Type::None ? Type::Int : type;
    const Kind kind = kindOf(name) != Kind::None ? kindOf(name) : Kind::Long;
    require("addPrimitiveI64", chosen, chosen.model.addConverted(rawInteger(kind, name, integer)));
  }

  void addPrimitiveDouble() {
    Slot& chosen = anySlot();
    const Type type = rawType(chosen.model);
    const double floating = chooseValue(input(), Type::Double).floating;
    vorn_collections_ArrayList_addPrimitiveDouble(chosen.list(), floating, nameOrNull(type));
    const Type name = type == Type::None ? Type::Double : type;
    const Kind kind = kindOf(name) != Kind::None ? kindOf(name) : Kind::Double;
    require("addPrimitiveDouble", chosen, chosen.model.addConverted(rawFloating(kind, name, floating)));
  }

  void addPrimitiveBool() {
    Slot& chosen = anySlot();
    const bool truth = input().flag();
    vorn_collections_ArrayList_addPrimitiveBool(chosen.list(), truth);
    require("addPrimitiveBool", chosen, chosen.model.addRaw(rawInteger(Kind::Boolean, Type::Boolean, truth ? 1 : 0)));
  }

  void addAt() {
    Slot& chosen = anySlot();
    const std::int64_t index = indexIn(chosen);
    const Value value = argument(chosen.model);
    vorn_collections_ArrayList_addAt(chosen.list(), index, value.handle);
    require("addAt", chosen, chosen.model.addAt(index, value));
  }

  void assignAt() {
    Slot& chosen = anySlot();
    const std::int64_t index = input().byte() % 8 == 0 ? chosen.model.size() : indexIn(chosen);
    const Value value = argument(chosen.model);
    vorn_collections_ArrayList_operator_index_eq(chosen.list(), index, value.handle);
    require("operator_index_eq", chosen, chosen.model.assignAt(index, value));
  }

  // ---- Reading ----

  void readAt() {
    Slot& chosen = anySlot();
    const std::int64_t index = indexIn(chosen);
    const auto at = chosen.model.place(index);
    void* const element = input().flag() ? vorn_collections_ArrayList_operator_index(chosen.list(), index)
                                         : vorn_collections_ImmutableList_operator_index(chosen.list(), index);
    Value expected = at ? chosen.model.elements[*at] : Value();
    requireValue("operator_index", element, expected);
    require("operator_index", chosen, at ? ExpectedError() : indexOutOfBounds());
  }

  void getInt() {
    Slot& chosen = anySlot();
    const std::int64_t index = indexIn(chosen);
    const auto at = chosen.model.place(index);
    std::int64_t actual = 0;
    switch (input().below(3)) {
      case 0:
        actual = vorn_collections_ArrayList_getInt(chosen.list(), index);
        break;
      case 1:
        actual = vorn_collections_ArrayList_getIntFast(chosen.list(), index);
        break;
      default:
        actual = vorn_collections_ArrayList_getIntFromData(vorn_collections_ArrayList_dataHandle(chosen.list()), index);
        break;
    }
    ExpectedError error;
    if (!at) error = indexOutOfBounds();
    if (at && chosen.model.elements[*at].type == Type::None) error = {"TypeError", "Expected Int item"};
    requireEqual("getInt", actual, at ? integerOf(chosen.model.elements[*at]) : 0);
    require("getInt", chosen, error);
  }

  void getDouble() {
    Slot& chosen = anySlot();
    const std::int64_t index = indexIn(chosen);
    const auto at = chosen.model.place(index);
    const double actual = vorn_collections_ArrayList_getDouble(chosen.list(), index);
    ExpectedError error;
    if (!at) error = indexOutOfBounds();
    if (at && chosen.model.elements[*at].type == Type::None) error = {"TypeError", "Expected floating list item"};
    requireEqualFloating("getDouble", actual, at ? floatingOf(chosen.model.elements[*at]) : 0);
    require("getDouble", chosen, error);
  }

  void size() {
    Slot& chosen = anySlot();
    requireEqual("size", vorn_collections_ArrayList_size(chosen.list()), chosen.model.size());
    requireEqual("sizeFast", vorn_collections_ArrayList_sizeFast(chosen.list()), chosen.model.size());
    requireEqual("ImmutableList.size", vorn_collections_ImmutableList_size(chosen.list()), chosen.model.size());
    require("size", chosen);
  }

  // ---- Searching ----

  void count() {
    Slot& chosen = anySlot();
    const Value value = wanted(chosen);
    const std::int64_t actual = vorn_collections_ArrayList_count(chosen.list(), value.handle);
    requireEqual("count", actual, static_cast<std::int64_t>(chosen.model.find(value).size()));
    require("count", chosen);
  }

  void contains() {
    Slot& chosen = anySlot();
    const Value value = wanted(chosen);
    const bool actual = vorn_collections_ArrayList_operator_in(chosen.list(), value.handle);
    requireEqual("operator_in", actual ? 1 : 0, chosen.model.find(value).empty() ? 0 : 1);
    require("operator_in", chosen);
  }

  void remove() {
    Slot& chosen = anySlot();
    const Value value = wanted(chosen);
    const bool actual = vorn_collections_ArrayList_remove(chosen.list(), value.handle);
    const std::vector<std::size_t> places = chosen.model.find(value);
    requireEqual("remove", actual ? 1 : 0, places.empty() ? 0 : 1);
    if (!places.empty()) chosen.model.removeAt(static_cast<std::int64_t>(places[0]));
    require("remove", chosen);
  }

  void indexOf() {
    Slot& chosen = anySlot();
    const Value value = wanted(chosen);
    const std::int64_t start = input().index();
    const std::int64_t actual = input().flag()
                                    ? vorn_collections_ArrayList_indexOf(chosen.list(), value.handle, start)
                                    : vorn_collections_ImmutableList_indexOf(chosen.list(), value.handle, start);
    requireEqual("indexOf", actual, chosen.model.indexOf(value, start));
    require("indexOf", chosen);
  }

  void lastIndexOf() {
    Slot& chosen = anySlot();
    const Value value = wanted(chosen);
    const std::int64_t start = input().index();
    const std::int64_t actual = input().flag()
                                    ? vorn_collections_ArrayList_lastIndexOf(chosen.list(), value.handle, start)
                                    : vorn_collections_ImmutableList_lastIndexOf(chosen.list(), value.handle, start);
    requireEqual("lastIndexOf", actual, chosen.model.lastIndexOf(value, start));
    require("lastIndexOf", chosen);
  }

  // ---- Sorting ----

  // Up to 32 numbers keep the order of equal ones.
  static bool sortsStably(const ListModel& model) {
    const bool numbers = std::all_of(model.elements.begin(), model.elements.end(),
                                     [](const Value& value) { return isNumber(value.type); });
    return !model.isUnboxed() && !model.linked && model.size() <= 32 && numbers;
  }

  void sort() {
    Slot& chosen = anySlot();
    const bool stably = sortsStably(chosen.model);
    switch (input().below(3)) {
      case 0:
        vorn_collections_ArrayList_sort(chosen.list());
        break;
      case 1:
        vorn_collections_ArrayList_sortI64Fast(chosen.list());
        break;
      default:
        vorn_collections_ArrayList_sortF64Fast(chosen.list());
        break;
    }
    if (stably) {
      std::stable_sort(chosen.model.elements.begin(), chosen.model.elements.end(),
                       [](const Value& left, const Value& right) { return compareElements(left, right) < 0; });
    } else {
      adoptOrder("sort", chosen.list(), chosen.model, true);
    }
    require("sort", chosen);
  }

  void sortNew() {
    Slot& chosen = anySlot();
    Slot& target = anySlot();
    ListModel model = copyOfClass(chosen.model);
    void* const sorted = input().flag() ? vorn_collections_ArrayList_sortNew(chosen.list())
                                        : vorn_collections_ImmutableList_sortNew(chosen.list());
    adoptOrder("sortNew", sorted, model, true);
    requireNoError("sortNew");
    requireList("the source of sortNew", chosen.list(), chosen.model);
    place(target, sorted, std::move(model));
    require("sortNew", target);
  }

  // A list of the same class with the same elements: unboxed ones bring their declared type.
  static ListModel copyOfClass(const ListModel& model) {
    ListModel copy = model;
    copy.declared = model.argument;
    if (model.isUnboxed()) copy.declared = model.declared != Type::None ? model.declared : model.name;
    return copy;
  }

  // ---- Sums ----

  void sumIntegers() {
    Slot& chosen = anySlot();
    const std::int64_t actual = input().flag() ? vorn_collections_ArrayList_sumInt(chosen.list())
                                               : vorn_collections_ArrayList_sumI64Fast(chosen.list());
    std::uint64_t sum = 0;
    double floatingSum = 0;
    bool hasNull = false;
    for (const Value& value : chosen.model.elements) {
      hasNull = hasNull || value.type == Type::None;
      sum += static_cast<std::uint64_t>(integerOf(value));
      floatingSum += value.floating;
    }
    const bool isFloatingSum = isFloating(chosen.model.kind);
    std::int64_t expected = isFloatingSum ? truncated(floatingSum) : static_cast<std::int64_t>(sum);
    if (hasNull) expected = 0;
    requireEqual("sumInt", actual, expected);
    require("sumInt", chosen, sumError(hasNull));
  }

  void sumFloating() {
    Slot& chosen = anySlot();
    const double actual = vorn_collections_ArrayList_sumF64Fast(chosen.list());
    bool hasNull = false;
    double expected = 0;
    std::uint64_t integers = 0;
    for (const Value& value : chosen.model.elements) {
      hasNull = hasNull || value.type == Type::None;
      expected += floatingOf(value);
      integers += static_cast<std::uint64_t>(integerOf(value));
    }
    if (chosen.model.isUnboxed() && !isFloating(chosen.model.kind)) {
      expected = static_cast<double>(static_cast<std::int64_t>(integers));
    }
    requireEqualFloating("sumF64Fast", actual, hasNull ? 0 : expected);
    require("sumF64Fast", chosen, sumError(hasNull));
  }

  static ExpectedError sumError(bool hasNull) {
    if (!hasNull) return {};
    return {"TypeError", "sum does not support null values"};
  }

  // ---- Immutable lists ----

  void makeImmutable() {
    Slot& source = anySlot();
    Slot& target = anySlot();
    Handle list = vorn_object_new("ImmutableList");
    ListModel model;
    model.immutable = true;
    ExpectedError error;
    const std::uint8_t which = input().byte();
    if (which % 8 == 0) {
      vorn_collections_ImmutableList_ctor(list, nullptr);
    } else if (which % 8 == 1) {
      const Value value = argumentOf(Type::Pair);
      vorn_collections_ImmutableList_ctor(list, value.handle);
      error = {"TypeError", "argument 1 of ImmutableList must be a IList"};
    } else {
      vorn_collections_ImmutableList_ctor(list, source.list());
      model.elements = source.model.elements;
      model.kind = source.model.kind;
      model.name = source.model.name;
      if (model.isUnboxed()) model.declared = source.model.declared != Type::None ? source.model.declared : model.name;
    }
    requireError("ImmutableList.ctor", error);
    place(target, list, std::move(model));
    require("ImmutableList.ctor", target);
  }

  void assignToImmutable() {
    Slot& chosen = anySlot();
    const Value value = argument(chosen.model);
    vorn_collections_ImmutableList_operator_index_eq(chosen.list(), input().index(), value.handle);
    require("ImmutableList.operator_index_eq", chosen, {"ReadOnlyException", "ImmutableList is read-only"});
  }
};

constexpr Operation<Lists> kOperations[] = {
    {"create", &Lists::create},
    {"add", &Lists::add},
    {"add", &Lists::add},
    {"add many", &Lists::addMany},
    {"clear", &Lists::clear},
    {"removeAt", &Lists::removeAt},
    {"reserve", &Lists::reserve},
    {"addInt", &Lists::addInt},
    {"addPrimitiveI64", &Lists::addPrimitiveI64},
    {"addPrimitiveDouble", &Lists::addPrimitiveDouble},
    {"addPrimitiveBool", &Lists::addPrimitiveBool},
    {"addAt", &Lists::addAt},
    {"addAt", &Lists::addAt},
    {"operator_index_eq", &Lists::assignAt},
    {"operator_index", &Lists::readAt},
    {"getInt", &Lists::getInt},
    {"getDouble", &Lists::getDouble},
    {"size", &Lists::size},
    {"count", &Lists::count},
    {"operator_in", &Lists::contains},
    {"remove", &Lists::remove},
    {"indexOf", &Lists::indexOf},
    {"lastIndexOf", &Lists::lastIndexOf},
    {"sort", &Lists::sort},
    {"sortNew", &Lists::sortNew},
    {"sumInt", &Lists::sumIntegers},
    {"sumF64Fast", &Lists::sumFloating},
    {"ImmutableList.ctor", &Lists::makeImmutable},
    {"ImmutableList.operator_index_eq", &Lists::assignToImmutable},
};

}  // namespace
}  // namespace vorn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return vorn::fuzz::runInput(data, size, vorn::fuzz::kOperations);
}
