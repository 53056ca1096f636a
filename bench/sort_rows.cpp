#include "bench/sort_rows.h"

#include <glib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <deque>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "bench/native_support.h"

#if defined(VORN_BENCH_VQSORT)
#include <hwy/contrib/sort/vqsort.h>
#endif

namespace vorn::bench {

namespace {

enum class Pattern { Random, Sorted, Reversed, SixteenValues };

// Elements in all inputs of one iteration: a short input sorted again and again would teach the branch predictor its
// order and flatter every sort that branches.
constexpr std::size_t kBatchElements = 400'000;

template <class Element>
Element elementOf(Pattern pattern, std::size_t place, std::size_t length, std::uint64_t draw) {
  switch (pattern) {
    case Pattern::Random:
      if constexpr (std::is_floating_point_v<Element>) {
        return static_cast<Element>(static_cast<double>(static_cast<std::int64_t>(draw)) * 1e-9);
      } else {
        return static_cast<Element>(draw);
      }
    case Pattern::Sorted:
      return static_cast<Element>(place);
    case Pattern::Reversed:
      return static_cast<Element>(length - place);
    case Pattern::SixteenValues:
      return static_cast<Element>(draw % 16);
  }
  return {};
}

// The inputs of one iteration, one after the other.
template <class Element>
std::vector<Element> inputsOf(Pattern pattern, std::size_t length) {
  const std::size_t batch = std::max<std::size_t>(1, kBatchElements / length);
  std::mt19937_64 random(length);
  std::vector<Element> elements(length * batch);
  for (std::size_t i = 0; i < elements.size(); ++i) {
    elements[i] = elementOf<Element>(pattern, i % length, length, random());
  }
  return elements;
}

// Restores the inputs with the clock stopped, then sorts each.
template <class Element, class Restore, class Sort>
void measure(benchmark::State& state, std::size_t length, std::size_t inputs, Restore restore, Sort sort) {
  for (auto _ : state) {
    state.PauseTiming();
    restore();
    state.ResumeTiming();
    for (std::size_t i = 0; i < inputs; ++i) sort(i);
    benchmark::ClobberMemory();
  }
  countElements(state, static_cast<std::int64_t>(length * inputs));
}

template <class Element>
void sortLists(benchmark::State& state, Pattern pattern, std::size_t length, const char* typeName) {
  const std::vector<Element> inputs = inputsOf<Element>(pattern, length);
  // A deque never moves its elements, which registered slots require.
  std::deque<Handle> lists(inputs.size() / length);
  std::vector<void*> data;
  for (Handle& list : lists) {
    const auto count = static_cast<long long>(length);
    data.push_back(vorn_collections_ArrayList_newPrimitiveData(count, typeName, list.out()));
  }
  measure<Element>(
      state, length, lists.size(),
      [&] {
        for (std::size_t i = 0; i < data.size(); ++i)
          std::memcpy(data[i], inputs.data() + i * length, length * sizeof(Element));
      },
      [&](std::size_t i) { vorn_collections_ArrayList_sort(lists[i]); });
  natives::requireSize(lists.front(), static_cast<std::int64_t>(length));
}

template <class Element, class Sort>
void sortVector(benchmark::State& state, Pattern pattern, std::size_t length, Sort sort) {
  const std::vector<Element> inputs = inputsOf<Element>(pattern, length);
  std::vector<Element> work(inputs.size());
  measure<Element>(
      state, length, inputs.size() / length,
      [&] { std::memcpy(work.data(), inputs.data(), inputs.size() * sizeof(Element)); },
      [&](std::size_t i) { sort(work.data() + i * length, length); });
}

// The order that the natives promise: NaN last.
template <class Element>
bool comesBefore(Element left, Element right) {
  if constexpr (std::is_floating_point_v<Element>) {
    return left < right || (std::isnan(right) && !std::isnan(left));
  } else {
    return left < right;
  }
}

template <class Element>
gint compareElements(gconstpointer left, gconstpointer right) {
  const auto a = *static_cast<const Element*>(left);
  const auto b = *static_cast<const Element*>(right);
  return comesBefore(a, b) ? -1 : comesBefore(b, a) ? 1 : 0;
}

// Sorting a GArray is sorting its memory.
template <class Element>
void glibSort(Element* data, std::size_t length) {
  g_qsort_with_data(
      data, static_cast<gint>(length), sizeof(Element),
      [](gconstpointer left, gconstpointer right, gpointer) { return compareElements<Element>(left, right); }, nullptr);
}

struct Case {
  const char* name;
  Pattern pattern;
  std::int64_t length;
};

template <class Element>
void registerCase(const char* typeName, const Case& input, std::vector<ComparisonTable::Row>& rows) {
  const std::string operation = std::string("sort ") + typeName + input.name;
  const auto length = static_cast<std::size_t>(input.length);
  const auto add = [&](const char* library, auto sort) {
    const std::string name = operation + "/" + library + "/" + std::to_string(input.length);
    benchmark::RegisterBenchmark(name.c_str(), sort)->MeasureProcessCPUTime();
  };
  const Pattern pattern = input.pattern;
  add("vorn", [=](benchmark::State& state) { sortLists<Element>(state, pattern, length, typeName); });
  add("C++", [=](benchmark::State& state) {
    sortVector<Element>(state, pattern, length,
                        [](Element* data, std::size_t count) { std::sort(data, data + count, comesBefore<Element>); });
  });
  // GLib's merge sort needs a second buffer and no comparison is inlined: one size tells enough.
  if (input.length == 1'000'000) {
    add("GLib", [=](benchmark::State& state) { sortVector<Element>(state, pattern, length, glibSort<Element>); });
  }
#if defined(VORN_BENCH_VQSORT)
  if constexpr (sizeof(Element) > 1) {
    add("vqsort", [=](benchmark::State& state) {
      hwy::Sorter sorter;
      sortVector<Element>(state, pattern, length,
                          [&sorter](Element* data, std::size_t count) { sorter(data, count, hwy::SortAscending()); });
    });
  }
#endif
  rows.push_back({operation, input.length, 0});
}

template <class Element>
void registerKind(const char* typeName, std::vector<ComparisonTable::Row>& rows) {
  for (const std::int64_t length : {100, 1'000, 100'000, 1'000'000, 10'000'000}) {
    registerCase<Element>(typeName, {"", Pattern::Random, length}, rows);
  }
  registerCase<Element>(typeName, {", sorted", Pattern::Sorted, 1'000'000}, rows);
  registerCase<Element>(typeName, {", reversed", Pattern::Reversed, 1'000'000}, rows);
  registerCase<Element>(typeName, {", 16 values", Pattern::SixteenValues, 1'000'000}, rows);
}

// ---- Texts ----------------------------------------------------------------------------------------------------------

// Random texts with a common start, as keys often are; too long for the C++ library to keep inside its strings.
std::vector<std::string> textsOf(std::size_t length) {
  std::mt19937_64 random(length);
  std::vector<std::string> texts(length);
  for (std::string& text : texts) text = "a-key-" + std::to_string(random());
  return texts;
}

void sortStringObjects(benchmark::State& state, std::size_t length) {
  Handle unsorted;
  Handle list;
  unsorted = vorn_object_new("ArrayList");
  list = vorn_object_new("ArrayList");
  for (const std::string& text : textsOf(length)) {
    vorn_collections_ArrayList_add(unsorted, vorn_string_new(text.data(), text.size()));
  }
  const auto restore = [&] {
    vorn_collections_ArrayList_clear(list);
    vorn_collections_ArrayList_addAll(list, unsorted);
  };
  measure<void*>(state, length, 1, restore, [&](std::size_t) { vorn_collections_ArrayList_sort(list); });
  natives::requireSize(list, static_cast<std::int64_t>(length));
}

void sortStdStrings(benchmark::State& state, std::size_t length) {
  const std::vector<std::string> unsorted = textsOf(length);
  std::vector<std::string> texts;
  measure<std::string>(
      state, length, 1, [&] { texts = unsorted; }, [&](std::size_t) { std::sort(texts.begin(), texts.end()); });
}

void registerTexts(std::vector<ComparisonTable::Row>& rows) {
  for (const std::int64_t length : {1'000, 200'000}) {
    const auto add = [&](const char* library, auto sort) {
      const std::string name = "sort String/" + std::string(library) + "/" + std::to_string(length);
      benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        sort(state, static_cast<std::size_t>(length));
      })->MeasureProcessCPUTime();
    };
    add("vorn", sortStringObjects);
    add("C++", sortStdStrings);
    rows.push_back({"sort String", length, 0});
  }
}

}  // namespace

void registerSorts(std::vector<ComparisonTable::Row>& rows) {
  registerKind<std::uint8_t>("Byte", rows);
  registerKind<std::int16_t>("Short", rows);
  registerKind<std::int32_t>("Int", rows);
  registerKind<std::uint32_t>("UInt", rows);
  registerKind<std::int64_t>("Long", rows);
  registerKind<std::uint64_t>("ULong", rows);
  registerKind<float>("Float", rows);
  registerKind<double>("Double", rows);
  registerTexts(rows);
}

}  // namespace vorn::bench
