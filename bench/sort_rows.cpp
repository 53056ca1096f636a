#include "bench/sort_rows.h"

#include <glib.h>

#include <cstring>
#include <deque>
#include <random>
#include <string>
#include <vector>

#include "bench/limits.h"
#include "bench/native_support.h"
#include "bench/sort_inputs.h"
#include "bench/vqsort.h"

namespace vorn::bench {

namespace {

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
  measureSorts(
      state, length, lists.size(),
      [&] {
        for (std::size_t i = 0; i < data.size(); ++i)
          std::memcpy(data[i], inputs.data() + i * length, length * sizeof(Element));
      },
      [&](std::size_t i) { vorn_collections_ArrayList_sort(lists[i]); });
  natives::requireSize(lists.front(), static_cast<std::int64_t>(length));
}

template <class Element>
gint compareElements(gconstpointer left, gconstpointer right) {
  const auto a = *static_cast<const Element*>(left);
  const auto b = *static_cast<const Element*>(right);
  return comesBefore(a, b) ? -1 : comesBefore(b, a) ? 1 : 0;
}

// Sorting a GArray is sorting its memory.
template <class Element>
void sortByGlib(Element* data, std::size_t length) {
  g_qsort_with_data(
      data, static_cast<gint>(length), sizeof(Element),
      [](gconstpointer left, gconstpointer right, gpointer) { return compareElements<Element>(left, right); }, nullptr);
}

template <class Element>
void addCase(Benchmarks& benchmarks, const char* typeName, const SortCase& input) {
  const std::string operation = std::string("sort ") + typeName + input.suffix;
  const Pattern pattern = input.pattern;
  const auto length = static_cast<std::size_t>(input.length);
  const auto add = [&](const char* library, std::function<void(benchmark::State&)> sort) {
    benchmarks.push_back({operation, library, input.length, std::move(sort)});
  };
  const auto addVectors = [&](const char* library, void (*sort)(Element*, std::size_t)) {
    add(library, [=](benchmark::State& state) { sortVectors<Element>(state, pattern, length, sort); });
  };
  add(kOwn, [=](benchmark::State& state) { sortLists<Element>(state, pattern, length, typeName); });
  addVectors("C++", sortByStandard<Element>);
  // GLib's merge sort needs a second buffer and no comparison is inlined: one size tells enough.
  if (input.length == 1'000'000) addVectors("GLib", sortByGlib<Element>);
  if constexpr (kHasVqsort<Element>) addVectors("vqsort", sortByVqsort<Element>);
}

template <class Element>
void addKind(Benchmarks& benchmarks, const char* typeName) {
  for (const SortCase& input : kSortCases) addCase<Element>(benchmarks, typeName, input);
}

// ---- Texts ----------------------------------------------------------------------------------------------------------

// Random texts with a common start, as keys often are; too long for the C++ library to keep inside its strings.
std::vector<std::string> textsOf(std::size_t length) {
  std::mt19937_64 random(length);
  std::vector<std::string> texts(length);
  for (std::string& text : texts) text = "a-key-" + std::to_string(random());
  return texts;
}

void sortStringObjects(benchmark::State& state, std::int64_t elements) {
  const auto length = static_cast<std::size_t>(elements);
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
  measureSorts(state, length, 1, restore, [&](std::size_t) { vorn_collections_ArrayList_sort(list); });
  natives::requireSize(list, static_cast<std::int64_t>(length));
}

void sortStdStrings(benchmark::State& state, std::int64_t elements) {
  const auto length = static_cast<std::size_t>(elements);
  const std::vector<std::string> unsorted = textsOf(length);
  std::vector<std::string> texts;
  measureSorts(
      state, length, 1, [&] { texts = unsorted; }, [&](std::size_t) { std::sort(texts.begin(), texts.end()); });
}

void addTexts(Benchmarks& benchmarks) {
  for (const std::int64_t length : {1'000, 200'000}) {
    add(benchmarks, "sort String", kOwn, sortStringObjects, length);
    add(benchmarks, "sort String", "C++", sortStdStrings, length);
  }
}

}  // namespace

void addSorts(Benchmarks& benchmarks) {
  addKind<std::uint8_t>(benchmarks, "Byte");
  addKind<std::int16_t>(benchmarks, "Short");
  addKind<std::int32_t>(benchmarks, "Int");
  addKind<std::uint32_t>(benchmarks, "UInt");
  addKind<std::int64_t>(benchmarks, "Long");
  addKind<std::uint64_t>(benchmarks, "ULong");
  addKind<float>(benchmarks, "Float");
  addKind<double>(benchmarks, "Double");
  addTexts(benchmarks);
}

}  // namespace vorn::bench
