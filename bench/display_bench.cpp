// Displays and joins, at a size that stays in the caches and at a million, beside std::to_chars writing the same text
// into a std::string.
//
// Prints the benchmarks as they run and then one table. All options of Google Benchmark work; with --benchmark_format
// set, only that output appears.
#include <benchmark/benchmark.h>
#include <vorn/collections/array_list.h>
#include <vorn/runtime.h>

#include <charconv>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "bench/comparison_table.h"
#include "bench/native_support.h"
#include "bench/program.h"

namespace {

using namespace vorn::bench;  // NOLINT(google-build-using-namespace): the program's own namespace

constexpr std::int64_t kSmall = 1000;
constexpr std::int64_t kLarge = 1000000;

double doubleAt(std::int64_t index) { return elementAt(index) * 0.37; }

std::string textAt(std::int64_t index) { return "text " + std::to_string(elementAt(index)); }

// ---- Natives --------------------------------------------------------------------------------------------------------

using natives::Rooted;

void fill(void* list, std::int64_t elements, const char* what) {
  const std::string_view kind(what);
  if (kind == "ArrayList<Int>") return natives::fillInts(list, elements);
  Rooted element;
  for (std::int64_t i = 0; i < elements; ++i) {
    if (kind == "ArrayList<Double>") {
      vorn_collections_ArrayList_addPrimitiveDouble(list, doubleAt(i), nullptr);
      continue;
    }
    if (kind == "ArrayList<String>") {
      const std::string text = textAt(i);
      element = vorn_string_new(text.data(), text.size());
    } else {
      // Lists of ten Ints; an element is one of these.
      if (i % 10 != 0) continue;
      element = vorn_object_new("ArrayList<Int>");
      for (std::int64_t j = i; j < i + 10; ++j) vorn_collections_ArrayList_addInt(element, elementAt(j));
    }
    vorn_collections_ArrayList_add(list, element);
  }
}

template <class Show>
void show(benchmark::State& state, std::int64_t elements, const char* type, Show make) {
  const Rooted list(vorn_object_new(type));
  fill(list, elements, type);
  natives::requireNoErrors();
  for (auto _ : state) keep(make(list));
  natives::requireNoErrors();
  countElements(state, elements);
}

void displayInts(benchmark::State& state, std::int64_t elements) {
  show(state, elements, "ArrayList<Int>", vorn_collections_ArrayList_toString);
}
void joinInts(benchmark::State& state, std::int64_t elements) {
  show(state, elements, "ArrayList<Int>", [](void* list) { return vorn_collections_ArrayList_join(list, ", "); });
}
void displayDoubles(benchmark::State& state, std::int64_t elements) {
  show(state, elements, "ArrayList<Double>", vorn_collections_ArrayList_toString);
}
void displayStrings(benchmark::State& state, std::int64_t elements) {
  show(state, elements, "ArrayList<String>", vorn_collections_ArrayList_toString);
}
void joinStrings(benchmark::State& state, std::int64_t elements) {
  show(state, elements, "ArrayList<String>", [](void* list) { return vorn_collections_ArrayList_join(list, ", "); });
}
void displayNested(benchmark::State& state, std::int64_t elements) {
  show(state, elements, "ArrayList<Object>", vorn_collections_ArrayList_toString);
}

// ---- The C++ standard library ---------------------------------------------------------------------------------------

template <class Number>
void appendNumber(std::string& text, Number value) {
  char digits[32];
  text.append(digits, std::to_chars(digits, digits + sizeof(digits), value).ptr);
}

template <class Element, class Append>
void write(benchmark::State& state, const std::vector<Element>& elements, Append append) {
  for (auto _ : state) {
    std::string text = "[";
    for (std::size_t i = 0; i < elements.size(); ++i) {
      if (i != 0) text += ", ";
      append(text, elements[i]);
    }
    text += "]";
    keep(text.data());
  }
  countElements(state, static_cast<std::int64_t>(elements.size()));
}

template <class Element, class At>
std::vector<Element> vectorOf(std::int64_t elements, At at) {
  std::vector<Element> result;
  for (std::int64_t i = 0; i < elements; ++i) result.push_back(at(i));
  return result;
}

void writeInts(benchmark::State& state, std::int64_t elements) {
  write(state, vectorOf<std::int32_t>(elements, elementAt), appendNumber<std::int32_t>);
}
void writeDoubles(benchmark::State& state, std::int64_t elements) {
  write(state, vectorOf<double>(elements, doubleAt), appendNumber<double>);
}
void writeQuoted(benchmark::State& state, std::int64_t elements) {
  write(state, vectorOf<std::string>(elements, textAt),
        [](std::string& text, const std::string& element) { (text += '"').append(element) += '"'; });
}
void writeStrings(benchmark::State& state, std::int64_t elements) {
  write(state, vectorOf<std::string>(elements, textAt),
        [](std::string& text, const std::string& element) { text += element; });
}

struct DisplayOperation {
  const char* name;
  Measured vorn;
  Measured standard;
  double limit;  // nanoseconds per element that the native may take; 0 when none is set
};

constexpr DisplayOperation kOperations[] = {
    {"display Int", displayInts, writeInts, 12},         {"join Int", joinInts, writeInts, 9},
    {"display Double", displayDoubles, writeDoubles, 0}, {"display String", displayStrings, writeQuoted, 0},
    {"join String", joinStrings, writeStrings, 0},       {"display lists of 10 Ints", displayNested, nullptr, 0},
};

void registerBenchmark(const DisplayOperation& operation, const char* library, Measured measured, std::int64_t size) {
  if (measured == nullptr) return;
  const std::string name = std::string(operation.name) + "/" + library + "/" + std::to_string(size);
  // The CPU time of the whole process: a collector's threads would count, other programs on the machine do not.
  benchmark::RegisterBenchmark(name.c_str(), [measured, size](benchmark::State& state) {
    measured(state, size);
  })->MeasureProcessCPUTime();
}

}  // namespace

int main(int argc, char** argv) {
  keepFreedMemory();
  const bool ownOutput = choosesItsOwnOutput(argc, argv);
  std::vector<char*> arguments = withDefaults(argc, argv);
  int count = static_cast<int>(arguments.size()) - 1;
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  if (vorn_runtime_start(nullptr) == 0) {
    std::fprintf(stderr, "display_bench: cannot start the runtime\n");
    return 1;
  }
  std::vector<ComparisonTable::Row> rows;
  for (const DisplayOperation& operation : kOperations) {
    for (const std::int64_t size : {kSmall, kLarge}) {
      registerBenchmark(operation, "vorn", operation.vorn, size);
      registerBenchmark(operation, "C++", operation.standard, size);
      rows.push_back({operation.name, size, operation.limit});
    }
  }
  if (ownOutput) {
    benchmark::RunSpecifiedBenchmarks();
  } else {
    ComparisonTable table;
    if (benchmark::RunSpecifiedBenchmarks(&table) == 0) return 0;
    table.print(rows, {"vorn", "C++"});
  }
  benchmark::Shutdown();
  return 0;
}
