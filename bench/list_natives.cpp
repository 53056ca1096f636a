#include <cstdio>
#include <deque>
#include <vector>

#include "bench/list_operations.h"
#include "bench/native_support.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_data.h"

namespace vorn::bench::natives {

namespace {

// Builds a list of the class anew in every iteration, growth included. `append(list, i)` adds one element.
template <class Append>
void buildLists(benchmark::State& state, std::int64_t elements, const char* className, Append append) {
  Handle list;
  for (auto _ : state) {
    list = vorn_object_new(className);
    for (std::int64_t i = 0; i < elements; ++i) append(list, i);
  }
  requireSize(list, elements);
  countElements(state, elements);
}

// The same, appending boxes made beforehand.
template <class Append>
void buildListsFromBoxes(benchmark::State& state, std::int64_t elements, const char* className, Append append) {
  // A list keeps the boxes alive; the array beside it makes reaching one cost a load only.
  const Handle owner(vorn_object_new("ArrayList<Object>"));
  fillBoxes(owner, elements);
  std::vector<void*> boxes;
  for (std::int64_t i = 0; i < elements; ++i) boxes.push_back(vorn_collections_ArrayList_operator_index(owner, i));
  buildLists(state, elements, className,
             [&](void* list, std::int64_t i) { append(list, i, boxes[static_cast<std::size_t>(i)]); });
}

// Reads or writes every element of one list per iteration.
template <class Fill, class Visit>
void visitList(benchmark::State& state, std::int64_t elements, const char* className, Fill fill, Visit visit) {
  const Handle list(vorn_object_new(className));
  fill(list, elements);
  requireSize(list, elements);
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) visit(list, i);
  }
  requireSize(list, elements);
  countElements(state, elements);
}

// Searches a whole list for a value that it does not hold.
template <class Fill, class Search>
void searchList(benchmark::State& state, std::int64_t elements, const char* className, Fill fill, void* absent,
                Search search) {
  const Handle list(vorn_object_new(className));
  const Handle value(absent);
  fill(list, elements);
  requireSize(list, elements);
  for (auto _ : state) keep(search(list, value));
  requireSize(list, elements);
  countElements(state, elements);
}

void* absentInt() { return vorn_box_int(kAbsent); }

void* absentDouble() { return vorn_box_double(kAbsent); }

long long indexOf(void* list, void* value) { return vorn_collections_ArrayList_indexOf(list, value, 0); }

}  // namespace

void addInt(benchmark::State& state, std::int64_t elements) {
  buildLists(state, elements, "ArrayList<Int>",
             [](void* list, std::int64_t i) { vorn_collections_ArrayList_addInt(list, i); });
}

void addLong(benchmark::State& state, std::int64_t elements) {
  buildLists(state, elements, "ArrayList<Long>",
             [](void* list, std::int64_t i) { vorn_collections_ArrayList_addPrimitiveI64(list, i, "Long"); });
}

void addDouble(benchmark::State& state, std::int64_t elements) {
  buildLists(state, elements, "ArrayList<Double>", [](void* list, std::int64_t i) {
    vorn_collections_ArrayList_addPrimitiveDouble(list, static_cast<double>(i), "Double");
  });
}

void addIntSynchronised(benchmark::State& state, std::int64_t elements) {
  buildLists(state, elements, "ArrayListSync<Int>",
             [](void* list, std::int64_t i) { vorn_collections_ArrayList_addInt(list, i); });
}

void addBoxed(benchmark::State& state, std::int64_t elements) {
  buildListsFromBoxes(state, elements, "ArrayList<Int>",
                      [](void* list, std::int64_t, void* box) { vorn_collections_ArrayList_add(list, box); });
}

void addHandle(benchmark::State& state, std::int64_t elements) {
  buildListsFromBoxes(state, elements, "ArrayList<Object>",
                      [](void* list, std::int64_t, void* box) { vorn_collections_ArrayList_add(list, box); });
}

void addAtEnd(benchmark::State& state, std::int64_t elements) {
  buildListsFromBoxes(state, elements, "ArrayList<Int>",
                      [](void* list, std::int64_t i, void* box) { vorn_collections_ArrayList_addAt(list, i, box); });
}

void addLinked(benchmark::State& state, std::int64_t elements) {
  buildListsFromBoxes(state, elements, "LinkedList<Object>",
                      [](void* list, std::int64_t, void* box) { vorn_collections_ArrayList_add(list, box); });
}

// As the library's own natives walk a linked list.
void iterateLinked(benchmark::State& state, std::int64_t elements) {
  const Handle list(vorn_object_new("LinkedList<Object>"));
  fillBoxes(list, elements);
  requireSize(list, elements);
  const LinkedHandles& nodes = getListData(list)->linkedObjects;
  for (auto _ : state) {
    for (const auto* node = nodes.sentinel.next; node != &nodes.sentinel; node = node->next) {
      keep(static_cast<const LinkedHandles::Node*>(node)->handle);
    }
  }
  countElements(state, elements);
}

void getInt(benchmark::State& state, std::int64_t elements) {
  visitList(state, elements, "ArrayList<Int>", fillInts,
            [](void* list, std::int64_t i) { keep(vorn_collections_ArrayList_getInt(list, i)); });
}

void getIntFast(benchmark::State& state, std::int64_t elements) {
  visitList(state, elements, "ArrayList<Int>", fillInts,
            [](void* list, std::int64_t i) { keep(vorn_collections_ArrayList_getIntFast(list, i)); });
}

void getDouble(benchmark::State& state, std::int64_t elements) {
  visitList(state, elements, "ArrayList<Double>", fillDoubles,
            [](void* list, std::int64_t i) { keep(vorn_collections_ArrayList_getDouble(list, i)); });
}

void operatorIndex(benchmark::State& state, std::int64_t elements) {
  visitList(state, elements, "ArrayList<Int>", fillInts,
            [](void* list, std::int64_t i) { keep(vorn_collections_ArrayList_operator_index(list, i)); });
}

void operatorIndexEq(benchmark::State& state, std::int64_t elements) {
  const Handle box(vorn_box_int(42));
  visitList(state, elements, "ArrayList<Int>", fillInts,
            [&box](void* list, std::int64_t i) { vorn_collections_ArrayList_operator_index_eq(list, i, box); });
}

void removeAtEnd(benchmark::State& state, std::int64_t elements) {
  // A deque never moves its elements, which registered slots require.
  std::deque<Handle> lists(static_cast<std::size_t>(preparedCollections(elements)));
  for (Handle& list : lists) list = vorn_object_new("ArrayList<Int>");
  for (auto _ : state) {
    state.PauseTiming();
    for (Handle& list : lists) fillInts(list, elements);
    state.ResumeTiming();
    for (Handle& list : lists) {
      for (std::int64_t i = 0; i < elements; ++i) vorn_collections_ArrayList_removeAt(list, -1);
    }
  }
  for (Handle& list : lists) requireSize(list, 0);
  countElements(state, elements * preparedCollections(elements));
}

void size(benchmark::State& state, std::int64_t elements) {
  visitList(state, elements, "ArrayList<Int>", fillInts,
            [](void* list, std::int64_t) { keep(vorn_collections_ArrayList_size(list)); });
}

void sizeFast(benchmark::State& state, std::int64_t elements) {
  visitList(state, elements, "ArrayList<Int>", fillInts,
            [](void* list, std::int64_t) { keep(vorn_collections_ArrayList_sizeFast(list)); });
}

void indexOfAbsentInt(benchmark::State& state, std::int64_t elements) {
  searchList(state, elements, "ArrayList<Int>", fillInts, absentInt(), indexOf);
}

void countAbsentInt(benchmark::State& state, std::int64_t elements) {
  searchList(state, elements, "ArrayList<Int>", fillInts, absentInt(), vorn_collections_ArrayList_count);
}

void operatorInAbsentInt(benchmark::State& state, std::int64_t elements) {
  searchList(state, elements, "ArrayList<Int>", fillInts, absentInt(), vorn_collections_ArrayList_operator_in);
}

void indexOfAbsentDouble(benchmark::State& state, std::int64_t elements) {
  searchList(state, elements, "ArrayList<Double>", fillDoubles, absentDouble(), indexOf);
}

void countAbsentDouble(benchmark::State& state, std::int64_t elements) {
  searchList(state, elements, "ArrayList<Double>", fillDoubles, absentDouble(), vorn_collections_ArrayList_count);
}

void operatorInAbsentDouble(benchmark::State& state, std::int64_t elements) {
  searchList(state, elements, "ArrayList<Double>", fillDoubles, absentDouble(), vorn_collections_ArrayList_operator_in);
}

void indexOfAbsentBoxed(benchmark::State& state, std::int64_t elements) {
  searchList(state, elements, "ArrayList<Object>", fillBoxes, absentInt(), indexOf);
}

void printMemory(std::int64_t elements) {
  const Handle list(vorn_object_new("ArrayList<Int>"));
  vorn_heap_statistics before{};
  vorn_heap_statistics after{};
  vorn_heap_collect();
  vorn_heap_get_statistics(&before);
  fillInts(list, elements);
  vorn_heap_get_statistics(&after);
  const std::uint64_t allocated = after.bytes_allocated - before.bytes_allocated;
  vorn_heap_collect();
  vorn_heap_get_statistics(&after);
  requireSize(list, elements);

  vorn_list_storage_info info;
  if (vorn_list_get_storage(list, &info) == 0) return;
  const auto perElement = [elements](double bytes) { return bytes / static_cast<double>(elements); };
  std::printf(
      "\nMemory: %s of %lld elements, unboxed %s: %llu bytes each, capacity %llu (%.2f bytes per element held).\n",
      vorn_type_name(list), static_cast<long long>(elements), info.primitive_type,
      static_cast<unsigned long long>(info.bytes_per_element), static_cast<unsigned long long>(info.capacity),
      perElement(static_cast<double>(info.capacity * info.bytes_per_element)));
  std::printf("Heap: %.2f bytes per element allocated while it grew, %+.2f live after a collection.\n",
              perElement(static_cast<double>(allocated)),
              perElement(static_cast<double>(static_cast<std::int64_t>(after.bytes_live - before.bytes_live))));
}

}  // namespace vorn::bench::natives
