// Compares fixed arrays of all element types with a model after every operation, and their conversions to texts and
// bytes.
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/runtime_helpers.hpp>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "collections/core/port/object_layout.h"
#include "collections/core/port/values.h"
#include "fuzz/array_model.h"

namespace vorn::fuzz {
namespace {

constexpr std::size_t kArrays = 4;
constexpr std::int64_t kMostSlots = 200;

class Arrays {
 public:
  explicit Arrays(Input& input) : input_(input) {
    roots().clear();
    for (std::size_t i = 0; i < kArrays; ++i) createIn(i);
  }

  void requireAll() {
    for (std::size_t i = 0; i < kArrays; ++i) require("an array at the end", i);
  }

  // ---- Construction ----

  void create() { createIn(any()); }

  void construct() {
    const std::size_t at = any();
    const std::int64_t size = input_.index();
    if (size > kMostSlots) {
      // More than can be counted in bytes, or than there is.
      if (size < (1LL << 60)) return;
      bool thrown = false;
      try {
        vorn_collections_Array_ctor(array(at), size);
      } catch (const std::exception&) {
        thrown = true;
      }
      requireEqual("a constructor that throws", thrown ? 1 : 0, 1);
      return require("Array.ctor", at);
    }
    vorn_collections_Array_ctor(array(at), size);
    if (size >= 0) models_[at].construct(size);
    require("Array.ctor", at, size < 0 ? Errors{{"ValueException", "Array size cannot be negative"}} : Errors{});
  }

  void copyConstruct() {
    const std::size_t at = any();
    ArrayModel& model = models_[at];
    Values values;
    Errors errors;
    void* const source = someSource(values);
    vorn_collections_Array_copyCtor(array(at), source);
    if (const auto from = numberOf(source)) {
      model.element = models_[*from].element;
      model.slots = models_[*from].slots;
    } else if (source == nullptr) {
      errors = {{"TypeError", "Array copy constructor expects a non-null ordered collection"}};
    } else if (vorn_is_instance(source, "HashSet") != 0) {
      errors = {{"TypeError", "Array copy constructor expects an ordered collection"}};
    } else {
      model.construct(static_cast<std::int64_t>(values.size()));
      for (std::size_t i = 0; i < values.size(); ++i) {
        if (!model.assign(i, values[i])) errors.push_back(invalidElement());
      }
    }
    require("Array.copyCtor", at, errors);
  }

  void records() {
    const std::size_t at = any();
    ArrayData& data = *getArrayData(array(at));
    const std::uint8_t which = input_.byte();
    if (which % 8 == 0) {
      clearArrayStorage(data);
      models_[at].slots.clear();
    } else if (which % 2 == 0) {
      resizeArrayStorage(data, which / 8);
      models_[at].resize(which / 8);
    } else {
      const std::size_t from = any();
      copyArrayStorage(*getArrayData(array(from)), data);
      models_[at].element = models_[from].element;
      models_[at].slots = models_[from].slots;
    }
    require("a record", at);
  }

  // ---- Elements ----

  void size() {
    const std::size_t at = any();
    const ArrayModel& model = models_[at];
    const bool isRaw = !model.synchronised;
    requireEqual("size", vorn_collections_Array_size(array(at)), model.size());
    requireEqual("rawSize", vorn_collections_Array_rawSize(array(at)), isRaw ? model.size() : 0);
    const bool hasData = vorn_collections_Array_rawDataPtr(array(at)) != nullptr;
    requireEqual("rawDataPtr", hasData ? 1 : 0, isRaw && model.isUnboxed() ? 1 : 0);
    const long long* const integers = vorn_collections_Array_i64DataPtr(array(at));
    const double* const doubles = vorn_collections_Array_f64DataPtr(array(at));
    requireEqual("i64DataPtr", integers != nullptr ? 1 : 0, model.kind() == Kind::Long ? 1 : 0);
    requireEqual("f64DataPtr", doubles != nullptr ? 1 : 0, model.kind() == Kind::Double ? 1 : 0);
    for (std::size_t i = 0; integers != nullptr && i < model.slots.size(); ++i) {
      requireEqual("a raw integer", integers[i], model.slots[i].integer);
    }
    for (std::size_t i = 0; doubles != nullptr && i < model.slots.size(); ++i) {
      requireEqualFloating("a raw double", doubles[i], model.slots[i].floating);
    }
    require("size", at);
  }

  void read() {
    const std::size_t at = any();
    const std::int64_t index = indexIn(at);
    const auto slot = models_[at].place(index);
    Value expected = slot ? models_[at].slots[*slot] : Value();
    const std::int64_t integer = slot ? integerOf(expected) : 0;
    const double floating = slot ? floatingOf(expected) : 0;
    const bool isNull = slot && expected.type == Type::None;
    const auto errorsOf = [&](const char* ofNull) {
      return !slot ? Errors{indexOutOfBounds()} : isNull ? Errors{{"TypeError", ofNull}} : Errors{};
    };
    requireEqual("getInt", vorn_collections_Array_getInt(array(at), index), integer);
    requireErrors("getInt", errorsOf("Expected integer array item"));
    requireEqualFloating("getDouble", vorn_collections_Array_getDouble(array(at), index), floating);
    requireErrors("getDouble", errorsOf("Expected floating array item"));
    requireValue("operator_index", vorn_collections_Array_operator_index(array(at), index), expected);
    require("operator_index", at, slot ? Errors{} : Errors{indexOutOfBounds()});
    Value outside;
    const auto place = static_cast<std::uint64_t>(slot ? *slot : models_[at].slots.size());
    Value inside = slot ? models_[at].slots[*slot] : Value();
    requireValue("arraySlotToObject", arraySlotToObject(*getArrayData(array(at)), place), slot ? inside : outside);
  }

  void store() {
    const std::size_t at = any();
    const std::int64_t index = indexIn(at);
    const Value value = argument(at);
    vorn_collections_Array_operator_index_eq(array(at), index, value.handle);
    const auto slot = models_[at].place(index);
    ExpectedError error;
    if (!slot) {
      error = indexOutOfBounds();
    } else if (!models_[at].assign(*slot, value)) {
      error = invalidElement();
    }
    require("operator_index_eq", at, one(error));
  }

  void storeRaw() {
    const std::size_t at = any();
    const std::int64_t index = indexIn(at);
    switch (input_.below(3)) {
      case 0: {
        const std::int64_t integer = chooseValue(input_, Type::Long).integer;
        vorn_collections_Array_setInt(array(at), index, integer);
        return require("setInt", at, one(models_[at].setInteger(index, integer)));
      }
      case 1: {
        const double floating = chooseValue(input_, Type::Double).floating;
        vorn_collections_Array_setDouble(array(at), index, floating);
        return require("setDouble", at, one(models_[at].setFloating(index, floating)));
      }
      default: {
        const bool truth = input_.flag();
        vorn_collections_Array_setBool(array(at), index, truth);
        return require("setBool", at, one(models_[at].setTruth(index, truth)));
      }
    }
  }

  // ---- Searching ----

  void search() {
    const std::size_t at = any();
    const ArrayModel& model = models_[at];
    const Value value = wanted(at);
    const std::int64_t start = input_.index();
    std::vector<std::int64_t> places;
    for (std::size_t i = 0; i < model.slots.size(); ++i) {
      if (model.equals(i, value)) places.push_back(static_cast<std::int64_t>(i));
    }
    requireEqual("count", vorn_collections_Array_count(array(at), value.handle),
                 static_cast<std::int64_t>(places.size()));
    requireEqual("operator_in", vorn_collections_Array_operator_in(array(at), value.handle) ? 1 : 0,
                 places.empty() ? 0 : 1);
    const auto first = std::lower_bound(places.begin(), places.end(), start);
    requireEqual("indexOf", vorn_collections_Array_indexOf(array(at), value.handle, start),
                 first != places.end() ? *first : -1);
    const auto past = start < 0 ? places.end() : std::upper_bound(places.begin(), places.end(), start);
    requireEqual("lastIndexOf", vorn_collections_Array_lastIndexOf(array(at), value.handle, start),
                 past != places.begin() ? *std::prev(past) : -1);
    require("a search", at);
  }

  void compare() {
    const std::size_t at = any();
    const std::size_t other = any();
    const Values& left = models_[at].slots;
    const Values& right = models_[other].slots;
    const bool equal = at == other || std::equal(left.begin(), left.end(), right.begin(), right.end(), areDeepEqual);
    requireEqual("operator_eq", vorn_collections_Array_operator_eq(array(at), array(other)) ? 1 : 0, equal ? 1 : 0);
    requireEqual("operator_ne", vorn_collections_Array_operator_ne(array(at), array(other)) ? 1 : 0, equal ? 0 : 1);
    require("operator_eq", at);
  }

  void sum() {
    const std::size_t at = any();
    const ArrayModel& model = models_[at];
    std::uint64_t integers = 0;
    double doubles = 0;
    bool hasNull = false;
    for (std::size_t i = 0; i < model.slots.size(); ++i) {
      hasNull = hasNull || model.slots[i].type == Type::None;
      integers += static_cast<std::uint64_t>(model.integerAt(i));
      doubles += model.isUnboxed() ? model.floatingAt(i) : numericOf(model.slots[i]);
    }
    const Errors errors = hasNull ? Errors{{"TypeError", "sum does not support null values"}} : Errors{};
    requireEqual("sumI64Fast", vorn_collections_Array_sumI64Fast(array(at)),
                 hasNull ? 0 : static_cast<std::int64_t>(integers));
    requireErrors("sumI64Fast", errors);
    requireEqualFloating("sumF64Fast", vorn_collections_Array_sumF64Fast(array(at)), hasNull ? 0 : doubles);
    require("sumF64Fast", at, errors);
  }

  // ---- Whole arrays ----

  void sort() {
    const std::size_t at = any();
    const std::size_t target = any();
    if (input_.flag()) {
      vorn_collections_Array_sort(array(at));
      adoptArrayOrder("sort", array(at), models_[at]);
      return require("sort", at);
    }
    ArrayModel model = models_[at];
    void* const sorted = vorn_collections_Array_sortNew(array(at));
    adoptArrayOrder("sortNew", sorted, model);
    finish("sortNew", at, target, sorted, std::move(model));
  }

  void reverse() {
    const std::size_t at = any();
    const std::size_t target = any();
    ArrayModel model = models_[at];
    std::reverse(model.slots.begin(), model.slots.end());
    if (!input_.flag()) return finish("reverseNew", at, target, vorn_collections_Array_reverseNew(array(at)), model);
    vorn_collections_Array_reverse(array(at));
    models_[at] = std::move(model);
    require("reverse", at);
  }

  void slice() {
    const std::size_t at = any();
    const std::size_t target = any();
    const Slice slice = anySlice();
    void* const result =
        vorn_collections_Array_slice(array(at), slice.start, slice.stop, slice.step,
                                     slice.hasStart ? array(at) : nullptr, slice.hasStop ? array(at) : nullptr);
    if (slice.step == 0) {
      requireEqual("no slice", result == nullptr ? 1 : 0, 1);
      return require("slice", at, {{"Exception", "slice step cannot be zero"}});
    }
    ArrayModel model = models_[at];
    model.slots.clear();
    for (const std::size_t place : positionsOf(slice, models_[at].size())) {
      model.slots.push_back(models_[at].slots[place]);
    }
    finish("slice", at, target, result, std::move(model));
  }

  void sliceAssign() {
    const std::size_t at = any();
    const Slice slice = anySlice();
    Values values;
    void* const source = someSource(values);
    vorn_collections_Array_sliceAssign(array(at), slice.start, slice.stop, slice.step,
                                       slice.hasStart ? array(at) : nullptr, slice.hasStop ? array(at) : nullptr,
                                       source);
    require("sliceAssign", at, one(models_[at].assignSlice(slice, isOrdered(source), values)));
  }

  void concat() {
    const std::size_t at = any();
    const std::size_t target = any();
    Values values;
    void* const source = someSource(values);
    if (models_[at].size() + static_cast<std::int64_t>(values.size()) > kMostSlots) return;
    void* const result = vorn_collections_Array_concat(array(at), source);
    ArrayModel model = models_[at];
    ExpectedError error;
    if (source != nullptr && !isOrdered(source)) {
      error = {"TypeError", "array concatenation expects an ordered collection"};
    }
    for (const Value& value : values) {
      model.slots.emplace_back();
      const bool fits = model.assign(model.slots.size() - 1, value);
      if (!fits && error.exceptionClass == nullptr) error = invalidElement();
    }
    if (source != nullptr && error.exceptionClass == nullptr)
      return finish("concat", at, target, result, std::move(model));
    requireEqual("no result", result == nullptr ? 1 : 0, 1);
    require("concat", at, one(error));
  }

  // ---- Conversions ----

  void texts() {
    const std::size_t at = any();
    const bool asUnits = input_.flag();
    const ArrayText expected = asUnits ? textOfUnits(models_[at]) : textOfScalars(models_[at]);
    void* const actual = asUnits ? Vorn_stringFromCodeUnitArray(array(at)) : Vorn_stringFromCharArray(array(at));
    requireSame("the text of an array", stringValueFromPtr(actual), expected.text);
    require("the text of an array", at, one(expected.error));
  }

  void bytes() {
    const std::size_t at = any();
    ArrayModel& model = models_[at];
    const bool isBytes = model.kind() == Kind::Byte;
    std::vector<unsigned char> read{1, 2, 3};
    std::string error = "untouched";
    requireEqual("reading bytes", Vorn_readByteArrayData(array(at), read, error) ? 1 : 0, isBytes ? 1 : 0);
    requireSame("the error of reading bytes", error, isBytes ? "untouched" : "Expected Byte[]");
    if (isBytes) {
      requireEqual("the number of bytes", static_cast<std::int64_t>(read.size()), model.size());
      for (std::size_t i = 0; i < read.size(); ++i) requireEqual("a byte", read[i], model.slots[i].integer);
    }
    std::vector<unsigned char> written(input_.below(40));
    for (unsigned char& byte : written) byte = input_.byte();
    const bool fits = written.size() <= model.slots.size();
    error = "untouched";
    requireEqual("writing bytes", Vorn_writeByteArrayData(array(at), written.data(), written.size(), error) ? 1 : 0,
                 isBytes && fits ? 1 : 0);
    requireSame("the error of writing bytes", error,
                !isBytes ? "Expected Byte[]"
                : !fits  ? "Destination Byte[] is too small"
                         : "untouched");
    for (std::size_t i = 0; isBytes && fits && i < written.size(); ++i) model.slots[i].integer = written[i];
    require("bytes", at);
  }

 private:
  // Arrays, a source, and values.
  static RootedSlots<32>& roots() {
    static RootedSlots<32> made;
    return made;
  }
  static constexpr std::size_t kSourceRoot = kArrays;
  static constexpr std::size_t kValueRoots = kArrays + 1;

  static void* array(std::size_t at) { return roots()[at]; }
  std::size_t any() { return input_.below(kArrays); }
  static Errors one(const ExpectedError& error) { return error.exceptionClass != nullptr ? Errors{error} : Errors{}; }
  static std::optional<std::size_t> numberOf(void* source) {
    for (std::size_t i = 0; i < kArrays; ++i) {
      if (array(i) == source) return i;
    }
    return std::nullopt;
  }
  static bool isOrdered(void* source) { return source != nullptr && vorn_is_instance(source, "HashSet") == 0; }

  void createIn(std::size_t at) {
    const std::uint8_t which = input_.byte();
    ArrayModel model;
    model.synchronised = which % 4 == 0;
    constexpr Type kOthers[] = {Type::None, Type::String, Type::Item, Type::Object, Type::Nowhere};
    const std::size_t type = input_.below(20);
    model.argument = type < 13 ? static_cast<Type>(1 + type) : kOthers[type % std::size(kOthers)];
    roots()[at] = vorn_object_new(model.className().c_str());
    if (roots()[at] == nullptr) std::abort();
    model.construct(which / 8);
    vorn_collections_Array_ctor(roots()[at], which / 8);
    models_[at] = std::move(model);
    require("a new array", at);
  }

  void require(const char* what, std::size_t at, const Errors& errors = {}) {
    if (errors.empty()) {
      requireNoError(what);
    } else {
      requireErrors(what, errors);
    }
    requireArray(what, array(at), models_[at]);
  }

  void finish(const char* what, std::size_t at, std::size_t target, void* result, ArrayModel model) {
    if (result == nullptr) diverge(what, "null", "an array");
    requireArray("the receiver", array(at), models_[at]);
    roots()[target] = result;
    models_[target] = std::move(model);
    require(what, target);
  }

  std::int64_t indexIn(std::size_t at) {
    const std::uint8_t chosen = input_.byte();
    const std::int64_t size = models_[at].size();
    if (chosen >= 160 || size == 0) return input_.index();
    return chosen % size - (chosen >= 120 ? size : 0);
  }

  Value rooted(Value value, std::size_t root) {
    value.handle = roots()[kValueRoots + root] = make(value);
    return value;
  }
  Value argument(std::size_t at, std::size_t root = 0) {
    const std::uint8_t chosen = input_.byte();
    const Type element = models_[at].element;
    const bool suits = chosen < 170 && element != Type::Object && element != Type::Nowhere;
    return rooted(chooseValue(input_, suits ? element : static_cast<Type>(chosen % 19)), root);
  }
  Value wanted(std::size_t at) {
    if (models_[at].slots.empty() || input_.flag()) return argument(at);
    Value value = models_[at].slots[input_.byte() % models_[at].slots.size()];
    return value.handle != nullptr || value.type == Type::None ? value : rooted(value, 0);
  }

  Slice anySlice() {
    const std::uint8_t flags = input_.byte();
    const std::int64_t start = input_.index();
    const std::int64_t stop = input_.index();
    const std::int64_t step = flags / 4 % 2 == 0 ? 1 : input_.index();
    return {start, stop, step, flags % 2 == 0, flags / 2 % 2 == 0};
  }

  // An array, tuple or list of some values; a set, which is no source; or null.
  void* someSource(Values& values) {
    const std::uint8_t which = input_.byte();
    if (which < 100) {
      const std::size_t from = any();
      values = models_[from].slots;
      return array(from);
    }
    if (which % 8 == 0) return roots()[kSourceRoot] = which % 16 == 0 ? nullptr : vorn_object_new("HashSet");
    std::vector<void*> items;
    const std::size_t like = any();
    const std::size_t count = input_.below(10);
    for (std::size_t i = 0; i < count; ++i) {
      values.push_back(argument(like, i));
      items.push_back(values.back().handle);
    }
    if (which % 2 == 0) return roots()[kSourceRoot] = vorn_tuple_new(nullptr, items.data(), items.size());
    // A list that keeps boxes, as they are.
    void* const list = roots()[kSourceRoot] = vorn_object_new(which % 4 == 1 ? "LinkedList" : "ArrayList<Object>");
    for (void* const item : items) vorn_collections_ArrayList_add(list, item);
    return list;
  }

  Input& input_;
  std::array<ArrayModel, kArrays> models_;
};

constexpr Operation<Arrays> kOperations[] = {
    {"create", &Arrays::create},
    {"Array.ctor", &Arrays::construct},
    {"Array.copyCtor", &Arrays::copyConstruct},
    {"records", &Arrays::records},
    {"size", &Arrays::size},
    {"reading", &Arrays::read},
    {"operator_index_eq", &Arrays::store},
    {"operator_index_eq", &Arrays::store},
    {"operator_index_eq", &Arrays::store},
    {"setInt, setDouble, setBool", &Arrays::storeRaw},
    {"setInt, setDouble, setBool", &Arrays::storeRaw},
    {"searching", &Arrays::search},
    {"operator_eq", &Arrays::compare},
    {"sums", &Arrays::sum},
    {"sort", &Arrays::sort},
    {"reverse", &Arrays::reverse},
    {"slice", &Arrays::slice},
    {"sliceAssign", &Arrays::sliceAssign},
    {"concat", &Arrays::concat},
    {"texts", &Arrays::texts},
    {"bytes", &Arrays::bytes},
};

}  // namespace
}  // namespace vorn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return vorn::fuzz::runInput(data, size, vorn::fuzz::kOperations);
}
