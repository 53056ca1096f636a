// The inline forms beside the natives that they stand for and checked accesses of containers of C++, and the loops of
// examples/compiled_loops in their three ways. How to read what it prints stands in docs/benchmarks.md.
#include <benchmark/benchmark.h>
#include <vorn/collections/inline.h>
#include <vorn/runtime.hpp>

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "bench/native_support.h"
#include "bench/program.h"
#include "examples/compiled_loops/workloads.h"

namespace {

using namespace vorn::bench;  // NOLINT(google-build-using-namespace): the program's own namespace
using natives::requireNoErrors;
using vorn::Handle;

constexpr std::int64_t kSizes[] = {1'000, 1'000'000};

// ---- Elements -------------------------------------------------------------------------------------------------------

// A filled collection that stays for the whole run, since preparing a million elements takes longer than reading them.
void* listOf(const char* type, std::int64_t elements) {
  void* const list = vorn_object_new(type);
  for (std::int64_t i = 0; i < elements; ++i) vorn_collections_ArrayList_addInt(list, elementAt(i));
  requireNoErrors();
  return list;
}
void* arrayOf(const char* type, std::int64_t elements) {
  void* const array = vorn_object_new(type);
  vorn_collections_Array_ctor(array, elements);
  for (std::int64_t i = 0; i < elements; ++i) vorn_collections_Array_setInt(array, i, elementAt(i));
  requireNoErrors();
  return array;
}
// Handles: the first one is no number, so that the list stays boxed.
void* handleListOf(std::int64_t elements) {
  const Handle list = vorn_object_new("ArrayList");
  const Handle box = vorn_box_int(1);
  vorn_collections_ArrayList_add(list, Handle(vorn_string_new("first", 5)));
  for (std::int64_t i = 1; i < elements; ++i) vorn_collections_ArrayList_add(list, box);
  return list;
}

// Measures access(receiver, i) for every index.
template <auto make, auto access>
void overIndexes(benchmark::State& state, std::int64_t elements) {
  const Handle root = make(elements);
  void* const receiver = root;
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) access(receiver, i);
  }
  requireNoErrors();
  countElements(state, elements);
}

// Handles that are all boxes of an Int.
void* boxListOf(std::int64_t elements) {
  const Handle list = vorn_object_new("ArrayList<Object>");
  natives::fillBoxes(list, elements);
  return list;
}

constexpr auto kInts = [](std::int64_t n) { return listOf("ArrayList<Int>", n); };
constexpr auto kHandles = [](std::int64_t n) { return handleListOf(n); };
constexpr auto kBoxes = [](std::int64_t n) { return boxListOf(n); };
constexpr auto kIntArray = [](std::int64_t n) { return arrayOf("Array<Int>", n); };

constexpr auto kNativeGet = [](void* list, long long i) { keep(vorn_collections_ArrayList_getInt(list, i)); };
constexpr auto kInlineGet = [](void* list, long long i) { keep(vorn_inline_ArrayList_getInt(list, i, VORN_INT)); };
constexpr auto kProvenGet = [](void* list, long long i) { keep(vorn_proven_ArrayList_getInt(list, i, VORN_INT)); };
constexpr auto kNativeHandle = [](void* list, long long i) {
  keep(vorn_collections_ArrayList_operator_index(list, i));
};
constexpr auto kProvenHandle = [](void* list, long long i) { keep(vorn_proven_ArrayList_operator_index(list, i)); };
constexpr auto kNativeNumber = [](void* list, long long i) {
  std::int32_t value = 0;
  vorn_unbox_int(vorn_collections_ArrayList_operator_index(list, i), &value);
  keep(value);
};
constexpr auto kInlineNumber = [](void* list, long long i) {
  long long value = 0;
  vorn_inline_unbox_integer(vorn_proven_ArrayList_operator_index(list, i), VORN_INT, &value);
  keep(value);
};
constexpr auto kProvenNumber = [](void* list, long long i) {
  keep(vorn_proven_unbox_integer(vorn_proven_ArrayList_operator_index(list, i), VORN_INT));
};
constexpr auto kProvenSet = [](void* list, long long i) {
  vorn_proven_ArrayList_setInt(list, i, static_cast<std::int32_t>(i), VORN_INT);
  keep(0);
};
constexpr auto kNativeSet = [](void* list, long long i) {
  vorn_collections_ArrayList_operator_index_eq(list, i, vorn_box_int(static_cast<std::int32_t>(i)));
};
constexpr auto kNativeSlot = [](void* array, long long i) { keep(vorn_collections_Array_getInt(array, i)); };
constexpr auto kProvenSlot = [](void* array, long long i) { keep(vorn_proven_Array_getInt(array, i, VORN_INT)); };
constexpr auto kNativeSetSlot = [](void* array, long long i) { vorn_collections_Array_setInt(array, i, i); };
constexpr auto kProvenSetSlot = [](void* array, long long i) {
  vorn_proven_Array_setInt(array, i, i, VORN_INT);
  keep(0);
};

void getPointed(benchmark::State& state, std::int64_t elements) {
  std::vector<std::int32_t> numbers(static_cast<std::size_t>(elements));
  std::vector<std::int32_t*> values;
  for (std::int32_t& number : numbers) values.push_back(&number);
  const std::vector<std::int32_t*>* const vector = &values;
  keep(vector);
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) keep(*vector->at(static_cast<std::size_t>(i)));
  }
  countElements(state, elements);
}

template <class Element>
void getChecked(benchmark::State& state, std::int64_t elements) {
  std::vector<Element> values(static_cast<std::size_t>(elements));
  const std::vector<Element>* const vector = &values;
  keep(vector);
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) keep(vector->at(static_cast<std::size_t>(i)));
  }
  countElements(state, elements);
}

void setChecked(benchmark::State& state, std::int64_t elements) {
  std::vector<std::int32_t> values(static_cast<std::size_t>(elements));
  std::vector<std::int32_t>* const vector = &values;
  keep(vector);
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) {
      vector->at(static_cast<std::size_t>(i)) = static_cast<std::int32_t>(i);
      keep(0);
    }
  }
  countElements(state, elements);
}

// The hoisted loop, and the same over the vector's own elements.
void getFromSpan(benchmark::State& state, std::int64_t elements) {
  const Handle list = kInts(elements);
  for (auto _ : state) {
    vorn_span span;
    if (!vorn_inline_ArrayList_span(list, VORN_INT, &span)) std::exit(1);
    const auto* const data = static_cast<const std::int32_t*>(span.data);
    for (long long i = 0; i < span.size; ++i) keep(data[i]);
  }
  countElements(state, elements);
}

void getUnchecked(benchmark::State& state, std::int64_t elements) {
  const std::vector<std::int32_t> values(static_cast<std::size_t>(elements));
  const std::int32_t* data = values.data();
  keep(&data);
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) keep(data[i]);
  }
  countElements(state, elements);
}

// Appends to a list that is emptied first: growing is the allocator's affair. The first element makes it unboxed.
template <auto append>
void appendInts(benchmark::State& state, std::int64_t elements) {
  const Handle root = vorn_object_new("ArrayList<Int>");
  void* const list = root;
  vorn_collections_ArrayList_reserve(list, elements);
  for (auto _ : state) {
    vorn_collections_ArrayList_clear(list);
    vorn_collections_ArrayList_addInt(list, 0);
    for (std::int64_t i = 1; i < elements; ++i) {
      append(list, i);
      keep(0);
    }
  }
  natives::requireSize(list, elements);
  countElements(state, elements);
}

void pushBackInts(benchmark::State& state, std::int64_t elements) {
  std::vector<std::int32_t> values;
  values.reserve(static_cast<std::size_t>(elements));
  std::vector<std::int32_t>* const vector = &values;
  keep(vector);
  for (auto _ : state) {
    vector->clear();
    for (std::int64_t i = 0; i < elements; ++i) {
      vector->push_back(static_cast<std::int32_t>(i));
      keep(0);
    }
  }
  countElements(state, elements);
}

constexpr auto kNativeAdd = [](void* list, long long i) { vorn_collections_ArrayList_addInt(list, i); };
constexpr auto kProvenAdd = [](void* list, long long i) { vorn_proven_ArrayList_addInt(list, i); };

// ---- Lookups --------------------------------------------------------------------------------------------------------

// Keys in no order, from a bijection of the numbers below 2^30.
std::int32_t keyAt(std::int64_t at) {
  return static_cast<std::int32_t>(static_cast<std::uint64_t>(at) * 0x9E3779B1U & 0x3FFFFFFF);
}
std::string textAt(std::int64_t at) { return "k" + std::to_string(keyAt(at)); }

void* mapOf(std::int64_t elements, bool ofTexts) {
  const Handle map = vorn_object_new("Map");
  for (std::int64_t i = 0; i < elements; ++i) {
    const Handle value = vorn_box_int(keyAt(i));
    const std::string text = ofTexts ? textAt(i) : std::string();
    const Handle key = ofTexts ? vorn_string_new(text.data(), text.size()) : value.get();
    vorn_collections_Map_put(map, key, value);
  }
  requireNoErrors();
  return map;
}

template <auto lookUp>
void getInts(benchmark::State& state, std::int64_t elements) {
  const Handle root = mapOf(elements, false);
  void* const map = root;
  vorn_borrowed_box storage;
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) keep(lookUp(map, keyAt(i), storage));
  }
  requireNoErrors();
  countElements(state, elements);
}

constexpr auto kBoxedKey = [](void* map, std::int32_t key, vorn_borrowed_box&) {
  return vorn_collections_Map__get(map, vorn_box_int(key));
};
constexpr auto kBorrowedKey = [](void* map, std::int32_t key, vorn_borrowed_box& storage) {
  return vorn_collections_Map__get(map, vorn_borrow_int(&storage, key));
};
constexpr auto kRawKey = [](void* map, std::int32_t key, vorn_borrowed_box&) {
  return vorn_proven_Map__get_integer(map, key);
};

void getStandardInts(benchmark::State& state, std::int64_t elements) {
  std::unordered_map<std::int32_t, void*> map;
  for (std::int64_t i = 0; i < elements; ++i) map.emplace(keyAt(i), &map);
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) keep(map.find(keyAt(i))->second);
  }
  countElements(state, elements);
}

std::vector<std::string> textsOf(std::int64_t elements) {
  std::vector<std::string> texts;
  for (std::int64_t i = 0; i < elements; ++i) texts.push_back(textAt(i));
  return texts;
}

template <auto lookUp>
void getTexts(benchmark::State& state, std::int64_t elements) {
  const Handle root = mapOf(elements, true);
  void* const map = root;
  const std::vector<std::string> texts = textsOf(elements);
  for (auto _ : state) {
    for (const std::string& text : texts) keep(lookUp(map, text));
  }
  requireNoErrors();
  countElements(state, elements);
}

constexpr auto kStringKey = [](void* map, const std::string& text) {
  return vorn_collections_Map__get(map, vorn_string_new(text.data(), text.size()));
};
constexpr auto kTextKey = [](void* map, const std::string& text) {
  return vorn_proven_Map__get_text(map, text.data(), text.size());
};

void getStandardTexts(benchmark::State& state, std::int64_t elements) {
  const std::vector<std::string> texts = textsOf(elements);
  std::unordered_map<std::string, void*> map;
  for (const std::string& text : texts) map.emplace(text, &map);
  for (auto _ : state) {
    for (const std::string& text : texts) keep(map.find(text)->second);
  }
  countElements(state, elements);
}

constexpr Operation kOperations[] = {
    {"get Int, native", overIndexes<kInts, kNativeGet>, nullptr, nullptr},
    {"get Int, any receiver", overIndexes<kInts, kInlineGet>, getChecked<std::int32_t>, nullptr},
    {"get Int, proven", overIndexes<kInts, kProvenGet>, getChecked<std::int32_t>, nullptr},
    {"get Int, hoisted", getFromSpan, getUnchecked, nullptr},
    {"set Int, native with a box", overIndexes<kInts, kNativeSet>, nullptr, nullptr},
    {"set Int, proven", overIndexes<kInts, kProvenSet>, setChecked, nullptr},
    {"get handle, native", overIndexes<kHandles, kNativeHandle>, nullptr, nullptr},
    {"get handle, proven", overIndexes<kHandles, kProvenHandle>, getChecked<void*>, nullptr},
    {"get a box's Int, natives", overIndexes<kBoxes, kNativeNumber>, nullptr, nullptr},
    {"get a box's Int, of any handle", overIndexes<kBoxes, kInlineNumber>, getPointed, nullptr},
    {"get a box's Int, proven", overIndexes<kBoxes, kProvenNumber>, getPointed, nullptr},
    {"append Int, native", appendInts<kNativeAdd>, nullptr, nullptr},
    {"append Int, proven", appendInts<kProvenAdd>, pushBackInts, nullptr},
    {"array get Int, native", overIndexes<kIntArray, kNativeSlot>, nullptr, nullptr},
    {"array get Int, proven", overIndexes<kIntArray, kProvenSlot>, getChecked<std::int32_t>, nullptr},
    {"array set Int, native", overIndexes<kIntArray, kNativeSetSlot>, nullptr, nullptr},
    {"array set Int, proven", overIndexes<kIntArray, kProvenSetSlot>, setChecked, nullptr},
    {"map get Int, native with a box", getInts<kBoxedKey>, nullptr, nullptr},
    {"map get Int, borrowed key", getInts<kBorrowedKey>, getStandardInts, nullptr},
    {"map get Int, proven", getInts<kRawKey>, getStandardInts, nullptr},
    {"map get text, native with a String", getTexts<kStringKey>, nullptr, nullptr},
    {"map get text, proven", getTexts<kTextKey>, getStandardTexts, nullptr},
};

// A whole loop of the example, whose steps are those of its size.
void addWorkload(Benchmarks& benchmarks, const std::string& operation, const char* library,
                 const compiled_loops::Workload& work, compiled_loops::Run run) {
  benchmarks.push_back({operation, library, work.size, [&work, run](benchmark::State& state) {
                          for (auto _ : state) keep(run(work.size));
                          requireNoErrors();
                          countElements(state, work.size);
                        }});
}

}  // namespace

int main(int argc, char** argv) {
  vorn_inline_check();
  Benchmarks benchmarks;
  add(benchmarks, kOperations, kSizes);
  for (const auto& work : compiled_loops::kWorkloads) {
    addWorkload(benchmarks, std::string(work.name) + ", natives", "vorn", work, work.natives);
    addWorkload(benchmarks, work.name, "vorn", work, work.inlined);
    addWorkload(benchmarks, work.name, "C++", work, work.standard);
  }
  return runBenchmarks(argc, argv,
                       {.topic = "inline", .libraries = {"vorn", "C++"}, .benchmarks = std::move(benchmarks)});
}
