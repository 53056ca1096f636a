// Displays and joins beside std::to_chars into a std::string, at a size that stays in the caches and at a million.
// How to read what it prints stands in docs/benchmarks.md.
#include <vorn/collections/array_list.h>
#include <vorn/collections/map.h>
#include <vorn/runtime.h>

#include <charconv>
#include <cstring>
#include <string>
#include <vector>

#include "bench/native_support.h"
#include "bench/program.h"

namespace {

using namespace vorn::bench;  // NOLINT(google-build-using-namespace): the program's own namespace
using natives::requireNoErrors;
using vorn::Handle;

constexpr std::int64_t kSizes[] = {1'000, 1'000'000};

// Runs the native once per iteration; what it makes must be text.
template <class MakeText>
void makeTexts(benchmark::State& state, std::int64_t elements, MakeText makeText) {
  Handle text;
  for (auto _ : state) text = makeText();
  requireNoErrors();
  if (vorn_string_text(text) == nullptr) std::exit(1);
  countElements(state, elements);
}

template <class Fill>
void displayList(benchmark::State& state, std::int64_t elements, const char* className, Fill fill) {
  const Handle list(vorn_object_new(className));
  fill(list, elements);
  makeTexts(state, elements, [&] { return vorn_collections_ArrayList_toString(list); });
}

std::string wordAt(std::int64_t index) {
  std::string word = "word";
  word += std::to_string(elementAt(index));
  return word;
}

void fillStrings(void* list, std::int64_t elements) {
  Handle text;
  for (std::int64_t i = 0; i < elements; ++i) {
    const std::string word = wordAt(i);
    text = vorn_string_new(word.data(), word.size());
    vorn_collections_ArrayList_add(list, text);
  }
}

// Lists of ten numbers each.
void fillLists(void* list, std::int64_t elements) {
  Handle inner;
  for (std::int64_t i = 0; i < elements; i += 10) {
    inner = vorn_object_new("ArrayList<Int>");
    natives::fillInts(inner, 10);
    vorn_collections_ArrayList_add(list, inner);
  }
}

void displayInts(benchmark::State& state, std::int64_t elements) {
  displayList(state, elements, "ArrayList<Int>", natives::fillInts);
}
void displayBoxes(benchmark::State& state, std::int64_t elements) {
  displayList(state, elements, "ArrayList<Object>", natives::fillBoxes);
}
void displayDoubles(benchmark::State& state, std::int64_t elements) {
  displayList(state, elements, "ArrayList<Double>", natives::fillDoubles);
}
void displayStrings(benchmark::State& state, std::int64_t elements) {
  displayList(state, elements, "ArrayList<String>", fillStrings);
}
void displayLists(benchmark::State& state, std::int64_t elements) {
  displayList(state, elements, "ArrayList", fillLists);
}

void displayMap(benchmark::State& state, std::int64_t elements) {
  const Handle map(vorn_object_new("Map<Int,Int>"));
  Handle box;
  for (std::int64_t i = 0; i < elements; ++i) {
    box = vorn_box_int(static_cast<std::int32_t>(i));
    vorn_collections_Map_put(map, box, box);
  }
  makeTexts(state, elements, [&] { return vorn_collections_Map_toString(map); });
}

void joinInts(benchmark::State& state, std::int64_t elements) {
  const Handle list(vorn_object_new("ArrayList<Int>"));
  natives::fillInts(list, elements);
  makeTexts(state, elements, [&] { return vorn_collections_ArrayList_join(list, ", "); });
}

void joinStrings(benchmark::State& state, std::int64_t elements) {
  const Handle list(vorn_object_new("ArrayList<String>"));
  fillStrings(list, elements);
  makeTexts(state, elements, [&] { return vorn_collections_ArrayList_join(list, ", "); });
}

// The plain C++ way: each text appended to a growing string.
template <class Element>
void appendTexts(benchmark::State& state, std::int64_t elements) {
  std::vector<Element> values;
  for (std::int64_t i = 0; i < elements; ++i) values.push_back(static_cast<Element>(elementAt(i)));
  for (auto _ : state) {
    std::string text = "[";
    char digits[32];
    for (const Element value : values) {
      if (text.size() > 1) text += ", ";
      text.append(digits, std::to_chars(digits, digits + sizeof(digits), value).ptr);
    }
    text += ']';
    keep(text.data());
  }
  countElements(state, elements);
}

void appendStrings(benchmark::State& state, std::int64_t elements) {
  std::vector<std::string> words;
  for (std::int64_t i = 0; i < elements; ++i) words.push_back(wordAt(i));
  for (auto _ : state) {
    std::string text;
    for (const std::string& word : words) {
      if (!text.empty()) text += ", ";
      text += word;
    }
    keep(text.data());
  }
  countElements(state, elements);
}

constexpr Operation kOperations[] = {
    {"display Int", displayInts, appendTexts<std::int32_t>, nullptr},
    {"display boxed Int", displayBoxes, nullptr, nullptr},
    {"display Double", displayDoubles, appendTexts<double>, nullptr},
    {"display String", displayStrings, appendStrings, nullptr},
    {"display lists of 10 Int", displayLists, nullptr, nullptr},
    {"display Map of Int", displayMap, nullptr, nullptr},
    {"join Int", joinInts, appendTexts<std::int32_t>, nullptr},
    {"join String", joinStrings, appendStrings, nullptr},
};

}  // namespace

int main(int argc, char** argv) {
  Benchmarks benchmarks;
  add(benchmarks, kOperations, kSizes);
  return runBenchmarks(argc, argv,
                       {.topic = "display", .libraries = {"vorn", "C++"}, .benchmarks = std::move(benchmarks)});
}
