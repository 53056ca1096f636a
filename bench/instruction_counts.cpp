// Calls natives for tools/count_instructions, which has callgrind count what each call takes. Prints nothing; under no
// tool it only shows that nothing fails.
//
// The counts are of the native and all that it calls, of the call through the shared library, and of the loop around it:
// some five instructions.

#include <valgrind/callgrind.h>
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include <string>

#include "bench/native_support.h"
#include "collections/core/port/roots.h"

namespace vorn::bench {

namespace {

constexpr int kCalls = 1000;

// One line of the table: call(i) is counted for the numbers below kCalls. Calls before, `warmUp`, leave nothing to be
// done the first time.
template <class WarmUp, class Call>
[[gnu::noinline]] void count(const char* name, WarmUp warmUp, Call call) {
  warmUp();
  CALLGRIND_ZERO_STATS;
  for (int i = 0; i < kCalls; ++i) call(i);
  CALLGRIND_DUMP_STATS_AT(name);
  natives::requireNoErrors();
}

// The same where all calls are alike.
template <class Call>
void count(const char* name, Call call) {
  count(
      name,
      [&] {
        for (int i = 0; i < kCalls; ++i) call(i);
      },
      call);
}

void* intList() {
  void* const list = vorn_object_new("ArrayList<Int>");
  natives::fillInts(list, kCalls);
  return list;
}

// As many keys as there are calls. make(number) makes one.
class Keys {
 public:
  template <class Make>
  explicit Keys(Make make) {
    for (int i = 0; i < kCalls; ++i) keys_->push_back(make(i));
  }
  void* operator[](int index) { return (*keys_)[static_cast<std::size_t>(index)]; }

 private:
  collections::HandleVector keys_;
};

void* textKey(const char* start, int number) {
  const std::string text = start + std::to_string(number);
  return vorn_string_new(text.data(), text.size());
}

void countLists() {
  const Handle list(intList());
  const Handle boxes(vorn_object_new("ArrayList<Object>"));
  natives::fillBoxes(boxes, kCalls);
  const Handle doubles(vorn_object_new("ArrayList<Double>"));
  natives::fillDoubles(doubles, kCalls);
  const Handle shared(vorn_collections_ArrayListSync_intLiteral0());
  const Handle box(vorn_box_int(-1));
  const Handle absent(vorn_box_int(-2));
  ListData* const data = vorn_collections_ArrayList_dataHandle(list);

  count("ArrayList_size", [&](int) { keep(vorn_collections_ArrayList_size(list)); });
  count("ArrayList_getInt", [&](int i) { keep(vorn_collections_ArrayList_getInt(list, i)); });
  count("ArrayList_getIntFromData", [&](int i) { keep(vorn_collections_ArrayList_getIntFromData(data, i)); });
  count("ArrayList_getDouble", [&](int i) { keep(vorn_collections_ArrayList_getDouble(doubles, i)); });
  count("ArrayList_operator_index, boxed", [&](int i) { keep(vorn_collections_ArrayList_operator_index(boxes, i)); });
  count("ArrayList_operator_index, new box", [&](int i) { keep(vorn_collections_ArrayList_operator_index(list, i)); });
  count("ArrayList_operator_index_eq, unboxed",
        [&](int i) { vorn_collections_ArrayList_operator_index_eq(list, i, box); });
  count("ArrayList_operator_index_eq, boxed",
        [&](int i) { vorn_collections_ArrayList_operator_index_eq(boxes, i, box); });
  count("ArrayList_operator_in, 1,000 Ints", [&](int) { keep(vorn_collections_ArrayList_operator_in(list, absent)); });
  count("ArrayList_sumI64Fast, 1,000 Ints", [&](int) { keep(vorn_collections_ArrayList_sumI64Fast(list)); });
  count("ArrayList_slice, 1,000 Ints",
        [&](int) { keep(vorn_collections_ArrayList_slice(list, 0, 0, 1, nullptr, nullptr)); });
  count("ArrayList_intLiteral0", [&](int) { keep(vorn_collections_ArrayList_intLiteral0()); });

  // Room is made first, so that no call grows the list.
  const auto makeRoom = [](const Handle& target) {
    return [&target] { vorn_collections_ArrayList_reserve(target, vorn_collections_ArrayList_size(target) + kCalls); };
  };
  count("ArrayList_addInt", makeRoom(list), [&](int i) { vorn_collections_ArrayList_addInt(list, i); });
  count("ArrayList_addPrimitiveI64", makeRoom(list),
        [&](int i) { vorn_collections_ArrayList_addPrimitiveI64(list, i, "Int"); });
  count("ArrayList_add, unboxed", makeRoom(list), [&](int) { vorn_collections_ArrayList_add(list, box); });
  count("ArrayList_add, boxed", makeRoom(boxes), [&](int) { vorn_collections_ArrayList_add(boxes, box); });
  count("ArrayListSync, addInt", makeRoom(shared), [&](int i) { vorn_collections_ArrayList_addInt(shared, i); });
  count(
      "ArrayList_removeAt, last", [] {},
      [&](int) { vorn_collections_ArrayList_removeAt(list, vorn_collections_ArrayList_size(list) - 1); });
}

void countArraysAndTuples() {
  const Handle array(vorn_object_new("Array<Int>"));
  vorn_collections_Array_ctor(array, kCalls);
  const Handle tuple(vorn_object_new("Tuple<Int,Int>"));
  const Handle items(intList());
  vorn_collections_Tuple_ctor(tuple, items);
  const Handle constants(vorn_object_new("ImmutableList"));
  vorn_collections_ImmutableList_ctor(constants, items);

  count("Array_getInt", [&](int i) { keep(vorn_collections_Array_getInt(array, i)); });
  count("Array_setInt", [&](int i) { vorn_collections_Array_setInt(array, i, i); });
  count("Array_operator_index, new box", [&](int i) { keep(vorn_collections_Array_operator_index(array, i)); });
  count("Tuple_operator_index", [&](int i) { keep(vorn_collections_Tuple_operator_index(tuple, i % 2)); });
  count("ImmutableList_operator_index",
        [&](int i) { keep(vorn_collections_ImmutableList_operator_index(constants, i)); });
}

void countMapsAndSets() {
  Keys numbers([](int i) { return vorn_box_int(i); });
  Keys otherNumbers([](int i) { return vorn_box_int(kCalls + i); });
  Keys texts([](int i) { return textKey("text ", i); });
  Keys otherTexts([](int i) { return textKey("other ", i); });
  const Handle map(vorn_object_new("Map<Int,Int>"));
  const Handle textMap(vorn_object_new("Map<String,Int>"));
  const Handle sorted(vorn_object_new("SortedMap<Int,Int>"));
  const Handle set(vorn_object_new("HashSet<Int>"));
  const auto nothing = [] {};

  count("Map_put, new Int", nothing, [&](int i) { vorn_collections_Map_put(map, numbers[i], numbers[i]); });
  count("Map_put, Int", [&](int i) { vorn_collections_Map_put(map, numbers[i], numbers[i]); });
  count("Map_put, new String", nothing, [&](int i) { vorn_collections_Map_put(textMap, texts[i], numbers[i]); });
  count("Map__get, Int", [&](int i) { keep(vorn_collections_Map__get(map, numbers[i])); });
  count("Map__get, absent Int", [&](int i) { keep(vorn_collections_Map__get(map, otherNumbers[i])); });
  count("Map__get, String", [&](int i) { keep(vorn_collections_Map__get(textMap, texts[i])); });
  count("Map__get, absent String", [&](int i) { keep(vorn_collections_Map__get(textMap, otherTexts[i])); });
  count("Map_values, 1,000 Ints", [&](int) { keep(vorn_collections_Map_values(map)); });
  count("Map_items, 1,000 Ints", [&](int) { keep(vorn_collections_Map_items(map)); });
  count("Map_remove, Int", nothing, [&](int i) { keep(vorn_collections_Map_remove(map, numbers[i])); });
  count("SortedMap, put new Int", nothing, [&](int i) { vorn_collections_Map_put(sorted, numbers[i], numbers[i]); });
  count("SortedMap, _get Int", [&](int i) { keep(vorn_collections_Map__get(sorted, numbers[i])); });
  count("HashSet_add, new Int", nothing, [&](int i) { vorn_collections_HashSet_add(set, numbers[i]); });
  count("HashSet_operator_in, Int", [&](int i) { keep(vorn_collections_HashSet_operator_in(set, numbers[i])); });
}

}  // namespace

}  // namespace vorn::bench

int main() {
  // The seed makes the hashes of keys those of every run.
  const vorn::RuntimeScope runtime("heap=collected,room=256,seed=1");
  if (!runtime.running()) return 1;
  vorn::bench::count("vorn_box_int", [](int i) { vorn::bench::keep(vorn_box_int(i)); });
  vorn::bench::countLists();
  vorn::bench::countArraysAndTuples();
  vorn::bench::countMapsAndSets();
  return 0;
}
