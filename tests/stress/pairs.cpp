// Every pair of natives that take two collections, from two threads in opposite directions: while one thread calls the
// first with a and b, the other calls the second with b and a. They must end. Under ThreadSanitizer a pair that takes
// two locks in either order is reported even where the threads do not meet.
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include <latch>
#include <thread>

#include "tests/stress/lists.h"
#include "tests/stress/mix.h"
#include "tests/support/collections.h"

namespace vorn::tests::stress {

namespace {

// A native, the families that it is for, and a call with the collection that it is about and another one.
struct BulkNative {
  const char* name;
  Family family;
  void (*call)(void* collection, void* other);
};

// A fresh collection is made where the native is a constructor.
template <class Construct>
void constructFrom(const char* typeName, Construct construct, void* source) {
  if (void* const fresh = vorn_object_new(typeName)) construct(fresh, source);
}

const BulkNative kBulkNatives[] = {
    {"ArrayList_addAll", Family::List, vorn_collections_ArrayList_addAll},
    {"ArrayList_addAllAt", Family::List,
     [](void* list, void* other) { vorn_collections_ArrayList_addAllAt(list, 0, other); }},
    {"ArrayList_sliceAssign", Family::List,
     [](void* list, void* other) { vorn_collections_ArrayList_sliceAssign(list, 0, 2, 1, list, list, other); }},
    {"ArrayList_sliceAssign", Family::List,
     [](void* list, void* other) { vorn_collections_ArrayList_sliceAssign(list, 0, 0, -1, nullptr, nullptr, other); }},
    {"ArrayList_concat", Family::List,
     [](void* list, void* other) {
       // With anything but a list it ends the process.
       const bool both =
           vorn_is_instance(other, "ArrayListSync") != 0 || vorn_is_instance(other, "LinkedListSync") != 0;
       vorn_collections_ArrayList_concat(list, both ? other : list);
     }},
    {"ImmutableList_ctor", Family::List,
     [](void*, void* other) { constructFrom("ImmutableList", vorn_collections_ImmutableList_ctor, other); }},
    {"Tuple_ctor", Family::List,
     [](void*, void* other) { constructFrom("Tuple", vorn_collections_Tuple_ctor, other); }},
    {"vorn_equals", Family::List, [](void* list, void* other) { vorn_equals(list, other); }},
    {"ArrayList_sort", Family::List, [](void* list, void*) { vorn_collections_ArrayList_sort(list); }},
    {"ArrayList_sortNew", Family::List, [](void* list, void*) { vorn_collections_ArrayList_sortNew(list); }},
    {"ArrayList_slice", Family::List,
     [](void* list, void*) { vorn_collections_ArrayList_slice(list, 0, 0, 2, nullptr, nullptr); }},
    {"ArrayList_repeat", Family::List, [](void* list, void*) { vorn_collections_ArrayList_repeat(list, 2); }},
    {"ArrayList_reverseNew", Family::List, [](void* list, void*) { vorn_collections_ArrayList_reverseNew(list); }},
    {"ArrayList_toString", Family::List, [](void* list, void*) { vorn_collections_ArrayList_toString(list); }},
    {"ArrayList_join", Family::List, [](void* list, void*) { vorn_collections_ArrayList_join(list, ","); }},
    {"ArrayList_count", Family::List, [](void* list, void* other) { vorn_collections_ArrayList_count(list, other); }},
    {"ArrayList_remove", Family::List, [](void* list, void* other) { vorn_collections_ArrayList_remove(list, other); }},
    {"Array_copyCtor", Family::Array, vorn_collections_Array_copyCtor},
    {"Array_sliceAssign", Family::Array,
     [](void* array, void* other) { vorn_collections_Array_sliceAssign(array, 0, 0, 1, nullptr, nullptr, other); }},
    {"Array_concat", Family::Array, [](void* array, void* other) { vorn_collections_Array_concat(array, other); }},
    {"Array_operator_eq", Family::Array,
     [](void* array, void* other) { vorn_collections_Array_operator_eq(array, other); }},
    {"Array_operator_ne", Family::Array,
     [](void* array, void* other) { vorn_collections_Array_operator_ne(array, other); }},
    {"Array_toString", Family::Array, [](void* array, void*) { vorn_collections_Array_toString(array); }},
    {"Array_sortNew", Family::Array, [](void* array, void*) { vorn_collections_Array_sortNew(array); }},
    {"Map_operator_eq", Family::Map, [](void* map, void* other) { vorn_collections_Map_operator_eq(map, other); }},
    {"Map_operator_ne", Family::Map, [](void* map, void* other) { vorn_collections_Map_operator_ne(map, other); }},
    {"Map_put", Family::Map,
     [](void* map, void* other) {
       vorn_collections_Map_put(map, other, other);
       vorn_collections_Map_remove(map, other);
     }},
    {"Map_containsValue", Family::Map, [](void* map, void* other) { vorn_collections_Map_containsValue(map, other); }},
    {"Map_items", Family::Map, [](void* map, void*) { vorn_collections_Map_items(map); }},
    {"Map_toString", Family::Map, [](void* map, void*) { vorn_collections_Map_toString(map); }},
    {"vorn_equals", Family::Set, [](void* set, void* other) { vorn_equals(set, other); }},
    {"HashSet_add", Family::Set,
     [](void* set, void* other) {
       vorn_collections_HashSet_add(set, other);
       vorn_collections_HashSet_remove(set, other);
     }},
    {"HashSet_items", Family::Set, [](void* set, void*) { vorn_collections_HashSet_items(set); }},
    {"HashSet_toString", Family::Set, [](void* set, void*) { vorn_collections_HashSet_toString(set); }},
};

// The one pair for which docs/gc-and-locks.md says so.
bool mayDeadlock(const BulkNative& first, const BulkNative& second) {
  return first.call == vorn_collections_Array_copyCtor && second.call == vorn_collections_Array_copyCtor;
}

const char* typeOf(Family family, bool other) {
  switch (family) {
    case Family::List:
      return other ? "LinkedListSync<Int>" : "ArrayListSync<Int>";
    case Family::Array:
      return "ArraySync<Int>";
    case Family::Map:
      return other ? "SortedMapSync" : "HashMapSync";
    default:
      return "HashSetSync";
  }
}

// Gives a collection three numbers and nothing else.
void fill(Family family, void* collection) {
  for (int i = 0; i < 3; ++i) {
    if (family == Family::List) vorn_collections_ArrayList_addInt(collection, i);
    if (family == Family::Array) vorn_collections_Array_setInt(collection, i, i);
    if (family == Family::Map) vorn_collections_Map_put(collection, boxed(i), boxed(i));
    if (family == Family::Set) vorn_collections_HashSet_add(collection, boxed(i));
  }
}

class Meeting {
 public:
  Meeting(const BulkNative& first, const BulkNative& second, bool other)
      : natives_{&first, &second},
        collections_{Shared(typeOf(first.family, other)), Shared(typeOf(second.family, !other))} {
    for (int which = 0; which < 2; ++which) {
      const Family family = natives_[which]->family;
      if (family == Family::Array) vorn_collections_Array_ctor(collections_[which], 3);
      fill(family, collections_[which]);
    }
  }

  // One thread's calls of its native with its collection and the other's.
  void call(int which, int times, Progress& progress) {
    const BulkNative& native = *natives_[which];
    void* const mine = collections_[which];
    for (int i = 0; i < times; ++i) {
      progress.step(which, native.name);
      native.call(mine, collections_[1 - which]);
      // A value or a source may be refused, which is tested elsewhere.
      vorn_errors_clear();
      if (native.family == Family::List && vorn_collections_ArrayList_size(mine) > 16) {
        vorn_collections_ArrayList_clear(mine);
        fill(native.family, mine);
      }
      if (native.family == Family::Array && vorn_collections_Array_size(mine) > 16) {
        vorn_collections_Array_ctor(mine, 3);
      }
    }
  }

  void finish() const {
    for (const int which : {0, 1}) {
      for (const CollectionClass& type : kCollectionClasses) {
        if (vorn_is_instance(collections_[which], type.name) == 0 || type.family != natives_[which]->family) continue;
        const std::string fault = faultOf(type, collections_[which]);
        if (!fault.empty()) diverge(std::string(natives_[which]->name) + ": " + fault);
      }
    }
  }

 private:
  const BulkNative* natives_[2];
  Shared collections_[2];
};

// All pairs in rounds of a few calls each, until there is no time left or enough was done; at least one round.
Figures runPairs(const Limits& limits) {
  const Deadline end(limits.seconds);
  constexpr int kTimes = 20;
  Figures figures;
  const std::uint64_t before = divergences();
  Progress progress;
  do {
    for (const bool other : {false, true}) {
      for (const BulkNative& first : kBulkNatives) {
        for (const BulkNative* second = &first; second != std::end(kBulkNatives); ++second) {
          if (mayDeadlock(first, *second)) continue;
          Meeting meeting(first, *second, other);
          std::latch start(2);
          const auto work = [&](int which) {
            vorn_thread_attach();
            start.arrive_and_wait();
            meeting.call(which, kTimes, progress);
          };
          std::thread beside([&] { work(1); });
          work(0);
          beside.join();
          meeting.finish();
          figures.operations += 2 * kTimes;
        }
      }
      vorn_heap_collect();
      ++figures.collections;
    }
  } while (!end.passed() && figures.operations < limits.operations);
  figures.divergences = divergences() - before;
  return figures;
}

}  // namespace

Topic pairsTopic() {
  return {"pairs", runPairs, [] {
            std::vector<std::string> names;
            for (const BulkNative& native : kBulkNatives) names.emplace_back(native.name);
            return names;
          }};
}

}  // namespace vorn::tests::stress
