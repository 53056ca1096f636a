// Lets user code do what nobody meant while natives run it: hooks that change the very collections that call them, that
// raise, throw, lie, look up, collect and keep what they see. No model knows what comes of that; every record must be
// sound, every result within bounds, and every lock free.
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include <cstdlib>
#include <exception>
#include <stdexcept>

#include "collections/array/array_data.h"
#include "collections/array/array_validation.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_data.h"
#include "collections/core/storage/list_validation.h"
#include "collections/display/display_guard.h"
#include "collections/keyed/keyed_validation.h"
#include "fuzz/values.h"

namespace vorn::fuzz {
namespace {

constexpr const char* kLists[] = {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync"};
constexpr const char* kTables[] = {"Map", "HashMapSync", "SortedMap", "SortedMapSync"};
constexpr int kDeepest = 3;
constexpr long long kMostElements = 60;

class Rogues;
Rogues* active = nullptr;

class Rogues {
 public:
  explicit Rogues(Input& input) : input_(input) {
    active = this;
    roots().clear();
    for (std::size_t i = 0; i < 4; ++i) list(i) = vorn_object_new(kLists[i]);
    for (std::size_t i = 0; i < 4; ++i) map(i) = vorn_object_new(kTables[i]);
    for (std::size_t i = 0; i < 2; ++i) set(i) = vorn_object_new(i == 0 ? "HashSet" : "HashSetSync");
    for (std::size_t i = 0; i < 2; ++i) {
      array(i) = vorn_object_new(i == 0 ? "Array" : "ArraySync");
      vorn_collections_Array_ctor(array(i), 6);
    }
  }
  ~Rogues() { active = nullptr; }
  Rogues(const Rogues&) = delete;
  Rogues& operator=(const Rogues&) = delete;

  // ---- What a hook does beside what it should ----

  // Gives whether the hook shall lie.
  bool misbehave(void* self, void* other) {
    const std::uint8_t what = input_.byte();
    if (depth_ >= kDeepest) return what % 2 == 1;
    ++depth_;
    struct Leave {
      int& depth;
      ~Leave() { --depth; }
    } const leave{depth_};
    switch (what % 24) {
      case 1:
      case 2:
        return true;
      case 3:
        noteFault();
        vorn_raise("HookException", "as it likes");
        return input_.flag();
      case 4:
        noteFault();
        throw std::runtime_error("out of a hook");
      case 5:
        vorn_heap_collect();
        return false;
      case 6:
        roots()[kKept + what / 24 % 4] = input_.flag() ? self : other;
        return false;
      case 7:
      case 8:
        change();
        return input_.flag();
      case 9:
        look();
        return false;
      case 10:
        storeMany();
        return false;
      case 11:
      case 12:
        vorn_collections_ArrayList_clear(list(what / 24 % 4));
        return false;
      case 13:
        vorn_collections_ArrayList_removeAt(list(what / 24 % 4), -1);
        return true;
      default:
        return false;
    }
  }

  // ---- Operations ----

  void change() {
    void* const chosen = list(input_.below(4));
    switch (input_.below(16)) {
      case 0:
        return vorn_collections_ArrayList_clear(chosen);
      case 1:
        return vorn_collections_ArrayList_removeAt(chosen, input_.index());
      case 2:
        return vorn_collections_ArrayList_addAll(chosen, small(list(input_.below(4))));
      case 3:
        return vorn_collections_ArrayList_addAt(chosen, input_.below(6), value());
      case 4:
        return vorn_collections_Map_clear(map(input_.below(4)));
      case 5:
        vorn_collections_Map_remove(map(input_.below(4)), value());
        return;
      case 6:
        return vorn_collections_HashSet_clear(set(input_.below(2)));
      case 7:
        vorn_collections_HashSet_remove(set(input_.below(2)), value());
        return;
      case 8:
        return vorn_collections_Array_ctor(array(input_.below(2)), static_cast<long long>(input_.below(20)));
      case 9:
        return vorn_collections_Array_operator_index_eq(array(input_.below(2)), input_.index(), value());
      case 10:
        return vorn_collections_Map_reserve(map(input_.below(4)), input_.byte());
      case 11:
        vorn_collections_ArrayList_reverse(chosen);
        return vorn_collections_ArrayList_shuffle(chosen);
      case 12:
        return vorn_collections_HashSet_reserve(set(input_.below(2)), input_.byte());
      default:
        return store();
    }
  }

  void store() {
    switch (input_.below(4)) {
      case 0:
        return vorn_collections_ArrayList_add(small(list(input_.below(4))), value());
      case 1: {
        void* const key = value();
        return vorn_collections_Map_put(map(input_.below(4)), key != nullptr ? key : self(), key);
      }
      case 2:
        return vorn_collections_HashSet_add(set(input_.below(2)), value());
      default:
        return vorn_collections_Array_operator_index_eq(array(input_.below(2)), input_.index(), value());
    }
  }

  void storeMany() {
    const std::size_t count = input_.below(30);
    for (std::size_t i = 0; i < count; ++i) store();
  }

  void look() {
    void* const wanted = value();
    switch (input_.below(8)) {
      case 0:
        vorn_collections_Map__get(map(input_.below(4)), wanted);
        return;
      case 1:
        vorn_collections_HashSet_operator_in(set(input_.below(2)), wanted);
        return;
      case 2:
        vorn_collections_Map_containsValue(map(input_.below(4)), wanted);
        return;
      case 3: {
        void* const chosen = list(input_.below(4));
        const long long at = vorn_collections_ArrayList_indexOf(chosen, wanted, input_.index());
        if (at < -1) diverge("indexOf", std::to_string(at), "-1 or an index");
        return;
      }
      case 4:
        vorn_collections_ArrayList_count(list(input_.below(4)), wanted);
        return;
      case 5:
        vorn_collections_Array_count(array(input_.below(2)), wanted);
        return;
      case 6:
        vorn_collections_ArrayList_operator_in(list(input_.below(4)), wanted);
        return;
      default:
        vorn_collections_Map_operator_in(map(input_.below(4)), wanted);
        return;
    }
  }

  void searchList() {
    void* const chosen = list(input_.below(4));
    void* const wanted = value();
    switch (input_.below(6)) {
      case 0:
        vorn_collections_ArrayList_remove(chosen, wanted);
        return;
      case 1:
        requireIndex(vorn_collections_ArrayList_lastIndexOf(chosen, wanted, input_.index()));
        return;
      case 2:
        requireIndex(vorn_collections_ImmutableList_indexOf(chosen, wanted, 0));
        return;
      case 3:
        requireIndex(vorn_collections_ImmutableList_lastIndexOf(chosen, wanted, -1));
        return;
      case 4:
        requireIndex(vorn_collections_Array_indexOf(array(input_.below(2)), wanted, input_.index()));
        return;
      default:
        requireIndex(vorn_collections_Array_lastIndexOf(array(input_.below(2)), wanted, input_.index()));
        return;
    }
  }

  void sort() {
    switch (input_.below(5)) {
      case 0:
        return vorn_collections_ArrayList_sort(list(input_.below(4)));
      case 1:
        result() = vorn_collections_ArrayList_sortNew(list(input_.below(4)));
        return;
      case 2:
        result() = vorn_collections_ImmutableList_sortNew(list(input_.below(4)));
        return;
      case 3:
        return vorn_collections_Array_sort(array(input_.below(2)));
      default:
        result() = vorn_collections_Array_sortNew(array(input_.below(2)));
        return;
    }
  }

  void removeKey() {
    void* const key = value();
    if (input_.flag()) {
      vorn_collections_Map_remove(map(input_.below(4)), key);
    } else {
      vorn_collections_HashSet_remove(set(input_.below(2)), key);
    }
  }

  void list() {
    switch (input_.below(4)) {
      case 0:
        result() = vorn_collections_Map_keys(map(input_.below(4)));
        return;
      case 1:
        result() = vorn_collections_Map_values(map(input_.below(4)));
        return;
      case 2:
        result() = vorn_collections_Map_items(map(input_.below(4)));
        return;
      default:
        result() = vorn_collections_HashSet_items(set(input_.below(2)));
        return;
    }
  }

  void compare() {
    switch (input_.below(4)) {
      case 0:
        vorn_collections_Map_operator_eq(map(input_.below(4)), map(input_.below(4)));
        return;
      case 1:
        vorn_collections_Array_operator_ne(array(0), array(1));
        return;
      case 2:
        vorn_equals(list(input_.below(4)), list(input_.below(4)));
        return;
      default:
        vorn_equals(set(0), set(1));
        return;
    }
  }

  void show() {
    switch (input_.below(7)) {
      case 0:
        vorn_collections_ArrayList_toString(list(input_.below(4)));
        return;
      case 1:
        vorn_collections_Map_toString(map(input_.below(4)));
        return;
      case 2:
        vorn_collections_HashSet_toString(set(input_.below(2)));
        return;
      case 3:
        vorn_collections_Array_toString(array(input_.below(2)));
        return;
      case 4:
        vorn_collections_ArrayList_join(list(input_.below(4)), "-");
        return;
      case 5:
        vorn_collections_Array_join(array(input_.below(2)), nullptr);
        return;
      default:
        vorn_collections_ImmutableList_toString(list(input_.below(4)));
        return;
    }
  }

  void assignSlice() {
    void* const chosen = list(input_.below(4));
    vorn_collections_ArrayList_sliceAssign(chosen, input_.index(), input_.index(), 1, chosen, chosen,
                                           small(list(input_.below(4))));
  }

  // Runs one operation, whatever it raises or throws.
  void guarded(void (Rogues::*operation)()) {
    try {
      (this->*operation)();
    } catch (const std::exception&) {  // out of a hook, or a display nested too deeply
    }
    depth_ = 0;
    vorn_errors_clear();
    requireSound();
  }

 private:
  static constexpr std::size_t kResult = 12;
  static constexpr std::size_t kKept = 13;
  static constexpr std::size_t kArguments = kKept + 4;
  static constexpr std::size_t kRoots = kArguments + 2 * (kDeepest + 1);

  // Lists, maps, sets and arrays, a result, what hooks keep, and arguments.
  static RootedSlots<kRoots>& roots() {
    static RootedSlots<kRoots> made;
    return made;
  }
  static void*& list(std::size_t at) { return roots()[at]; }
  static void*& map(std::size_t at) { return roots()[4 + at]; }
  static void*& set(std::size_t at) { return roots()[8 + at]; }
  static void*& array(std::size_t at) { return roots()[10 + at]; }
  static void*& result() { return roots()[kResult]; }

  // A list that has grown enough is emptied first.
  static void* small(void* chosen) {
    if (vorn_collections_ArrayList_size(chosen) > kMostElements) vorn_collections_ArrayList_clear(chosen);
    return chosen;
  }

  // What is given to natives stays rooted until they return: each depth of hooks has slots of its own.
  void*& argument() {
    ++arguments_;
    return roots()[kArguments + static_cast<std::size_t>(depth_) * 2 + arguments_ % 2];
  }

  void* self() {
    void* const rogue = argument() = vorn_object_new("fuzz.Rogue");
    vorn_field_set_integer(rogue, "n", input_.byte() % 8);
    return rogue;
  }

  // Mostly an instance whose hooks misbehave; sometimes a collection, or what a hook has kept.
  void* value() {
    const std::uint8_t which = input_.byte();
    if (which < 180) return self();
    if (which < 190) return argument() = roots()[kKept + which % 4];
    if (which < 200) return list(which % 4);
    if (which < 206) return map(which % 4);
    const Value plain = chooseValue(input_, Type::None);
    return argument() = make(plain);
  }

  static void requireIndex(long long index) {
    if (index < -1 || index > 100000) diverge("an index", std::to_string(index), "-1 or one within bounds");
  }

  static void requireReadable(void* handle) {
    if (handle != nullptr && vorn_type_name(handle) == nullptr) diverge("an element", "no value", "a value");
  }

  static void requireSound() {
    for (std::size_t i = 0; i < 4; ++i) {
      requireSame("a list", collections::validateListData(*getListData(list(i))), "");
      const long long size = vorn_collections_ArrayList_size(list(i));
      for (long long at = 0; at < size; ++at) requireReadable(vorn_collections_ArrayList_operator_index(list(i), at));
      requireSame("a map", collections::validateMapData(*getMapData(map(i))), "");
    }
    for (std::size_t i = 0; i < 2; ++i) {
      requireSame("a set", collections::validateSetData(*getSetData(set(i))), "");
      requireSame("an array", collections::validateArrayData(*getArrayData(array(i))), "");
    }
    requireEqual("the number of marks of displays", static_cast<std::int64_t>(gCollectionDisplayStack.size()), 0);
    requireNoError("reading what is there");
  }

  Input& input_;
  int depth_ = 0;
  std::size_t arguments_ = 0;
};

std::int64_t numberOfRogue(void* handle) {
  std::int64_t number = 0;
  vorn_field_get_integer(handle, "n", &number);
  return number;
}

bool rogueEquals(void* self, void* other, void*) {
  const bool lies = active->misbehave(self, other);
  return (numberOfRogue(self) == numberOfRogue(other)) != lies;
}

int compareRogues(void* self, void* other, bool* comparable, void*) {
  const bool lies = active->misbehave(self, other);
  const std::int64_t difference = numberOfRogue(self) - numberOfRogue(other);
  *comparable = !lies || difference % 2 == 0;
  return static_cast<int>(lies ? -difference : difference);
}

std::uint64_t hashRogue(void* self, void*) {
  const bool lies = active->misbehave(self, self);
  return static_cast<std::uint64_t>(numberOfRogue(self)) / 2 + (lies ? 1 : 0);
}

void* showRogue(void* self, void*) { return active->misbehave(self, self) ? nullptr : vorn_text_new("rogue"); }

void defineRogues() {
  static const bool defined = [] {
    const vorn_field_definition fields[] = {{"n", VORN_FIELD_INTEGER}};
    vorn_class_definition definition = {};
    definition.struct_size = sizeof(definition);
    definition.name = "fuzz.Rogue";
    definition.fields = fields;
    definition.field_count = 1;
    definition.equals = rogueEquals;
    definition.compare = compareRogues;
    definition.hash = hashRogue;
    definition.to_string = showRogue;
    return vorn_class_define(&definition) != 0;
  }();
  if (!defined) std::abort();
}

// Each operation of the table runs guarded.
class Guarded {
 public:
  explicit Guarded(Rogues& rogues) : rogues_(rogues) {}
  template <void (Rogues::*kOperation)()>
  void run() {
    rogues_.guarded(kOperation);
  }

 private:
  Rogues& rogues_;
};

constexpr Operation<Guarded> kOperations[] = {
    {"change", &Guarded::run<&Rogues::change>},
    {"store", &Guarded::run<&Rogues::store>},
    {"store many", &Guarded::run<&Rogues::storeMany>},
    {"look", &Guarded::run<&Rogues::look>},
    {"look", &Guarded::run<&Rogues::look>},
    {"search a list", &Guarded::run<&Rogues::searchList>},
    {"sort", &Guarded::run<&Rogues::sort>},
    {"remove a key", &Guarded::run<&Rogues::removeKey>},
    {"list", &Guarded::run<&Rogues::list>},
    {"compare", &Guarded::run<&Rogues::compare>},
    {"show", &Guarded::run<&Rogues::show>},
    {"sliceAssign", &Guarded::run<&Rogues::assignSlice>},
};

}  // namespace
}  // namespace vorn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vorn::fuzz::startRuntime();
  vorn::fuzz::defineValueClasses();
  vorn::fuzz::defineRogues();
  vorn::fuzz::beginInput();
  vorn::fuzz::Input input(data, size);
  vorn::fuzz::Rogues rogues(input);
  vorn::fuzz::Guarded guarded(rogues);
  vorn::fuzz::runOperations(guarded, input, vorn::fuzz::kOperations);
  return 0;
}
