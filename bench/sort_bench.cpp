// Sorting unboxed elements without the natives: each of our paths beside std::sort and, where its library is installed,
// Highway's vqsort. "vorn" is the path that this processor gets.

#include <string>

#include "bench/limits.h"
#include "bench/path_columns.h"
#include "bench/program.h"
#include "bench/sort_inputs.h"
#include "bench/vqsort.h"
#include "collections/core/kernels/sort/introsort.h"
#include "collections/core/kernels/sort/primitive_sort.h"
#include "collections/core/kernels/vector_path.h"

namespace {

using namespace vorn::bench;  // NOLINT(google-build-using-namespace): the program's own namespace
using vorn::collections::VectorPath;

template <class Element>
void sortByPath(Element* data, std::size_t length) {
  vorn::collections::sortPrimitive(data, length);
}

// The sort that takes any order, which has one path.
void sortByComparison(std::int64_t* data, std::size_t length) {
  vorn::collections::introsort(data, length, comesBefore<std::int64_t>);
}

template <class Element>
void addSort(Benchmarks& benchmarks, const std::string& type, const char* library, void (*sort)(Element*, std::size_t),
             VectorPath path = vorn::collections::vectorPath()) {
  for (const SortCase& input : kSortCases) {
    benchmarks.push_back({"sort " + type + input.suffix, library, input.length, [=](benchmark::State& state) {
                            const vorn::collections::VectorPathScope scope(path);
                            sortVectors<Element>(state, input.pattern, static_cast<std::size_t>(input.length), sort);
                          }});
  }
}

template <class Element>
void addType(Benchmarks& benchmarks, const std::string& type) {
  for (const VectorPath path : {VectorPath::Plain, VectorPath::Avx2, VectorPath::Avx512}) {
    if (!vorn::collections::isVectorPathAvailable(path)) continue;
    addSort<Element>(benchmarks, type, columnOf(path), sortByPath<Element>, path);
  }
  addSort<Element>(benchmarks, type, "C++", sortByStandard<Element>);
  if constexpr (kHasVqsort<Element>) addSort<Element>(benchmarks, type, "vqsort", sortByVqsort<Element>);
}

}  // namespace

int main(int argc, char** argv) {
  Benchmarks benchmarks;
  addType<std::int8_t>(benchmarks, "int8");
  addType<std::uint16_t>(benchmarks, "uint16");
  addType<std::int32_t>(benchmarks, "int32");
  addType<std::uint32_t>(benchmarks, "uint32");
  addType<std::int64_t>(benchmarks, "int64");
  addType<std::uint64_t>(benchmarks, "uint64");
  addType<float>(benchmarks, "float");
  addType<double>(benchmarks, "double");
  addSort<std::int64_t>(benchmarks, "by comparison", kOwn, sortByComparison);
  addSort<std::int64_t>(benchmarks, "by comparison", "C++", sortByStandard<std::int64_t>);
  return runBenchmarks(argc, argv,
                       {.topic = "sort",
                        .libraries = pathColumns({"C++", "vqsort"}),
                        .benchmarks = std::move(benchmarks),
                        .printMore = printPathInUse});
}
