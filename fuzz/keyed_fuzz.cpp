// Compares maps and sets of all classes with a model after every operation: keys that are one key although their types
// differ, hooks of keys that raise, orders, listings, and tables that grow and shrink.
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>
#include <vorn/collections/runtime_helpers.hpp>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <utility>

#include "collections/core/port/object_layout.h"
#include "collections/keyed/keyed_validation.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "fuzz/list_model.h"

namespace vorn::fuzz {
namespace {

struct Before {
  bool operator()(const Value& left, const Value& right) const { return compareKeys(left, right) < 0; }
};

struct Entry {
  Value key;  // as it was given last
  Value value;
  std::uint64_t serial = 0;  // of the insertion
};

struct Family {
  const char* name;
  bool isSet;
  bool isSorted;
  bool isSynchronised;
};
constexpr Family kFamilies[] = {{"Map", false, false, false},      {"HashMapSync", false, false, true},
                                {"SortedMap", false, true, false}, {"SortedMapSync", false, true, true},
                                {"HashSet", true, false, false},   {"HashSetSync", true, false, true}};

struct Model {
  const Family* family = &kFamilies[0];
  std::map<Value, Entry, Before> entries;
  std::string keyType;  // recorded, or empty
  std::string valueType;

  [[nodiscard]] std::int64_t size() const { return static_cast<std::int64_t>(entries.size()); }
  // In the order in which the collection lists them.
  [[nodiscard]] std::vector<const Entry*> listed() const {
    std::vector<const Entry*> all;
    for (const auto& [key, entry] : entries) all.push_back(&entry);
    if (!family->isSorted) {
      std::sort(all.begin(), all.end(),
                [](const Entry* left, const Entry* right) { return left->serial < right->serial; });
    }
    return all;
  }
};

std::string shortNameOf(const Value& value) {
  if (value.type == Type::None) return "Object";
  if (value.type == Type::Pair) return "Tuple";
  return isText(value.type) ? "String" : nameOf(value.type);
}

class Keyed {
 public:
  explicit Keyed(Input& input) : input_(input) {
    roots().clear();
    for (std::size_t i = 0; i < kTables; ++i) createIn(i);
  }

  void requireAll() {
    for (std::size_t i = 0; i < kTables; ++i) require("a table at the end", i);
  }

  void create() { createIn(any()); }

  // ---- Changing ----

  void put() {
    const std::size_t at = any();
    const Value key = someKey(at);
    const Value value = rooted(chooseValue(input_, input_.flag() ? Type::Int : Type::None), 1);
    const std::uint8_t which = input_.byte();
    arm(which);
    store(at, key, value, which);
    const char* const what = "put";
    if (key.type == Type::None && !models_[at].family->isSet) {
      return require(what, at, {"NullException", "Map key cannot be null"});
    }
    if (!haveHooksRaised()) insert(models_[at], key, value);
    require(what, at, hookError());
  }

  // Numbers in a row, so that tables grow, all of one type or each of another.
  void putMany() {
    const std::size_t at = any();
    const std::int64_t first = input_.byte();
    const std::size_t count = input_.below(80);
    const bool mixed = input_.flag();
    const Value value = rooted(chooseValue(input_, Type::Int), 1);
    for (std::size_t i = 0; i < count && models_[at].size() < kMostEntries; ++i) {
      Value key;
      key.type = !mixed ? Type::Int : i % 3 == 0 ? Type::Long : i % 3 == 1 ? Type::Double : Type::ULong;
      key.integer = first + static_cast<std::int64_t>(i);
      key.floating = static_cast<double>(key.integer);
      key = rooted(key, 0);
      store(at, key, value, 0);
      insert(models_[at], key, value);
      noteOperation("put");
    }
    require("many puts", at);
  }

  void remove() {
    const std::size_t at = any();
    const Value key = someKey(at);
    arm(input_.byte());
    const bool removed = isSet(at) ? vorn_collections_HashSet_remove(table(at), key.handle)
                                   : vorn_collections_Map_remove(table(at), key.handle);
    const bool expected = !haveHooksRaised() && models_[at].entries.erase(key) != 0;
    requireEqual("remove", removed ? 1 : 0, expected ? 1 : 0);
    require("remove", at, hookError());
  }

  // From the beginning or from the end, until few are left.
  void removeMany() {
    const std::size_t at = any();
    const std::size_t count = input_.below(64);
    const bool fromEnd = input_.flag();
    for (std::size_t i = 0; i < count && !models_[at].entries.empty(); ++i) {
      const std::vector<const Entry*> all = models_[at].listed();
      const Value key = fromEnd ? all.back()->key : all.front()->key;
      roots()[kValueRoots] = key.handle;
      const bool removed = isSet(at) ? vorn_collections_HashSet_remove(table(at), key.handle)
                                     : vorn_collections_Map_remove(table(at), key.handle);
      requireEqual("remove", removed ? 1 : 0, 1);
      models_[at].entries.erase(key);
      noteOperation("remove");
    }
    require("many removals", at);
  }

  void clear() {
    const std::size_t at = any();
    Model& model = models_[at];
    isSet(at) ? vorn_collections_HashSet_clear(table(at)) : vorn_collections_Map_clear(table(at));
    model.entries.clear();
    model.keyType.clear();
    model.valueType.clear();
    require("clear", at);
  }

  void reserve() {
    const std::size_t at = any();
    std::int64_t count = input_.index();
    if (count > 2000) count = input_.byte() * 8;
    isSet(at) ? vorn_collections_HashSet_reserve(table(at), count) : vorn_collections_Map_reserve(table(at), count);
    require("reserve", at);
  }

  // ---- Looking up ----

  void find() {
    const std::size_t at = any();
    const Value key = someKey(at);
    const auto found = models_[at].entries.find(key);
    const std::uint8_t which = input_.byte();
    arm(which / 8);
    if (isSet(at)) {
      const bool member = which % 2 == 0 ? vorn_collections_HashSet_operator_in(table(at), key.handle)
                                         : vorn_collections_HashSet_count(table(at), key.handle) == 1;
      requireEqual("operator_in", member ? 1 : 0, isFound(at, found) ? 1 : 0);
      return require("operator_in", at, hookError());
    }
    void* value = nullptr;
    bool has = false;
    ExpectedError error;
    switch (which % 5) {
      case 0:
        has = vorn_collections_Map_operator_in(table(at), key.handle);
        requireEqual("operator_in", has ? 1 : 0, isFound(at, found) ? 1 : 0);
        return require("operator_in", at, hookError());
      case 1:
        value = vorn_collections_Map__get(table(at), key.handle);
        break;
      case 2:
        has = vorn_collections_Map_tryGet(table(at), key.handle, &roots()[kValueRoots + 2]);
        value = roots()[kValueRoots + 2];
        requireEqual("tryGet", has ? 1 : 0, isFound(at, found) ? 1 : 0);
        break;
      case 3:
        has = isText(key.type) ? tryMapLookupValue(table(at), textOf(key), &roots()[kValueRoots + 2])
                               : tryMapLookupObjectValue(table(at), key.handle, &roots()[kValueRoots + 2]);
        value = roots()[kValueRoots + 2];
        requireEqual("tryMapLookupValue", has ? 1 : 0, isFound(at, found) ? 1 : 0);
        break;
      default:
        value = vorn_collections_Map_operator_index(table(at), key.handle);
        if (key.type != Type::None && !isFound(at, found)) error = {"KeyException", "Key not found"};
        break;
    }
    Value expected = isFound(at, found) ? found->second.value : Value();
    requireValue("a value", value, expected);
    std::vector<ExpectedError> errors;
    if (haveHooksRaised()) errors.push_back(hookError());
    if (error.exceptionClass != nullptr) errors.push_back(error);
    requireErrors("a lookup", errors);
    require("a lookup", at);
  }

  void containsValue() {
    const std::size_t at = any();
    if (isSet(at)) return;
    const Value value = rooted(chooseValue(input_, input_.flag() ? Type::Int : Type::None), 1);
    const bool contains = vorn_collections_Map_containsValue(table(at), value.handle);
    const bool expected = std::any_of(models_[at].entries.begin(), models_[at].entries.end(),
                                      [&](const auto& entry) { return areElementsEqual(entry.second.value, value); });
    requireEqual("containsValue", contains ? 1 : 0, expected ? 1 : 0);
    require("containsValue", at);
  }

  void compare() {
    const std::size_t at = any();
    const std::size_t other = any();
    if (isSet(at) || isSet(other)) return;
    const auto& left = models_[at].entries;
    const auto& right = models_[other].entries;
    const bool equal =
        at == other || (left.size() == right.size() && std::all_of(left.begin(), left.end(), [&](const auto& entry) {
                          const auto found = right.find(entry.first);
                          return found != right.end() && areDeepEqual(entry.second.value, found->second.value);
                        }));
    requireEqual("operator_eq", vorn_collections_Map_operator_eq(table(at), table(other)) ? 1 : 0, equal ? 1 : 0);
    requireEqual("operator_ne", vorn_collections_Map_operator_ne(table(at), table(other)) ? 1 : 0, equal ? 0 : 1);
    require("operator_eq", at);
  }

  // ---- Listing ----

  // A listing is a list to which all were added, with its rules of storage and its errors.
  void list() {
    const std::size_t at = any();
    const bool keys = isSet(at) || input_.flag();
    void* const result = roots()[kResultRoot] = isSet(at) ? vorn_collections_HashSet_items(table(at))
                                                : keys    ? vorn_collections_Map_keys(table(at))
                                                          : vorn_collections_Map_values(table(at));
    ListModel model;
    model.immutable = !isSet(at);
    std::vector<ExpectedError> errors;
    for (const Entry* const entry : models_[at].listed()) {
      const ExpectedError error = model.add(keys ? entry->key : entry->value);
      if (error.exceptionClass != nullptr) errors.push_back(error);
    }
    requireErrors("a listing", errors);
    requireList("a listing", result, model);
    require("a listing", at);
  }

  void items() {
    const std::size_t at = any();
    if (isSet(at)) return;
    const Model& model = models_[at];
    void* const result = roots()[kResultRoot] = vorn_collections_Map_items(table(at));
    const std::vector<const Entry*> all = model.listed();
    requireEqual("the number of items", vorn_collections_ImmutableList_size(result), model.size());
    std::string valueType = model.valueType.empty() ? "Object" : model.valueType;
    if (!all.empty()) {
      const std::string first = shortNameOf(all[0]->value);
      const bool agree =
          std::all_of(all.begin(), all.end(), [&](const Entry* entry) { return shortNameOf(entry->value) == first; });
      if (agree) valueType = first;
    }
    const std::string type = "vorn.collections.Tuple<" + model.keyType + "," + valueType + ">";
    for (std::size_t i = 0; i < all.size(); ++i) {
      void* const tuple = vorn_collections_ImmutableList_operator_index(result, static_cast<long long>(i));
      requireSame("the type of an item", vorn_type_name(tuple), type);
      Value key = all[i]->key;
      Value value = all[i]->value;
      requireEqual("the size of an item", vorn_collections_Tuple_size(tuple), 2);
      requireValue("a key", vorn_collections_Tuple_operator_index(tuple, 0), key);
      requireValue("a value", vorn_collections_Tuple_operator_index(tuple, 1), value);
    }
    require("items", at);
  }

  void elementAt() {
    const std::size_t at = any();
    if (!isSet(at)) return;
    std::int64_t index = input_.index();
    void* const element = vorn_collections_HashSet_operator_index(table(at), index);
    if (index < 0) index += models_[at].size();
    if (index < 0 || index >= models_[at].size()) {
      requireEqual("no element", element == nullptr ? 1 : 0, 1);
      return require("operator_index", at, indexOutOfBounds());
    }
    Value expected = models_[at].listed()[static_cast<std::size_t>(index)]->key;
    requireValue("operator_index", element, expected);
    require("operator_index", at);
  }

 private:
  static constexpr std::size_t kTables = 4;
  static constexpr std::size_t kResultRoot = kTables;
  static constexpr std::size_t kValueRoots = kTables + 1;
  static constexpr std::int64_t kMostEntries = 600;

  static RootedSlots<8>& roots() {
    static RootedSlots<8> made;
    return made;
  }
  static void* table(std::size_t at) { return roots()[at]; }
  std::size_t any() { return input_.below(kTables); }
  [[nodiscard]] bool isSet(std::size_t at) const { return models_[at].family->isSet; }
  template <class Found>
  [[nodiscard]] bool isFound(std::size_t at, Found found) const {
    return !haveHooksRaised() && found != models_[at].entries.end();
  }

  void createIn(std::size_t at) {
    models_[at] = Model();
    models_[at].family = &kFamilies[input_.below(std::size(kFamilies))];
    roots()[at] = vorn_object_new(models_[at].family->name);
    if (roots()[at] == nullptr) std::abort();
    require("a new table", at);
  }

  // In one of four cases some call of a hook raises.
  static void arm(std::uint8_t which) { armHooks(which % 4 == 3 ? which / 4 % 8 : -1); }
  static ExpectedError hookError() {
    if (!haveHooksRaised()) return {};
    return {"HookException", "a hook raised"};
  }

  Value rooted(Value value, std::size_t root) {
    value.handle = roots()[kValueRoots + root] = make(value);
    return value;
  }

  // One that is there, or any; sets take null as well.
  Value someKey(std::size_t at) {
    const std::uint8_t which = input_.byte();
    const auto& entries = models_[at].entries;
    if (which < 80 && !entries.empty()) {
      auto entry = entries.begin();
      std::advance(entry, which % std::min<std::size_t>(entries.size(), 80));
      roots()[kValueRoots] = entry->second.key.handle;
      return entry->second.key;
    }
    if (which >= 250) return {};
    if (which % 8 == 0) return rooted(chooseValue(input_, Type::Item), 0);
    return rooted(chooseValue(input_, which % 2 == 0 ? Type::None : choosePrimitive(input_)), 0);
  }

  void store(std::size_t at, const Value& key, const Value& value, std::uint8_t which) {
    if (isSet(at)) return vorn_collections_HashSet_add(table(at), key.handle);
    switch (which / 64) {
      case 0:
        return vorn_collections_Map__set(table(at), key.handle, value.handle);
      case 1:
        return vorn_collections_Map_operator_index_eq(table(at), key.handle, value.handle);
      default:
        return vorn_collections_Map_put(table(at), key.handle, value.handle);
    }
  }

  void insert(Model& model, const Value& key, const Value& value) {
    const auto [entry, isNew] = model.entries.try_emplace(key);
    if (isNew) entry->second.serial = ++serial_;
    entry->second.key = key;
    entry->second.value = model.family->isSet ? Value() : value;
    if (model.family->isSet) return;
    record(model.keyType, shortNameOf(key));
    record(model.valueType, shortNameOf(value));
  }
  static void record(std::string& recorded, const std::string& name) {
    if (recorded.empty()) {
      recorded = name;
    } else if (recorded != name) {
      recorded = "Object";
    }
  }

  void require(const char* what, std::size_t at, const ExpectedError& error = {}) {
    armHooks(-1);
    if (error.exceptionClass == nullptr) {
      requireNoError(what);
    } else {
      requireErrors(what, {&error, 1});
    }
    const Model& model = models_[at];
    std::int64_t size = -1;
    vorn_field_get_integer(table(at), "size", &size);
    requireEqual("the field of the size", size, model.size());
    requireEqual("size", isSet(at) ? vorn_collections_HashSet_size(table(at)) : vorn_collections_Map_size(table(at)),
                 model.size());
    const std::vector<const Entry*> all = model.listed();
    std::size_t next = 0;
    const auto requireEntry = [&](void* key, void* value) {
      if (next == all.size()) diverge(what, "more entries", std::to_string(all.size()));
      Value expectedKey = all[next]->key;
      Value expectedValue = all[next]->value;
      requireValue(what, key, expectedKey);
      requireValue(what, value, expectedValue);
      ++next;
    };
    if (isSet(at)) {
      const SetData& set = *getSetData(table(at));
      requireSame(what, collections::validateSetData(set), "");
      set.forEach([&](const auto&, void* element) { requireEntry(element, nullptr); });
    } else {
      const MapData& map = *getMapData(table(at));
      requireSame(what, collections::validateMapData(map), "");
      requireSame("the recorded type of keys", map.keyType.get(), model.keyType);
      requireSame("the recorded type of values", map.valueType.get(), model.valueType);
      map.forEach([&](const auto&, const NativeMapEntry& entry) { requireEntry(entry.key, entry.value); });
    }
    requireEqual("the number of entries", static_cast<std::int64_t>(next), model.size());
  }

  Input& input_;
  std::array<Model, kTables> models_;
  std::uint64_t serial_ = 0;
};

constexpr Operation<Keyed> kOperations[] = {
    {"create", &Keyed::create},
    {"put", &Keyed::put},
    {"put", &Keyed::put},
    {"put", &Keyed::put},
    {"put many", &Keyed::putMany},
    {"remove", &Keyed::remove},
    {"remove", &Keyed::remove},
    {"remove many", &Keyed::removeMany},
    {"clear", &Keyed::clear},
    {"reserve", &Keyed::reserve},
    {"find", &Keyed::find},
    {"find", &Keyed::find},
    {"find", &Keyed::find},
    {"containsValue", &Keyed::containsValue},
    {"operator_eq", &Keyed::compare},
    {"listing", &Keyed::list},
    {"items", &Keyed::items},
    {"operator_index", &Keyed::elementAt},
};

}  // namespace
}  // namespace vorn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return vorn::fuzz::runInput(data, size, vorn::fuzz::kOperations);
}
