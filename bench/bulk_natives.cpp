#include <vorn/collections/hash_set.h>

#include <cstring>

#include "bench/bulk_operations.h"
#include "bench/native_support.h"

namespace vorn::bench::natives {

namespace {

void fillLongs(void* list, std::int64_t elements) {
  for (std::int64_t i = 0; i < elements; ++i) vorn_collections_ArrayList_addPrimitiveI64(list, elementAt(i), "Long");
}

// Runs `work(list)` once per iteration on one list, which it leaves with as many elements as before.
template <class Fill, class Work>
void onList(benchmark::State& state, std::int64_t elements, const char* className, Fill fill, Work work) {
  const Handle list(vorn_object_new(className));
  fill(list, elements);
  requireSize(list, elements);
  for (auto _ : state) work(list.operator void*());
  requireSize(list, elements);
  countElements(state, elements);
}

// The same for natives that make a new list of `results` elements, which is what counts.
template <class Make>
void makingLists(benchmark::State& state, std::int64_t elements, std::int64_t results, Make make) {
  const Handle list(vorn_object_new("ArrayList<Int>"));
  Handle result;
  fillInts(list, elements);
  for (auto _ : state) result = make(list.operator void*());
  requireSize(result, results);
  countElements(state, results);
}

// A source of the class added to an empty list over and over.
template <class Fill>
void addingAll(benchmark::State& state, std::int64_t elements, const char* targetClass, const char* sourceClass,
               Fill fill) {
  const Handle source(vorn_object_new(sourceClass));
  const Handle target(vorn_object_new(targetClass));
  fill(source, elements);
  for (auto _ : state) {
    vorn_collections_ArrayList_clear(target);
    vorn_collections_ArrayList_addAll(target, source);
  }
  requireSize(target, elements);
  countElements(state, elements);
}

void assignWhole(void* list, void* source) {
  vorn_collections_ArrayList_sliceAssign(list, 0, 0, 1, nullptr, nullptr, source);
}

}  // namespace

void sumInt(benchmark::State& state, std::int64_t elements) {
  onList(state, elements, "ArrayList<Int>", fillInts,
         [](void* list) { keep(vorn_collections_ArrayList_sumInt(list)); });
}

void sumLong(benchmark::State& state, std::int64_t elements) {
  onList(state, elements, "ArrayList<Long>", fillLongs,
         [](void* list) { keep(vorn_collections_ArrayList_sumI64Fast(list)); });
}

void sumDouble(benchmark::State& state, std::int64_t elements) {
  onList(state, elements, "ArrayList<Double>", fillDoubles,
         [](void* list) { keep(vorn_collections_ArrayList_sumF64Fast(list)); });
}

void reverse(benchmark::State& state, std::int64_t elements) {
  onList(state, elements, "ArrayList<Int>", fillInts, vorn_collections_ArrayList_reverse);
}

void slice(benchmark::State& state, std::int64_t elements) {
  const Handle bound(vorn_box_boolean(true));
  makingLists(state, elements + 2, elements,
              [&](void* list) { return vorn_collections_ArrayList_slice(list, 1, -1, 1, bound, bound); });
}

void sliceEverySecond(benchmark::State& state, std::int64_t elements) {
  makingLists(state, 2 * elements, elements,
              [](void* list) { return vorn_collections_ArrayList_slice(list, 0, 0, 2, nullptr, nullptr); });
}

void concat(benchmark::State& state, std::int64_t elements) {
  makingLists(state, elements / 2, elements, [](void* list) { return vorn_collections_ArrayList_concat(list, list); });
}

void repeat(benchmark::State& state, std::int64_t elements) {
  makingLists(state, elements / 10, elements, [](void* list) { return vorn_collections_ArrayList_repeat(list, 10); });
}

void addAll(benchmark::State& state, std::int64_t elements) {
  addingAll(state, elements, "ArrayList<Int>", "ArrayList<Int>", fillInts);
}

void addAllWidening(benchmark::State& state, std::int64_t elements) {
  addingAll(state, elements, "ArrayList<Long>", "ArrayList<Int>", fillInts);
}

void addAllSynchronised(benchmark::State& state, std::int64_t elements) {
  addingAll(state, elements, "ArrayListSync<Int>", "ArrayListSync<Int>", fillInts);
}

void addAllBoxed(benchmark::State& state, std::int64_t elements) {
  addingAll(state, elements, "ArrayList<Object>", "ArrayList<Object>", fillBoxes);
}

void addAllLinked(benchmark::State& state, std::int64_t elements) {
  addingAll(state, elements, "ArrayList<Object>", "LinkedList<Object>", fillBoxes);
}

void addAllOfSet(benchmark::State& state, std::int64_t elements) {
  addingAll(state, elements, "ArrayList<Object>", "HashSet", [](void* set, std::int64_t count) {
    Handle box;
    for (std::int64_t i = 0; i < count; ++i) {
      box = vorn_box_int(static_cast<std::int32_t>(i));
      vorn_collections_HashSet_add(set, box);
    }
  });
}

void sliceAssignInts(benchmark::State& state, std::int64_t elements) {
  const Handle source(vorn_object_new("ArrayList<Int>"));
  fillInts(source, elements);
  onList(state, elements, "ArrayList<Int>", fillInts, [&](void* list) { assignWhole(list, source); });
}

void sliceAssignLinked(benchmark::State& state, std::int64_t elements) {
  const Handle source(vorn_object_new("ArrayList<Object>"));
  fillBoxes(source, elements);
  onList(state, elements, "LinkedList<Object>", fillBoxes, [&](void* list) { assignWhole(list, source); });
}

void shuffle(benchmark::State& state, std::int64_t elements) {
  onList(state, elements, "ArrayList<Int>", fillInts, vorn_collections_ArrayList_shuffle);
}

void commitInts(benchmark::State& state, std::int64_t elements) {
  const Handle list(vorn_object_new("ArrayList<Int>"));
  long long* const values = vorn_collections_ArrayList_prepareIntData(list, elements);
  for (std::int64_t i = 0; i < elements; ++i) values[i] = elementAt(i);
  for (auto _ : state) vorn_collections_ArrayList_commitIntDataSize(list, elements);
  requireSize(list, elements);
  countElements(state, elements);
}

void commitChars(benchmark::State& state, std::int64_t elements) {
  const Handle list(vorn_object_new("ArrayList<Char>"));
  long long* const values = vorn_collections_ArrayList_preparePrimitiveI64Data(list, elements, "Char");
  for (std::int64_t i = 0; i < elements; ++i) values[i] = 'a' + i % 26;
  for (auto _ : state) vorn_collections_ArrayList_commitPrimitiveI64DataSize(list, elements);
  requireSize(list, elements);
  countElements(state, elements);
}

void i64DataPtr(benchmark::State& state, std::int64_t elements) {
  onList(state, elements, "ArrayList<Int>", fillInts,
         [](void* list) { keep(vorn_collections_ArrayList_i64DataPtr(list)); });
}

void writeThroughPointer(benchmark::State& state, std::int64_t elements) {
  Handle list;
  for (auto _ : state) {
    auto* const ints =
        static_cast<std::int32_t*>(vorn_collections_ArrayList_newPrimitiveData(elements, "Int", list.out()));
    for (std::int64_t i = 0; i < elements; ++i) ints[i] = static_cast<std::int32_t>(i);
    vorn_collections_ArrayList_commitPrimitiveDataSizeFast(list, elements);
  }
  requireSize(list, elements);
  countElements(state, elements);
}

}  // namespace vorn::bench::natives
