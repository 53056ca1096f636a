// The sort natives beside std::sort, GLib and, where its library is installed, Highway's vqsort.
#pragma once

#include "bench/program.h"

namespace vorn::bench {

// Appends the benchmarks. Libraries are named "vorn", "C++", "GLib" and "vqsort".
void addSorts(Benchmarks& benchmarks);

}  // namespace vorn::bench
